#include "ui/gps_sat_list_view.h"

#include <QEvent>
#include <QLabel>
#include <QVBoxLayout>
#include <iterator>

#include "link/connection.h"
#include "ui/font_size.h"
#include "ui/palette.h"
#include "ui/progress_view.h"

namespace {

constexpr int row_spacing = 6;  // points between rows
constexpr int text_to_bar = 2;  // points between a row's text and its bar

}  // namespace

gps_sat_list_view::gps_sat_list_view(connection_t& gps, QWidget* parent)
    : QWidget(parent), gps_(gps), layout_(new QVBoxLayout(this)) {
  layout_->setContentsMargins(0, 0, 0, 0);
  layout_->setSpacing(row_spacing);
  layout_->setAlignment(Qt::AlignTop);
  // As wide as the texts: the bars end where the rows' text ends.
  setSizePolicy(QSizePolicy::Maximum, QSizePolicy::Preferred);
  redraw_.watch(gps_);
  refresh();
}

gps_sat_list_view::~gps_sat_list_view() = default;

const gps_sat_list_view::row_t& gps_sat_list_view::row_at(std::size_t i) const {
  return std::next(rows_.begin(), static_cast<std::ptrdiff_t>(i))->second;
}
const QLabel& gps_sat_list_view::row_label(std::size_t i) const {
  return *row_at(i).text;
}
const progress_gauge_t& gps_sat_list_view::row_gauge(std::size_t i) const {
  return *row_at(i).gauge;
}

gps_sat_list_view::row_t gps_sat_list_view::make_row() {
  row_t row;
  row.box = new QWidget(this);
  auto* box_layout = new QVBoxLayout(row.box);
  box_layout->setContentsMargins(0, 0, 0, 0);
  box_layout->setSpacing(text_to_bar);
  row.text = new QLabel(row.box);
  row.text->setFont(relative_fixed_font(font(), text_font_size));
  row.text->setTextFormat(Qt::PlainText);
  row.gauge = new progress_gauge_t(row.box);
  box_layout->addWidget(row.text);
  box_layout->addWidget(row.gauge);
  return row;
}

void gps_sat_list_view::refresh() {
  const auto& table = *gps_.gsv.satellite_arr;
  // Rows follow their satellite: a satellite that stays keeps its row and its bar animates.
  for (auto it = rows_.begin(); it != rows_.end();) {
    if (table.contains(it->first)) {
      ++it;
      continue;
    }
    delete it->second.box;
    it = rows_.erase(it);
  }
  int index = 0;
  for (const auto& [prn, satellite] : table) {  // the table is keyed by PRN: ascending order
    auto [it, added] = rows_.try_emplace(prn);
    if (added) {
      it->second = make_row();
      layout_->insertWidget(index, it->second.box);
    }
    const row_t& row = it->second;
    const bool heard = satellite->valid && satellite->snr > 0;
    row.text->setText(QString::fromStdString(satellite->description()));
    set_text_colour(*row.text, colour_of(heard ? colour_t::primary : colour_t::secondary, palette()));

    progress_view_t bar;
    bar.progress = clamped_progress(static_cast<float>(satellite->snr / snr_full));
    bar.height = 2;
    bar.corner_radius = 4;
    bar.colour = colour_of(colour_t::secondary, palette());
    bar.track = colour_of(colour_t::fill, palette());
    bar.animation = bar_animation_ms;
    row.gauge->show_value(bar);
    ++index;
  }
}

void gps_sat_list_view::changeEvent(QEvent* event) {
  if (event->type() == QEvent::PaletteChange) redraw_.mark();
  QWidget::changeEvent(event);
}

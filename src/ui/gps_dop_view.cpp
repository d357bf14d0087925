#include "ui/gps_dop_view.h"

#include <QEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QVBoxLayout>
#include <cstdio>
#include <string_view>

#include "link/connection.h"
#include "ui/dop_colour.h"
#include "ui/font_size.h"
#include "ui/gps_sky_view.h"
#include "ui/palette.h"
#include "ui/progress_view.h"

namespace {

constexpr int line_spacing = 8;   // points between the panel's lines
constexpr int word_spacing = 12;  // points between the texts of the first line
constexpr int text_to_bar = 2;    // points between a DOP row's text and its bar
constexpr double font_size = 15.0;
constexpr double prn_font_size = 13.0;

QString dop_text(double value) {
  char text[32];
  std::snprintf(text, sizeof text, "%.2f", value);
  return QString::fromLatin1(text);
}

QString qt_text(std::string_view text) {
  return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

QLabel* plain_label(QWidget* parent, const QFont& font) {
  auto* label = new QLabel(parent);
  label->setTextFormat(Qt::PlainText);
  label->setFont(font);
  return label;
}

}  // namespace

gps_dop_view::gps_dop_view(connection_t& gps, QWidget* parent) : QWidget(parent), gps_(gps) {
  const QFont text_font = with_emoji_fallback(relative_font(font(), font_size));
  const QFont mono = relative_fixed_font(font(), prn_font_size);

  auto* column = new QVBoxLayout(this);
  column->setContentsMargins(padding, padding, padding, padding);
  column->setSpacing(line_spacing);

  auto* fix_line = new QHBoxLayout;
  fix_line->setSpacing(word_spacing);
  fix_mode_ = plain_label(this, text_font);
  fix_type_ = plain_label(this, text_font);
  used_ = plain_label(this, text_font);
  fix_line->addWidget(fix_mode_);
  fix_line->addWidget(fix_type_);
  fix_line->addWidget(used_);
  fix_line->addStretch();
  column->addLayout(fix_line);

  prns_ = plain_label(this, mono);
  // An empty list still takes its line, so the panel does not jump when the first PRNs come.
  prns_->setMinimumHeight(prns_->fontMetrics().height());
  column->addWidget(prns_);

  // PDOP, HDOP and VDOP: each a name and its value over a bar, in a narrow centred column.
  auto* dop_box = new QWidget(this);
  dop_box->setFixedWidth(dop_column_width);
  auto* dop_column = new QVBoxLayout(dop_box);
  dop_column->setContentsMargins(0, 0, 0, 0);
  dop_column->setSpacing(line_spacing);
  const char* names[] = {"PDOP", "HDOP", "VDOP"};
  for (std::size_t i = 0; i < dop_rows_.size(); ++i) {
    auto* row = new QVBoxLayout;
    row->setSpacing(text_to_bar);
    auto* texts = new QHBoxLayout;
    auto* name = plain_label(dop_box, text_font);
    name->setText(QString::fromLatin1(names[i]));
    texts->addWidget(name);
    texts->addStretch();
    dop_rows_[i].value = plain_label(dop_box, text_font);
    dop_rows_[i].value->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    texts->addWidget(dop_rows_[i].value);
    row->addLayout(texts);
    dop_rows_[i].gauge = new progress_gauge_t(dop_box);
    row->addWidget(dop_rows_[i].gauge);
    dop_column->addLayout(row);
  }
  column->addWidget(dop_box, 0, Qt::AlignHCenter);

  redraw_.watch(gps_);
  refresh();
}

void gps_dop_view::refresh() {
  const auto& gsa = gps_.gsa;
  fix_mode_->setText(qt_text(gsa.fix_mode_text()));
  fix_type_->setText(qt_text(gsa.fix_type_text()));
  used_->setText(satellite_count_text(static_cast<unsigned>(gsa.PRN_arr->size())));
  prns_->setText(QString::fromStdString(gsa.PRN_text()));

  const double values[] = {gsa.pdop_d, gsa.hdop_d, gsa.vdop_d};
  for (std::size_t i = 0; i < dop_rows_.size(); ++i) {
    dop_rows_[i].value->setText(dop_text(values[i]));
    progress_view_t bar;
    bar.progress = dop_progress(values[i]);
    bar.height = 2;
    bar.corner_radius = 4;
    bar.colour = colour_of(dop_colour(values[i]), palette());
    bar.track = colour_of(colour_t::fill, palette());
    bar.animation = bar_animation_ms;
    dop_rows_[i].gauge->show_value(bar);
  }
}

void gps_dop_view::changeEvent(QEvent* event) {
  if (event->type() == QEvent::PaletteChange) redraw_.mark();
  QWidget::changeEvent(event);
}

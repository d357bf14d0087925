#include "ui/content_view.h"

#include <QEvent>
#include <QHBoxLayout>
#include <QVBoxLayout>

#include "link/config_connection.h"
#include "link/connect_action.h"
#include "link/connection.h"
#include "map/map_view.h"
#include "platform/tile_map_widget.h"
#include "ui/font_size.h"
#include "ui/map_panel.h"
#include "ui/round_button.h"
#include "ui/selection_feedback.h"

namespace {

constexpr double knots_to_mps = 0.514444444;
constexpr double size_fix = 15.0;            // the satellites-and-fix texts
constexpr double size_status_bridge = 12.0;  // the status texts with both links shown
constexpr double size_status = 16.0;
const QString satellite = QString::fromUtf8("\U0001F6F0");

QString altitude_text(double metres) {
  return QString::asprintf(metres >= 999.0 ? "%.f" : "%.1f", metres);
}

// "33.856800 S": the magnitude with its hemisphere letter, as the sentence gives them.
QString coordinate_text(double magnitude, std::string_view hemisphere) {
  return QString::asprintf("%.6f %.*s", magnitude, static_cast<int>(hemisphere.size()), hemisphere.data()).trimmed();
}

}  // namespace

ContentView::ContentView(config_connection_t& cfg, connection_t& cnc, map_cfg_t& map_cfg, tile_map_widget_t& map,
                         main_queue_t& queue, open_sheets_t& sheets, QWidget* parent)
    : QWidget(parent),
      cfg_(cfg),
      cnc_(cnc),
      map_cfg_(map_cfg),
      sheets_(sheets),
      portrait_(width() < height()),
      redraw_(this, [this] { refresh(); }),
      summary_(new QWidget(this)),
      time_date_(new text_runs_t(true, size_padding_h)),
      status_(new text_runs_t(true, size_padding_h)),
      fix_(new text_runs_t(true, size_padding_h)),
      hdop_(new text_runs_t(false, size_padding_u)),
      speed_(new text_runs_t(false, size_padding_u)),
      sea_(new text_runs_t(false, size_padding_u)),
      lat_(new text_runs_t(false)),
      lon_(new text_runs_t(false)),
      alt_(new text_runs_t(false, size_padding_u)),
      reset_(new round_button_t("clear", 18, colour_t::accent, true)),
      map_panel_(new map_panel_t(map, map_cfg, queue, cnc, this)) {
  time_date_->setToolTip(tr("Log (` or Ctrl+L)"));
  status_->setAccessibleDescription(tr("Connect or disconnect (Ctrl+K)"));
  fix_->setToolTip(tr("Satellites and fix details"));
  reset_->setToolTip(tr("Clear log, track and markers"));
  reset_->setAccessibleName(reset_->toolTip());

  auto* screen = new QVBoxLayout(this);
  screen->setContentsMargins(0, 0, 0, 0);
  screen->setSpacing(static_cast<int>(size_padding_v * 0.5));
  screen->addWidget(summary_);
  screen->addWidget(map_panel_, 1);
  build_rows();

  QObject::connect(time_date_, &QAbstractButton::clicked, this, [this] {
    selection_changed();
    sheets_.toggle(sheet_id_t::log);
  });
  QObject::connect(status_, &QAbstractButton::clicked, this, [this] { connect_or_disconnect(); });
  QObject::connect(fix_, &QAbstractButton::clicked, this, [this] {
    selection_changed();
    sheets_.toggle_fix_details();
  });
  QObject::connect(reset_, &QAbstractButton::clicked, this, [this] {
    selection_changed();
    cnc_.reset();
    map_cfg_.reset = true;
  });
  QObject::connect(map_panel_->settings_button(), &QAbstractButton::clicked, this, [this] {
    selection_changed();
    sheets_.toggle(sheet_id_t::settings);
  });
  QObject::connect(map_panel_->location_button(), &QAbstractButton::clicked, this, [this] {
    selection_changed();
    auto& map = map_panel_->map();
    map.set_shows_user_location(!map.shows_user_location());
    redraw_.mark();
  });
  QObject::connect(map_panel_->course(), &QAbstractButton::clicked, this, [this] {
    selection_changed();
    map_cfg_.region_set = false;
  });
  QObject::connect(map_panel_->mode_button(), &QAbstractButton::clicked, this, [this] {
    selection_changed();
    map_cfg_.mode_sat = !map_cfg_.mode_sat;
  });

  redraw_.watch(cfg_);
  redraw_.watch(cnc_);
  redraw_.watch(map_cfg_);
  refresh();
}

ContentView::~ContentView() = default;

void ContentView::connect_or_disconnect() {
  selection_changed();
  selection_changed();
  ::connect_or_disconnect(cfg_, cnc_);
}

void ContentView::resizeEvent(QResizeEvent* event) {
  QWidget::resizeEvent(event);
  const bool portrait = width() < height();
  if (portrait != portrait_) {
    portrait_ = portrait;
    build_rows();
    redraw_.mark();
  }
}

void ContentView::changeEvent(QEvent* event) {
  QWidget::changeEvent(event);
  if (event->type() == QEvent::PaletteChange || event->type() == QEvent::FontChange) redraw_.mark();
}

void ContentView::build_rows() {
  delete summary_->layout();
  auto* rows = new QVBoxLayout(summary_);
  rows->setContentsMargins(8, 8, 8, 0);
  rows->setSpacing(static_cast<int>(size_padding_v * 0.25));
  auto row = [&](std::initializer_list<QWidget*> items) {
    auto* r = new QHBoxLayout;
    r->setSpacing(0);
    bool first = true;
    for (auto* item : items) {
      if (!first) r->addStretch(1);
      r->addWidget(item, 0, Qt::AlignVCenter);
      first = false;
    }
    rows->addLayout(r);
  };
  if (portrait_) {
    row({time_date_, status_});
    row({fix_, hdop_, speed_, reset_, sea_});
    row({lat_, lon_, alt_});
  } else {
    row({fix_, hdop_, reset_, time_date_, status_});
    row({lat_, lon_, speed_, sea_});
  }
  alt_->setVisible(portrait_);
}

QList<QStringList> ContentView::rows() const {
  QList<QStringList> out;
  auto* rows = summary_->layout();
  for (int i = 0; i < rows->count(); ++i) {
    QStringList names;
    auto* r = rows->itemAt(i)->layout();
    for (int j = 0; r && j < r->count(); ++j)
      if (QWidget* w = r->itemAt(j)->widget()) names << w->accessibleName();
    out << names;
  }
  return out;
}

void ContentView::refresh() {
  const QFont base = relative_font(font(), size_font);
  // The first row of a tall window reads as a table of figures: monospaced.
  const QFont first_row = portrait_ ? relative_fixed_font(font(), size_font) : base;
  const auto& gga = cnc_.gga;
  const auto& rmc = cnc_.rmc;

  time_date_->set_runs({
      {QString::asprintf("%02u:%02u:%02u", static_cast<unsigned>(gga.time.hh), static_cast<unsigned>(gga.time.mm),
                         static_cast<unsigned>(gga.time.ss)),
       colour_t::secondary, first_row},
      {QString::asprintf("%04u-%02u-%02u", static_cast<unsigned>(rmc.date.y), static_cast<unsigned>(rmc.date.m),
                         static_cast<unsigned>(rmc.date.d)),
       colour_t::secondary, first_row},
  });

  const bool bridge = cfg_.enable_bridge();
  const double status_size = bridge ? size_status_bridge : size_status;
  const QFont status_font = portrait_ ? relative_fixed_font(font(), status_size) : relative_font(font(), status_size);
  std::vector<text_run_t> status;
  const std::string crc = cnc_.crc_error_text();
  if (!crc.empty()) status.push_back({QString::fromStdString(crc), colour_t::secondary, status_font});
  const auto used = used_links(cfg_);
  if (cfg_.enable_source() || cnc_.source_side_up()) {
    status.push_back({QString::fromStdString(cnc_.status_source), cnc_.sta_fg_source, status_font});
  } else {
    if (used.tcp) status.push_back({QString::fromStdString(cnc_.status_tcp), cnc_.sta_fg_tcp, status_font});
    if (used.ble) status.push_back({QString::fromStdString(cnc_.status_ble), cnc_.sta_fg_ble, status_font});
  }
  status_->set_runs(std::move(status));
  status_->setToolTip(cnc_.ble_enabled() ? QString::fromStdString(cnc_.ble().radio_status()) : QString());

  const QFont fix_font = relative_font(font(), size_fix);
  fix_->set_runs({
      {satellite + " " + QString::number(gga.sat_count_i), colour_t::primary, fix_font},
      {QString::fromUtf8(gga.fix_text().data(), static_cast<int>(gga.fix_text().size())), colour_t::primary, fix_font},
  });
  hdop_->set_runs(
      {{"HDOP", colour_t::secondary, base}, {QString::asprintf("%.2f", gga.hdop_d), colour_t::primary, base}});
  const QString speed = QString::asprintf("%.2f", rmc.speed_knots * knots_to_mps);
  if (portrait_)
    speed_->set_runs({{speed, colour_t::primary, base}, {"m/s", colour_t::secondary, base}});
  else
    speed_->set_runs(
        {{"speed", colour_t::secondary, base}, {speed, colour_t::primary, base}, {"m/s", colour_t::secondary, base}});
  sea_->set_runs({{"sea", colour_t::secondary, base}, {altitude_text(gga.mean_sea_level_d), colour_t::primary, base}});
  lat_->set_runs({{coordinate_text(gga.lat, gga.lat_dir), colour_t::primary, base}});
  lon_->set_runs({{coordinate_text(gga.lon, gga.lon_dir), colour_t::primary, base}});
  alt_->set_runs({{"ALT", colour_t::secondary, base}, {altitude_text(gga.alt_d), colour_t::primary, base}});

  map_panel_->refresh();
}

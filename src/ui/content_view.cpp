#include "ui/content_view.h"

#include <QEvent>
#include <QFontDatabase>
#include <QHBoxLayout>
#include <QScrollArea>
#include <QShortcut>
#include <QVBoxLayout>

#include "link/config_connection.h"
#include "link/connect_action.h"
#include "link/connection.h"
#include "map/map_view.h"
#include "platform/tile_map_widget.h"
#include "ui/config_connection_view.h"
#include "ui/gnss_sky_panel.h"
#include "ui/gps_details_view.h"
#include "ui/gps_log_view.h"
#include "ui/map_panel.h"
#include "ui/round_button.h"
#include "ui/selection_feedback.h"
#include "ui/sheet.h"

namespace {

constexpr double knots_to_mps = 0.514444444;
constexpr double size_fix = 15.0;            // the satellites-and-fix texts
constexpr double size_status_bridge = 12.0;  // the status texts with both links shown
constexpr double size_status = 16.0;
const QString satellite = QString::fromUtf8("\U0001F6F0");

QFont sized(QFont font, double pixels) {
  font.setPixelSize(static_cast<int>(pixels));
  return font;
}

QString altitude_text(double metres) {
  return QString::asprintf(metres >= 999.0 ? "%.f" : "%.1f", metres);
}

}  // namespace

ContentView::ContentView(config_connection_t& cfg, connection_t& cnc, map_cfg_t& map_cfg, tile_map_widget_t& map,
                         main_queue_t& queue, QWidget* parent)
    : QWidget(parent),
      cfg_(cfg),
      cnc_(cnc),
      map_cfg_(map_cfg),
      sheets_(cnc),
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
      reset_(new round_button_t("reset", 18, colour_t::accent, true)),
      map_panel_(new map_panel_t(map, map_cfg, queue, cnc, this)) {
  time_date_->setToolTip("Log (`)");
  fix_->setToolTip("Fix details");
  reset_->setToolTip("Clear everything");

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
  backquote_ = new QShortcut(QKeySequence(Qt::Key_QuoteLeft), this);
  QObject::connect(backquote_, &QShortcut::activated, time_date_, &QAbstractButton::click);
  QObject::connect(status_, &QAbstractButton::clicked, this, [this] { connect_or_disconnect(); });
  QObject::connect(fix_, &QAbstractButton::clicked, this, [this] {
    selection_changed();
    sheets_.toggle(sheet_id_t::details);
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

  log_sheet_ = new sheet_t(
      new gps_log_view(cnc_, sheets_), [this] { sheets_.show(sheet_id_t::log, false); }, this);
  auto* details_scroll = new QScrollArea;
  details_scroll->setWidgetResizable(true);
  details_scroll->setFrameShape(QFrame::NoFrame);
  details_scroll->setWidget(new gps_details_view(cnc_, sheets_));
  details_sheet_ = new sheet_t(
      details_scroll, [this] { sheets_.show(sheet_id_t::details, false); }, this);
  settings_sheet_ = new sheet_t(
      new config_connection_view(*this, cfg_, cnc_), [this] { sheets_.show(sheet_id_t::settings, false); }, this);

  // The satellites of every system, until the window docks them.
  auto* sky_scroll = new QScrollArea;
  sky_scroll->setWidgetResizable(true);
  sky_scroll->setFrameShape(QFrame::NoFrame);
  sky_scroll->setWidget(new gnss_sky_panel(cnc_.sky));
  sky_sheet_ = new sheet_t(
      sky_scroll, [this] { sheets_.show(sheet_id_t::sky, false); }, this);

  redraw_.watch(cfg_);
  redraw_.watch(cnc_);
  redraw_.watch(map_cfg_);
  redraw_.watch(sheets_);
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
      if (QWidget* w = r->itemAt(j)->widget()) names << (w == reset_ ? QString("reset") : w->accessibleName());
    out << names;
  }
  return out;
}

void ContentView::refresh() {
  const QFont base = sized(font(), size_font);
  // The first row of a tall window reads as a table of figures: monospaced.
  const QFont first_row = portrait_ ? sized(QFontDatabase::systemFont(QFontDatabase::FixedFont), size_font) : base;
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
  const QFont status_font = sized(portrait_ ? first_row : base, bridge ? size_status_bridge : size_status);
  std::vector<text_run_t> status;
  const std::string crc = cnc_.crc_error_text();
  if (!crc.empty()) status.push_back({QString::fromStdString(crc), colour_t::secondary, status_font});
  const auto used = used_links(cfg_);
  if (used.tcp) status.push_back({QString::fromStdString(cnc_.status_tcp), cnc_.sta_fg_tcp, status_font});
  if (used.ble) status.push_back({QString::fromStdString(cnc_.status_ble), cnc_.sta_fg_ble, status_font});
  status_->set_runs(std::move(status));
  status_->setToolTip(cnc_.ble_enabled() ? QString::fromStdString(cnc_.ble().radio_status()) : QString());

  const QFont fix_font = sized(base, size_fix);
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
  lat_->set_runs({{QString::asprintf("%.6f", gga.lat.get()), colour_t::primary, base}});
  lon_->set_runs({{QString::asprintf("%.6f", gga.lon.get()), colour_t::primary, base}});
  alt_->set_runs({{"ALT", colour_t::secondary, base}, {altitude_text(gga.alt_d), colour_t::primary, base}});

  // The log sheet's own Close takes the backquote while the log is shown.
  const bool log = sheets_.shown(sheet_id_t::log);
  backquote_->setEnabled(!log);
  log_sheet_->set_shown(log);
  details_sheet_->set_shown(sheets_.shown(sheet_id_t::details));
  settings_sheet_->set_shown(sheets_.shown(sheet_id_t::settings));
  sky_sheet_->set_shown(sheets_.shown(sheet_id_t::sky));

  map_panel_->refresh();
}

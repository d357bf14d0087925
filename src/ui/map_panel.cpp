#include "ui/map_panel.h"

#include <QResizeEvent>

#include "link/connection.h"
#include "platform/tile_map_widget.h"
#include "ui/dop_colour.h"
#include "ui/palette.h"

namespace {
constexpr int inset = 10;  // screen points between the controls and the map's edges
constexpr int button_spacing = 8;
constexpr int gauge_animation_ms = 800;
constexpr double gauge_hidden_up_to = 1.5;  // HDOP at which the gauge is not shown
}  // namespace

progress_view_t hdop_gauge_value(double hdop, const QPalette& palette) {
  progress_view_t v;
  v.progress = dop_progress(hdop);
  v.height = 2.0;
  v.corner_radius = 4.0;
  v.colour = colour_of(dop_colour(hdop), palette);
  v.track = colour_of(colour_t::fill, palette);
  v.animation = gauge_animation_ms;
  v.opacity = hdop <= gauge_hidden_up_to ? 0.0 : 1.0;
  return v;
}

map_panel_t::map_panel_t(tile_map_widget_t& map, map_cfg_t& map_cfg, main_queue_t& queue, connection_t& cnc,
                         QWidget* parent)
    : QWidget(parent),
      map_(map),
      cnc_(cnc),
      map_view_(map_cfg, map, queue),
      hdop_(new progress_gauge_t(this)),
      course_(new course_arrow_t(this)),
      settings_(new round_button_t("sliders", 22, colour_t::accent, false, this)),
      location_(new round_button_t("location", 22, colour_t::accent, false, this)),
      mode_(new round_button_t("map_fill", 24, colour_t::accent, false, this)) {
  map_.setParent(this);
  map_.lower();
  // A pictogram tells a screen reader nothing: each control says what it does.
  const std::pair<QAbstractButton*, QString> names[] = {{settings_, tr("Connection settings")},
                                                        {location_, tr("Show my location")},
                                                        {mode_, tr("Standard map or imagery")},
                                                        {course_, tr("Recentre on the position")}};
  for (const auto& [control, name] : names) {
    control->setAccessibleName(name);
    control->setToolTip(name);
  }
  hdop_->show_value(hdop_gauge_value(0.0, palette()));
}

void map_panel_t::showEvent(QShowEvent* event) {
  QWidget::showEvent(event);
  if (made_) return;
  made_ = true;
  map_view_.make(map_.device_location());
}

void map_panel_t::resizeEvent(QResizeEvent* event) {
  QWidget::resizeEvent(event);
  map_.setGeometry(rect());
  hdop_->setGeometry(inset, 6, width() - 2 * inset, 4);
  // Below the map's north indicator, down the right side.
  int y = 50;
  for (auto* b : {settings_, location_, mode_}) {
    b->resize(b->sizeHint());
    b->move(width() - inset - b->width(), y);
    y += b->height() + button_spacing;
  }
  course_->resize(course_->sizeHint());
  course_->move(width() - inset - course_->width(), height() - 28 - course_->height());
}

void map_panel_t::refresh() {
  const auto& gga = cnc_.gga;
  hdop_->show_value(hdop_gauge_value(gga.hdop_d, palette()));
  course_->set_angle(course_angle(gga.direction_history));
  location_->set_icon_name(map_.shows_user_location() ? "location_fill" : "location");
  map_view_.update(gga.map_fix, gga.map_path.list(), gga.time_annotation());
}

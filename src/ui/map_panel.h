#pragma once

#include <QWidget>

#include "map/map_view.h"
#include "ui/course_arrow.h"
#include "ui/progress_view.h"
#include "ui/round_button.h"

class connection_t;
class main_queue_t;
class tile_map_widget_t;

// The map with the controls that lie over it: the HDOP gauge along the top, the settings,
// user-location and map-type buttons down the right side, the course arrow at the bottom right.
// Holds the map's coordinator for as long as it lives.
class map_panel_t final : public QWidget {
public:
  map_panel_t(tile_map_widget_t& map, map_cfg_t& map_cfg, main_queue_t& queue, connection_t& cnc,
              QWidget* parent = nullptr);

  // On every refresh: the gauge, the arrow, the buttons' pictograms and the map itself.
  void refresh();

  tile_map_widget_t& map() { return map_; }
  progress_gauge_t* hdop_gauge() const { return hdop_; }
  course_arrow_t* course() const { return course_; }
  round_button_t* settings_button() const { return settings_; }
  round_button_t* location_button() const { return location_; }
  round_button_t* mode_button() const { return mode_; }

protected:
  void resizeEvent(QResizeEvent* event) override;
  void showEvent(QShowEvent* event) override;

private:
  tile_map_widget_t& map_;
  connection_t& cnc_;
  map_view_t map_view_;
  bool made_ = false;
  progress_gauge_t* hdop_;
  course_arrow_t* course_;
  round_button_t* settings_;
  round_button_t* location_;
  round_button_t* mode_;
};

// The HDOP gauge's look for an HDOP: fill 1 - h/20, the DOP colour, hidden up to 1.5.
progress_view_t hdop_gauge_value(double hdop, const QPalette& palette);

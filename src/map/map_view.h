#pragma once

#include <array>
#include <optional>
#include <vector>

#include "core/main_queue.h"
#include "core/observable.h"
#include "map/annotations.h"
#include "map/map_widget_api.h"

// The long-lived map settings and timing state, shared by the main screen and the map panel.
class map_cfg_t final : public observable_t {
public:
  static constexpr double delay_overlay = 0.04;       // s between overlay redraws
  static constexpr double delay_region_first = 1.0;   // s of rest after the first placement
  static constexpr double delay_region_update = 5.0;  // s of rest after a recentring or a user move

  map_cfg_t(map_widget_api_t& view, main_queue_t& queue);

  map_widget_api_t& view;                    // the one map widget of the program
  published_t<bool> reset{*this, false};       // clear all markers and overlays
  published_t<bool> region_set{*this, false};  // false: place the map on the position again
  published_t<bool> mode_sat{*this, false};    // satellite imagery with labels
  bool mode_old = false;                       // the mode last applied to the widget
  double date_overlay;                         // s: overlays are redrawn only after this
  double date_region;                          // s: recentring is checked only after this
  std::array<overlay_ref_t, 2> ui_overlays;    // the position circle and the track line
  bool lock_region = false;                    // the region is changing: updates do nothing
  main_queue_t& queue;
};

// The map widget's delegate: holds recentring off while the region changes.
class map_coordinator_t final : public map_widget_delegate_t {
public:
  explicit map_coordinator_t(map_cfg_t& cfg) : cfg_(cfg) {}
  void region_will_change(bool animated) override;
  void region_did_change(bool animated) override;

private:
  map_cfg_t& cfg_;
};

// What the main screen hands the map on every redraw: the position, the track and a new marker
// at the position; the panel's own marker list lives as long as the panel.
struct map_view_t {
  static constexpr double distance = 200.0;  // m spanned by a placement, north-south and east-west
  static constexpr double pi_2 = 1.5707963267948966;
  static constexpr double camera_min_distance = 40.0;  // m
  static constexpr double default_frame = 350.0;       // screen points, for a frame not yet laid out

  map_cfg_t& map_cfg;
  geo_coordinate_t current_point;
  std::vector<geo_coordinate_t> path;  // newest first
  annotation_ref_t annotation;
  annotations_t& annotations;

  // Once per appearance of the map: configures the widget and places it on the device's position
  // when one is known.
  map_widget_api_t& make(map_coordinator_t& coordinator, std::optional<geo_coordinate_t> device_location) const;
  // On every redraw: reset, map type, placement and recentring, overlays, markers.
  void update() const;
};

#pragma once

#include <optional>

#include "core/main_queue.h"
#include "core/observable.h"
#include "core/ring.h"
#include "map/annotations.h"
#include "map/geo.h"
#include "map/map_widget_api.h"

// What the main screen's buttons ask of the map; the screen observes it, and so redraws when the
// map asks for a new update.
class map_cfg_t final : public observable_t {
public:
  published_t<bool> reset{*this, false};       // clear all markers and overlays
  published_t<bool> region_set{*this, false};  // false: place the map on the position again
  published_t<bool> mode_sat{*this, false};    // satellite imagery with labels
};

// The map's coordinator, living as long as the map panel: it places the map on the position,
// recentres it after rest periods, redraws the position dot and the track at most every 40 ms,
// and shows its own marker list. As the widget's delegate it holds every update off while the
// region changes. The flags it clears in the map settings are written after the update that
// read them, on the next turn of the main queue.
class map_view_t final : public map_widget_delegate_t {
public:
  static constexpr double delay_overlay = 0.04;        // s between overlay redraws
  static constexpr double delay_region_first = 1.0;    // s of rest after the first placement
  static constexpr double delay_region_update = 5.0;   // s of rest after a recentring or a user move
  static constexpr double distance = 200.0;            // m spanned by a placement, both ways
  static constexpr double pi_2 = 1.5707963267948966;   // the position dot's radius factor
  static constexpr double camera_min_distance = 40.0;  // m
  static constexpr double default_frame = 350.0;       // screen points, for a frame not yet laid out

  map_view_t(map_cfg_t& cfg, map_widget_api_t& view, main_queue_t& queue);

  // Once, when the map first appears: configures the widget and places it on the device's
  // position when one is known.
  void make(std::optional<geo_coordinate_t> device_location);
  // On every redraw: reset, map type, placement and recentring, overlays, markers. The track is
  // newest first; the marker stands at the position.
  void update(const geo_coordinate_t& position, const ring_t<geo_coordinate_t>& track, const annotation_ref_t& marker);

  void region_will_change(bool animated) override;
  void region_did_change(bool animated) override;

private:
  void draw_overlays(const geo_coordinate_t& position, const ring_t<geo_coordinate_t>& track);
  void show_marker(const annotation_ref_t& marker);

  map_cfg_t& cfg_;
  map_widget_api_t& view_;
  main_queue_t& queue_;
  annotations_t annotations_;  // the map's own markers; the head is never shown
  bool mode_old_ = false;      // the mode last applied to the widget
  double date_overlay_;        // s: overlays are redrawn only after this
  double date_region_;         // s: recentring is checked only after this
  bool lock_region_ = false;   // the region is changing: updates do nothing
};

#pragma once

#include <algorithm>
#include <string>
#include <vector>

#include "map/map_widget_api.h"

// A map widget for tests: keeps markers and overlays, shows the rectangle the test sets, and
// writes down region and type changes ("region a", "centre", "centre a", "type 4"; "a" = animated).
class fake_map_widget_t final : public map_widget_api_t {
public:
  void set_delegate(map_widget_delegate_t* d) override { delegate = d; }
  void set_shows_compass(bool on) override { shows_compass = on; }
  void set_shows_scale(bool on) override { shows_scale = on; }
  void set_follows_heading(bool on) override { follows_heading = on; }
  void set_shows_user_location(bool on) override { shows_user_location = on; }
  void set_camera_min_distance(double m) override { camera_min_distance = m; }
  void set_region(geo_coordinate_t c, double ns, double ew, bool animated) override {
    calls.push_back(std::string("region") + (animated ? " a" : ""));
    span_ns = ns;
    span_ew = ew;
    look_at(c);
  }
  void set_centre(geo_coordinate_t c, bool animated) override {
    calls.push_back(std::string("centre") + (animated ? " a" : ""));
    look_at(c);
  }
  map_rect_t visible_map_rect() const override { return rect; }
  double frame_width() const override { return width; }
  double frame_height() const override { return height; }
  bool in_window() const override { return window; }
  void set_map_type(map_type_t t) override { calls.push_back("type " + std::to_string(static_cast<int>(t))); }

  std::vector<annotation_ref_t> annotations() const override { return markers; }
  void add_annotation(const annotation_ref_t& a) override { markers.push_back(a); }
  void remove_annotation(const annotation_ref_t& a) override { std::erase(markers, a); }
  void remove_annotations(const std::vector<annotation_ref_t>& all) override {
    for (const auto& a : all) std::erase(markers, a);
  }
  std::vector<overlay_ref_t> overlays() const override { return shown; }
  void add_overlays(const std::vector<overlay_ref_t>& o) override { shown.insert(shown.end(), o.begin(), o.end()); }
  void remove_overlays(const std::vector<overlay_ref_t>& o) override {
    for (const auto& x : o) std::erase(shown, x);
  }

  // Centres the visible rectangle (rect_size map points square) on the coordinate.
  void look_at(geo_coordinate_t c) {
    const auto p = map_point_for(c);
    rect = {p.x - rect_size / 2, p.y - rect_size / 2, rect_size, rect_size};
  }

  map_widget_delegate_t* delegate = nullptr;
  map_rect_t rect;
  double rect_size = 800.0;  // map points: about 150 m at mid latitudes
  double width = 400.0, height = 700.0;
  bool window = true, shows_compass = false, shows_scale = false, follows_heading = false, shows_user_location = true;
  double camera_min_distance = 0.0, span_ns = 0.0, span_ew = 0.0;
  std::vector<std::string> calls;
  std::vector<annotation_ref_t> markers;
  std::vector<overlay_ref_t> shown;
};

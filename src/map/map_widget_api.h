#pragma once

#include <memory>
#include <vector>

#include "map/annotations.h"
#include "map/geo.h"

// The map widget as the coordinator drives it: Web Mercator map points, a region and centre set
// with or without animation, markers and two kinds of overlay drawn above the tiles.

// A point of the flat Web Mercator world, map_world_size points wide and high; x east, y south.
struct map_point_t {
  double x = 0.0;
  double y = 0.0;
};

struct map_rect_t {
  double x = 0.0;
  double y = 0.0;
  double width = 0.0;
  double height = 0.0;

  bool contains(map_point_t p) const { return p.x >= x && p.x < x + width && p.y >= y && p.y < y + height; }
  // Smaller by d on every side (larger for a negative d).
  map_rect_t inset(double d) const { return {x + d, y + d, width - 2 * d, height - 2 * d}; }
};

inline constexpr double map_world_size = 268435456.0;  // map points across the world (2^28)

// The map point of a coordinate (Web Mercator; latitudes beyond +-85.05 clamp to the edge).
map_point_t map_point_for(geo_coordinate_t c);

// What is drawn above the tiles: the position dot (a circle with a radius in metres) or the
// track (a polyline through its points in order). Overlays are compared by identity.
struct map_overlay_t {
  enum class kind_t { circle, polyline };
  kind_t kind = kind_t::circle;
  geo_coordinate_t centre;
  double radius_m = 0.0;
  std::vector<geo_coordinate_t> points;
};
using overlay_ref_t = std::shared_ptr<const map_overlay_t>;

// How an overlay is drawn.
struct overlay_style_t {
  double line_width = 0.0;     // screen points; 0: the widget's default
  bool stroke_red = false;     // the system red, in light and dark appearance alike
  bool fill_white = false;
};
overlay_style_t style_for(const map_overlay_t& overlay);

enum class map_type_t { standard = 0, hybrid_flyover = 4 };

// The region starts or ends to change, by the user or by an animation.
class map_widget_delegate_t {
public:
  virtual ~map_widget_delegate_t() = default;
  virtual void region_will_change(bool animated) = 0;
  virtual void region_did_change(bool animated) = 0;
};

class map_widget_api_t {
public:
  virtual ~map_widget_api_t() = default;
  virtual void set_delegate(map_widget_delegate_t* delegate) = 0;
  virtual void set_shows_compass(bool on) = 0;
  virtual void set_shows_scale(bool on) = 0;
  virtual void set_follows_heading(bool on) = 0;
  virtual void set_shows_user_location(bool on) = 0;
  virtual void set_camera_min_distance(double metres) = 0;
  // Centred on the coordinate, spanning the metres north-south and east-west.
  virtual void set_region(geo_coordinate_t centre, double span_ns_m, double span_ew_m, bool animated) = 0;
  virtual void set_centre(geo_coordinate_t centre, bool animated) = 0;
  virtual map_rect_t visible_map_rect() const = 0;
  virtual double frame_width() const = 0;   // screen points
  virtual double frame_height() const = 0;  // screen points
  virtual bool in_window() const = 0;
  virtual void set_map_type(map_type_t type) = 0;

  virtual std::vector<annotation_ref_t> annotations() const = 0;
  virtual void add_annotation(const annotation_ref_t& a) = 0;
  virtual void remove_annotation(const annotation_ref_t& a) = 0;
  virtual void remove_annotations(const std::vector<annotation_ref_t>& a) = 0;

  virtual std::vector<overlay_ref_t> overlays() const = 0;
  // Level 1: above the labels.
  virtual void add_overlays(const std::vector<overlay_ref_t>& o) = 0;
  virtual void remove_overlays(const std::vector<overlay_ref_t>& o) = 0;
};

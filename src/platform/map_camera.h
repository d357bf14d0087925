#pragma once

#include <QPointF>
#include <QSizeF>
#include <cmath>

#include "map/geo.h"
#include "map/map_widget_api.h"

// Where the map looks: its centre in map points and its scale in map points per screen point.
// A tile of zoom level z is 256 screen points wide when the scale is 2^(20 - z).
struct map_camera_t {
  static constexpr double tile_points = 256.0;
  static constexpr double equator_m = 40075016.686;  // m around the equator
  static constexpr double max_scale = 1048576.0;     // 2^20: the whole world in one tile

  map_point_t centre{map_world_size / 2, map_world_size / 2};
  double scale = 65536.0;  // map points per screen point (zoom 4)

  double zoom() const { return 20.0 - std::log2(scale); }
  QPointF to_screen(map_point_t p, QSizeF frame) const {
    return {(p.x - centre.x) / scale + frame.width() / 2, (p.y - centre.y) / scale + frame.height() / 2};
  }
  map_point_t to_map(QPointF s, QSizeF frame) const {
    return {centre.x + (s.x() - frame.width() / 2) * scale, centre.y + (s.y() - frame.height() / 2) * scale};
  }
  map_rect_t visible(QSizeF frame) const {
    return {centre.x - frame.width() / 2 * scale, centre.y - frame.height() / 2 * scale, frame.width() * scale,
            frame.height() * scale};
  }
};

// Metres on the ground per map point at a latitude.
inline double metres_per_map_point(double latitude_deg) {
  return map_camera_t::equator_m * std::cos(latitude_deg * 3.14159265358979323846 / 180.0) / map_world_size;
}

// The latitude of a map point's row.
inline double latitude_of(double map_y) {
  const double n = 3.14159265358979323846 * (1.0 - 2.0 * map_y / map_world_size);
  return std::atan(std::sinh(n)) * 180.0 / 3.14159265358979323846;
}

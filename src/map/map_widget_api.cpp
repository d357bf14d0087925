#include "map/map_widget_api.h"

#include <algorithm>
#include <cmath>
#include <numbers>

map_point_t map_point_for(geo_coordinate_t c) {
  constexpr double max_latitude = 85.05112878;  // the Web Mercator square's edge
  const double lat = std::clamp(c.latitude, -max_latitude, max_latitude) * std::numbers::pi / 180.0;
  const double x = (c.longitude + 180.0) / 360.0;
  const double y = 0.5 - std::log(std::tan(std::numbers::pi / 4 + lat / 2)) / (2 * std::numbers::pi);
  return {x * map_world_size, y * map_world_size};
}

overlay_style_t style_for(const map_overlay_t& overlay) {
  constexpr double line_width = 4.0;  // screen points
  switch (overlay.kind) {
    case map_overlay_t::kind_t::polyline: return {line_width, true, false};
    case map_overlay_t::kind_t::circle: return {line_width, true, true};
  }
  return {};
}

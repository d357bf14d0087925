#pragma once

#include <cmath>

// A geographic coordinate in degrees, north and east positive.
struct geo_coordinate_t {
  double latitude = 0.0;
  double longitude = 0.0;
  bool operator==(const geo_coordinate_t&) const = default;
};

inline constexpr double meters_per_lat = 110946.25833333333;  // m per degree of latitude (39 940 653 / 360)
inline constexpr double meters_per_lon = 111319.49166666667;  // m per degree of longitude (40 075 017 / 360)

// A flat approximation in metres: the fixed equatorial scale for longitude, no cosine of the
// latitude and no wrap-around at 180 degrees. Good enough to space markers a few metres apart.
inline double flat_distance(geo_coordinate_t a, geo_coordinate_t b) {
  const double dn = (a.latitude - b.latitude) * meters_per_lat;
  const double de = (a.longitude - b.longitude) * meters_per_lon;
  return std::sqrt(dn * dn + de * de);
}

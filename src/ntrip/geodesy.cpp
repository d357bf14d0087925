#include "ntrip/geodesy.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace {

constexpr double wgs84_a_m = 6378137.0;
constexpr double wgs84_f = 1.0 / 298.257223563;
constexpr double wgs84_e2 = wgs84_f * (2.0 - wgs84_f);
constexpr double mean_radius_m = 6371008.8;
constexpr double degrees = 180.0 / std::numbers::pi;
constexpr int latitude_iterations = 5;  // converges to well under a millimetre

}  // namespace

geodetic_t geodetic_from_ecef(double x_m, double y_m, double z_m) {
  const double p = std::hypot(x_m, y_m);
  double lat = std::atan2(z_m, p * (1.0 - wgs84_e2));
  double height = 0.0;
  for (int i = 0; i < latitude_iterations; ++i) {
    const double sin_lat = std::sin(lat);
    const double n = wgs84_a_m / std::sqrt(1.0 - wgs84_e2 * sin_lat * sin_lat);
    height = std::abs(std::cos(lat)) > 1e-12 ? p / std::cos(lat) - n : std::abs(z_m) - n * (1.0 - wgs84_e2);
    lat = std::atan2(z_m, p * (1.0 - wgs84_e2 * n / (n + height)));
  }
  return {{lat * degrees, std::atan2(y_m, x_m) * degrees}, height};
}

double surface_distance_m(geo_coordinate_t a, geo_coordinate_t b) {
  const double lat1 = a.latitude / degrees, lat2 = b.latitude / degrees;
  const double dlat = lat2 - lat1, dlon = (b.longitude - a.longitude) / degrees;
  const double h = std::sin(dlat / 2) * std::sin(dlat / 2) +
                   std::cos(lat1) * std::cos(lat2) * std::sin(dlon / 2) * std::sin(dlon / 2);
  return 2.0 * mean_radius_m * std::asin(std::sqrt(std::min(1.0, h)));
}

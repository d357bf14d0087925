#include "nmea/position.h"

#include "nmea/fields.h"

namespace {

constexpr double lat_limit = 90.0;             // degrees
constexpr double lon_limit = 180.0;            // degrees
constexpr double record_scale = 10'000'000.0;  // 1e-7 degree

double signed_coordinate(double magnitude, std::string_view hemisphere) {
  return hemisphere == "S" || hemisphere == "W" ? -magnitude : magnitude;
}

}  // namespace

geo_coordinate_t sentence_position_t::map_coordinate() const {
  return {signed_coordinate(lat, lat_dir), signed_coordinate(lon, lon_dir)};
}

std::optional<sentence_position_t> read_position(std::span<const std::string_view> f, std::string_view lat_dir,
                                                 std::string_view lon_dir) {
  const auto la = parse_coordinate(f[0], 2);
  if (!la || *la < -lat_limit || *la > lat_limit) return std::nullopt;
  const auto lo = parse_coordinate(f[2], 3);
  if (!lo || *lo < -lon_limit || *lo > lon_limit) return std::nullopt;
  return sentence_position_t{*la, *lo, pick_letter(f[1], "N", "S", lat_dir), pick_letter(f[3], "E", "W", lon_dir),
                             !f[0].empty() && !f[2].empty()};
}

std::optional<geo_coordinate_t> record_position(std::int32_t lat, std::int32_t lon) {
  if (lat == 0 || lon == 0) return std::nullopt;
  return geo_coordinate_t{lat / record_scale, lon / record_scale};
}

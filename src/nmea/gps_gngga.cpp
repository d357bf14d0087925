#include "nmea/gps_gngga.h"

#include <cmath>
#include <iterator>
#include <numbers>

#include "nmea/fields.h"
#include "nmea/position.h"
#include "nmea/record_units.h"

namespace {

// GGA fix qualities 0 to 8.
constexpr std::string_view gga_fix_arr[] = {"invalid",
                                            "GPS",
                                            "DGPS",
                                            "PPS",
                                            "Real Time Kinematic",
                                            "Float RTK",
                                            "estimated (dead reckoning)",
                                            "Manual input mode",
                                            "Simulation mode"};
constexpr auto fix_quality_count = static_cast<std::int64_t>(std::size(gga_fix_arr));

// A decimal with its unit field ("M"): an empty unit skips the pair; any other unit stops the
// update; a value written without a point stops it; an unreadable value keeps the target.
bool read_with_unit(std::string_view value, std::string_view unit, double& target) {
  if (unit.empty()) return true;
  if (unit != "M") return false;
  const auto a = parse_double(value);
  if (!a) return true;
  if (!has_point(value)) return false;
  target = *a;
  return true;
}

}  // namespace

std::string_view gps_gngga_t::fix_text() const {
  const auto table = pvt_mode ? std::span<const std::string_view>(ubx_fix_type_text) : std::span(gga_fix_arr);
  if (fix_i < 0 || fix_i >= static_cast<std::int64_t>(table.size())) return "invalid";
  return table[static_cast<std::size_t>(fix_i)];
}

void gps_gngga_t::reset() {
  time.clear();
  lat = 0.0;
  lon = 0.0;
  fix_i = 0;
  sat_count_i = 0;
  hdop_d = 0.0;
  alt_d = 0.0;
  mean_sea_level_d = 0.0;
  direction_history.fill(0.0);
  magnitude_history.fill(0.0);
  lat_dir = "N";
  lon_dir = "E";
  map_annotations.clear();
  map_path.clear();
  map_fix = {};
}

annotation_ref_t gps_gngga_t::time_annotation() const {
  annotation_ref_t none;
  return make_annotation(hms_chars(time).view(), map_fix, none);
}

// $GNGGA,123519.00,4807.03800,N,01131.00000,E,1,08,0.9,545.4,M,46.9,M,,*77
//        time      lat        N/S lon       E/W fix sats hdop alt M geoid M age station
void gps_gngga_t::update(std::span<const std::string_view> f) {
  if (f.size() < 14 || f.size() > 16) return;
  if (f[0] != "$GNGGA" && f[0] != "$GPGGA") return;

  if (!time.parse(f[1])) return;

  if (f[6].empty()) return;
  const auto fix = parse_int(f[6]);
  if (!fix || *fix < 0 || *fix >= fix_quality_count) return;

  const auto sats = parse_int(f[7].empty() ? std::string_view("0") : f[7]);
  if (!sats || *sats < 0 || *sats > sat_count_max) return;

  const auto hdop = parse_double(f[8]);
  if (!hdop || *hdop < 0.0 || *hdop > hdop_max || !has_point(f[8])) return;

  if (!read_with_unit(f[9], f[10], alt_d)) return;
  if (!read_with_unit(f[11], f[12], mean_sea_level_d)) return;

  const auto position = read_position(f.subspan(2, 4), lat_dir, lon_dir);
  if (!position) return;

  pvt_mode = false;
  fix_i = *fix;
  sat_count_i = *sats;
  hdop_d = *hdop;

  if (!position->given) return;
  const double previous_lat = lat;
  const double previous_lon = lon;
  store_position(*this, *position);
  push_motion(previous_lat, previous_lon);
  map_fix = position->map_coordinate();
  if (*hdop < hdop_no_marker) place_marker();
  map_path.add_point(map_fix.latitude, map_fix.longitude, hdop_d);
}

void gps_gngga_t::update_posllh(const gps_posllh_t& r) {
  const double previous_lat = lat;
  const double previous_lon = lon;
  pvt_mode = false;
  time.set_from_itow(r.iTOW);
  alt_d = r.height / 1000.0;
  mean_sea_level_d = r.hMSL / 1000.0;
  const auto position = record_position(r.lat, r.lon);
  if (!position) return;
  store_position(*this, *position);
  push_motion(previous_lat, previous_lon);
  map_fix = *position;
  place_marker();
  map_path.add_point(map_fix.latitude, map_fix.longitude, hdop_d);
}

void gps_gngga_t::update_pvt(const gps_pvt_t& r) {
  if (r.fixType >= std::size(ubx_fix_type_text)) return;
  pvt_mode = true;
  fix_i = r.fixType;
  sat_count_i = r.numSV;
  time.set(r.hour, r.min, r.sec, 0);
  alt_d = r.height / 1000.0;
  mean_sea_level_d = r.hMSL / 1000.0;
  hdop_d = r.pDOP / 100.0;
  if (r.headMot != 0) push_history(direction_history, r.headMot * 1e-5 * std::numbers::pi / 180.0);
  const auto position = record_position(r.lat, r.lon);
  if (!position) return;
  store_position(*this, *position);
  map_fix = *position;
  if (r.pDOP < pdop_no_marker) place_marker();
  map_path.add_point(map_fix.latitude, map_fix.longitude, hdop_d);
}

// The letters turn the difference of two magnitudes into a signed movement north and east.
// atan2 keeps IEEE signed zeros: standing still gives pi/2 facing east and -pi/2 facing west.
void gps_gngga_t::push_motion(double previous_lat, double previous_lon) {
  const double sn = lat_dir == "N" ? 1.0 : -1.0;
  const double se = lon_dir == "E" ? 1.0 : -1.0;
  const double dn = (lat - previous_lat) * sn * meters_per_lat;
  const double de = (lon - previous_lon) * se * meters_per_lon;
  push_history(direction_history, std::numbers::pi / 2 - std::atan2(dn, de));
  push_history(magnitude_history, std::sqrt(dn * dn + de * de));
}

void gps_gngga_t::place_marker() {
  spare_marker_ = map_annotations.add_annotation(make_annotation(hms_chars(time).view(), map_fix, spare_marker_));
}

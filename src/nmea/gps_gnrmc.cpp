#include "nmea/gps_gnrmc.h"

#include "nmea/fields.h"
#include "nmea/position.h"
#include "nmea/record_units.h"

void gps_gnrmc_t::reset() {
  time.clear();
  date.clear();
  lat = 0.0;
  lon = 0.0;
  speed_knots = 0.0;
  track_angle = 0.0;
  magnetic_variation = 0.0;
  lat_dir = "N";
  lon_dir = "E";
  data_status = "A";
  map_annotations.clear();
}

// $GNRMC,123519.00,A,4807.03800,N,01131.00000,E,0.022,84.4,230394,,,A*78
//        time      status lat   N/S lon       E/W speed track date var E/W mode
void gps_gnrmc_t::update(std::span<const std::string_view> f) {
  if (f.size() != 13 && f.size() != 14) return;
  if (f[0] != "$GNRMC" && f[0] != "$GPRMC") return;

  if (!time.parse(f[1])) return;
  if (!date.parse(f[9])) return;

  if (f[2] != "A" && f[2] != "V") return;
  const std::string_view status = f[2] == "A" ? "A" : "V";

  if (!store_decimal(f[7], speed_max, speed_knots)) return;
  if (!store_decimal(f[8], track_max, track_angle)) return;
  if (f[11] == "E" || f[11] == "W") {
    if (!store_decimal(f[10], variation_max, magnetic_variation)) return;
  } else if (!f[11].empty()) {
    return;
  }

  const auto position = read_position(f.subspan(3, 4), lat_dir, lon_dir);
  if (!position) return;

  data_status = status;
  if (!position->given) return;
  store_position(*this, *position);
  place_marker(position->map_coordinate());
}

void gps_gnrmc_t::update_posllh(const gps_posllh_t& r) {
  time.set_from_itow(r.iTOW);
  const auto position = record_position(r.lat, r.lon);
  if (!position) return;
  store_position(*this, *position);
  place_marker(*position);
}

void gps_gnrmc_t::update_pvt(const gps_pvt_t& r) {
  speed_knots = r.gSpeed / mm_per_s_per_knot;
  track_angle = r.headVeh * 1e-5;
  magnetic_variation = r.magDec / 100.0;
  time.set(r.hour, r.min, r.sec, 0);
  date.set(r.year, r.month, r.day);
  const auto position = record_position(r.lat, r.lon);
  if (!position) return;
  store_position(*this, *position);
  if (r.pDOP < pdop_no_marker) place_marker(*position);
}

void gps_gnrmc_t::place_marker(geo_coordinate_t where) {
  spare_marker_ = map_annotations.add_annotation(make_annotation(ymd_chars(date).view(), where, spare_marker_));
}

#include "nmea/gps_gnrmc.h"

#include "nmea/fields.h"
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

  const auto ns = pick_letter(f[4], "N", "S", lat_dir);
  const auto ew = pick_letter(f[6], "E", "W", lon_dir);

  if (!store_decimal(f[7], speed_max, speed_knots)) return;
  if (!store_decimal(f[8], track_max, track_angle)) return;
  if (f[11] == "E" || f[11] == "W") {
    if (!store_decimal(f[10], variation_max, magnetic_variation)) return;
  } else if (!f[11].empty()) {
    return;
  }

  const auto la = parse_coordinate(f[3], 2);
  if (!la || *la < -90.0 || *la > 90.0) return;
  const auto lo = parse_coordinate(f[5], 3);
  if (!lo || *lo < -180.0 || *lo > 180.0) return;

  data_status = status;
  if (f[3].empty() || f[5].empty()) return;
  lat_dir = ns;
  lon_dir = ew;
  lat = *la;
  lon = *lo;
  place_marker({signed_coordinate(lat, lat_dir), signed_coordinate(lon, lon_dir)});
}

void gps_gnrmc_t::update_posllh(const gps_posllh_t& r) {
  time.set_from_itow(r.iTOW);
  if (r.lat == 0 || r.lon == 0) return;
  lat = record_degrees(r.lat);
  lon = record_degrees(r.lon);
  place_marker({lat, lon});
}

void gps_gnrmc_t::update_pvt(const gps_pvt_t& r) {
  speed_knots = r.gSpeed / mm_per_s_per_knot;
  track_angle = r.headVeh * 1e-5;
  magnetic_variation = r.magDec / 100.0;
  time.set(r.hour, r.min, r.sec, 0);
  date.set(r.year, r.month, r.day);
  if (r.lat == 0 || r.lon == 0) return;
  lat = record_degrees(r.lat);
  lon = record_degrees(r.lon);
  if (r.pDOP >= pdop_no_marker) return;
  place_marker({lat, lon});
}

void gps_gnrmc_t::place_marker(geo_coordinate_t where) {
  spare_marker_ = map_annotations.add_annotation(make_annotation(ymd_chars(date).view(), where, spare_marker_));
}

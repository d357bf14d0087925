#include "nmea/gps_gngll.h"

#include "nmea/fields.h"
#include "nmea/record_units.h"

void gps_gngll_t::reset() {
  time.clear();
  lat = 0.0;
  lon = 0.0;
  lat_dir = "N";
  lon_dir = "E";
  data_status = "A";
  map_annotations.clear();
}

// $GNGLL,4807.03800,N,01131.00000,E,123519.00,A,A*78
//        lat        N/S lon       E/W time    status mode
void gps_gngll_t::update(std::span<const std::string_view> f) {
  if (f.size() != 8) return;
  if (f[0] != "$GNGLL" && f[0] != "$GPGLL") return;

  if (!time.parse(f[5])) return;

  if (f[6] != "A" && f[6] != "V") return;
  const std::string_view status = f[6] == "A" ? "A" : "V";

  const auto ns = pick_letter(f[2], "N", "S", lat_dir);
  const auto ew = pick_letter(f[4], "E", "W", lon_dir);

  const auto la = parse_coordinate(f[1], 2);
  if (!la || *la < -90.0 || *la > 90.0) return;
  const auto lo = parse_coordinate(f[3], 3);
  if (!lo || *lo < -180.0 || *lo > 180.0) return;

  data_status = status;
  if (f[1].empty() || f[3].empty()) return;
  lat_dir = ns;
  lon_dir = ew;
  lat = *la;
  lon = *lo;
  place_marker({signed_coordinate(lat, lat_dir), signed_coordinate(lon, lon_dir)});
}

void gps_gngll_t::update_posllh(const gps_posllh_t& r) {
  time.set_from_itow(r.iTOW);
  if (r.lat == 0 || r.lon == 0) return;
  lat = record_degrees(r.lat);
  lon = record_degrees(r.lon);
  place_marker({lat, lon});
}

void gps_gngll_t::update_pvt(const gps_pvt_t& r) {
  time.set(r.hour, r.min, r.sec, 0);
  if (r.lat == 0 || r.lon == 0) return;
  lat = record_degrees(r.lat);
  lon = record_degrees(r.lon);
  if (r.pDOP >= pdop_no_marker) return;
  place_marker({lat, lon});
}

void gps_gngll_t::place_marker(geo_coordinate_t where) {
  spare_marker_ = map_annotations.add_annotation(make_annotation(hms_chars(time).view(), where, spare_marker_));
}

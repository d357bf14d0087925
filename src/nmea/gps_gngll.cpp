#include "nmea/gps_gngll.h"

#include "nmea/fields.h"
#include "nmea/position.h"
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

  const auto position = read_position(f.subspan(1, 4), lat_dir, lon_dir);
  if (!position) return;

  data_status = status;
  if (!position->given) return;
  store_position(*this, *position);
  place_marker(position->map_coordinate());
}

void gps_gngll_t::update_posllh(const gps_posllh_t& r) {
  time.set_from_itow(r.iTOW);
  const auto position = record_position(r.lat, r.lon);
  if (!position) return;
  store_position(*this, *position);
  place_marker(*position);
}

void gps_gngll_t::update_pvt(const gps_pvt_t& r) {
  time.set(r.hour, r.min, r.sec, 0);
  const auto position = record_position(r.lat, r.lon);
  if (!position) return;
  store_position(*this, *position);
  if (r.pDOP < pdop_no_marker) place_marker(*position);
}

void gps_gngll_t::place_marker(geo_coordinate_t where) {
  spare_marker_ = map_annotations.add_annotation(make_annotation(hms_chars(time).view(), where, spare_marker_));
}

#include "nmea/gps_gnvtg.h"

#include "nmea/fields.h"
#include "nmea/record_units.h"

void gps_gnvtg_t::reset() {
  true_track_mode_deg = 0.0;
  magnetic_track_mode_deg = 0.0;
  speed_knots = 0.0;
  speed_kph = 0.0;
}

// $GNVTG,84.4,T,,M,0.022,N,0.041,K,A*2E
//        true T mag M knots N km/h K mode
void gps_gnvtg_t::update(std::span<const std::string_view> f) {
  if (f.size() != 10) return;
  if (f[0] != "$GNVTG" && f[0] != "$GPVTG") return;
  if (f[2] != "T" || f[4] != "M" || f[6] != "N" || f[8] != "K") return;
  if (!store_decimal(f[1], true_track_max, true_track_mode_deg)) return;
  if (!store_decimal(f[3], value_max, magnetic_track_mode_deg)) return;
  if (!store_decimal(f[5], value_max, speed_knots)) return;
  store_decimal(f[7], value_max, speed_kph);
}

void gps_gnvtg_t::update_pvt(const gps_pvt_t& r) {
  speed_knots = r.gSpeed / mm_per_s_per_knot;
  speed_kph = r.gSpeed * kph_per_mm_per_s;
}

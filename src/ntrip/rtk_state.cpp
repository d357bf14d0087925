#include "ntrip/rtk_state.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

#include "nmea/gps_gngga.h"
#include "nmea/sentence.h"

namespace {

constexpr std::uint8_t pvt_differential = 0x02;
constexpr int pvt_carrier_shift = 6;

// ddmm.mmmmm for a latitude, dddmm.mmmmm for a longitude, from signed degrees.
std::string degrees_minutes(double degrees, int width) {
  const double magnitude = std::abs(degrees);
  auto whole = static_cast<int>(magnitude);
  double minutes = (magnitude - whole) * 60.0;
  if (minutes >= 59.999995) {
    minutes = 0.0;
    ++whole;
  }
  char text[32];
  std::snprintf(text, sizeof text, "%0*d%08.5f", width, whole, minutes);
  return text;
}

}  // namespace

rtk_mode_t rtk_mode(const gps_gngga_t& gga, std::uint8_t pvt_flags) {
  if (gga.pvt_mode) {
    if (gga.fix_i < 2) return rtk_mode_t::none;
    switch ((pvt_flags >> pvt_carrier_shift) & 0x03) {
      case 1:
        return rtk_mode_t::float_rtk;
      case 2:
        return rtk_mode_t::fixed;
      default:
        return pvt_flags & pvt_differential ? rtk_mode_t::dgnss : rtk_mode_t::none;
    }
  }
  switch (gga.fix_i) {
    case 2:
      return rtk_mode_t::dgnss;
    case 4:
      return rtk_mode_t::fixed;
    case 5:
      return rtk_mode_t::float_rtk;
    default:
      return rtk_mode_t::none;
  }
}

std::string_view rtk_text(rtk_mode_t mode) {
  switch (mode) {
    case rtk_mode_t::dgnss:
      return "DGNSS";
    case rtk_mode_t::float_rtk:
      return "RTK float";
    case rtk_mode_t::fixed:
      return "RTK fixed";
    case rtk_mode_t::none:
      break;
  }
  return "no RTK";
}

// $GPGGA,hhmmss.ss,ddmm.mmmmm,N,dddmm.mmmmm,E,q,nn,h.h,alt,M,,M,,*cs
std::optional<std::string> upstream_gga(const gps_gngga_t& gga) {
  const auto& p = gga.map_fix;
  const bool fixed = gga.pvt_mode ? gga.fix_i >= 2 : gga.fix_i >= 1;
  if (!fixed || !std::isfinite(p.latitude) || !std::isfinite(p.longitude) || std::abs(p.latitude) > 90.0 ||
      std::abs(p.longitude) > 180.0)
    return std::nullopt;
  // A record's fix type is no GGA quality: a fix from one is given as an autonomous fix.
  const auto quality = gga.pvt_mode ? 1 : static_cast<int>(gga.fix_i % 10);
  const auto satellites = static_cast<int>(std::clamp<std::int64_t>(gga.sat_count_i, 0, 99));
  const double hdop = std::isfinite(gga.hdop_d) ? std::clamp(gga.hdop_d, 0.0, 99.9) : 99.9;
  const double alt = std::isfinite(gga.alt_d) ? std::clamp(gga.alt_d, -9999.0, 99999.0) : 0.0;
  char body[160];
  std::snprintf(body, sizeof body, "$GPGGA,%02d%02d%02d.00,%s,%c,%s,%c,%d,%02d,%.1f,%.1f,M,0.0,M,,",
                static_cast<int>(gga.time.hh % 24), static_cast<int>(gga.time.mm % 60),
                static_cast<int>(gga.time.ss % 60), degrees_minutes(p.latitude, 2).c_str(), p.latitude < 0 ? 'S' : 'N',
                degrees_minutes(p.longitude, 3).c_str(), p.longitude < 0 ? 'W' : 'E', quality, satellites, hdop, alt);
  return with_checksum(body) + "\r\n";
}

#include "session/track_store.h"

#include <cmath>
#include <ctime>

#include "link/connection.h"

namespace {

// The fraction of a second: a record's milliseconds, or a sentence's fraction digits read as the
// integer they spell (".1" and ".10" both arrive as tenths or hundredths; receivers write a fixed
// number of digits, so one and two digits are tenths and hundredths, three thousandths).
double fraction_s(const time_hms_t& t, bool record) {
  if (record || t.ms >= 100) return static_cast<double>(t.ms) / 1000.0;
  return static_cast<double>(t.ms) / (t.ms >= 10 ? 100.0 : 10.0);
}

fix_kind_t fix_kind(const connection_t& hub) {
  const auto& gga = hub.gga;
  if (gga.pvt_mode) {
    if (gga.fix_i == 2) return fix_kind_t::two_d;
    return gga.fix_i == 3 || gga.fix_i == 4 ? fix_kind_t::three_d : fix_kind_t::unknown;
  }
  switch (gga.fix_i) {
    case 2:
    case 4:
    case 5:
      return fix_kind_t::dgps;
    case 3:
      return fix_kind_t::pps;
    case 1:
      if (hub.gsa.fix_type_i == 2) return fix_kind_t::two_d;
      return hub.gsa.fix_type_i == 3 ? fix_kind_t::three_d : fix_kind_t::unknown;
    default:
      return fix_kind_t::unknown;
  }
}

}  // namespace

std::string_view fix_kind_text(fix_kind_t kind) {
  switch (kind) {
    case fix_kind_t::two_d:
      return "2d";
    case fix_kind_t::three_d:
      return "3d";
    case fix_kind_t::dgps:
      return "dgps";
    case fix_kind_t::pps:
      return "pps";
    case fix_kind_t::unknown:
      break;
  }
  return {};
}

track_store_t::track_store_t(const connection_t& hub, std::size_t capacity) : hub_(hub), capacity_(capacity) {}

void track_store_t::received(std::span<const std::uint8_t>) {
  sample();
}

void track_store_t::sample() {
  const auto& gga = hub_.gga;
  const auto& fix = gga.map_fix;
  if (gga.fix_i <= 0 || !std::isfinite(fix.latitude) || !std::isfinite(fix.longitude)) return;
  const auto& t = gga.time;
  const auto& date = hub_.rmc.date;
  track_point_t point{fix.latitude, fix.longitude};
  const double day_s = static_cast<double>(t.hh * 3600 + t.mm * 60 + t.ss) + fraction_s(t, gga.pvt_mode);
  if (date.y != 0) {
    std::tm midnight{};
    midnight.tm_year = static_cast<int>(date.y - 1900);
    midnight.tm_mon = static_cast<int>(date.m - 1);
    midnight.tm_mday = static_cast<int>(date.d);
    point.utc_s = static_cast<double>(timegm(&midnight)) + day_s;
  }
  point.ele_m = gga.alt_d;
  point.hdop = gga.hdop_d;
  point.sat = gga.sat_count_i;
  point.fix = fix_kind(hub_);
  // A new epoch has a new time of day or, from a receiver whose clock does not run, a new position.
  if (!points_.empty() && day_s == last_day_s_ && point.lat == points_.back().lat && point.lon == points_.back().lon)
    return;
  last_day_s_ = day_s;
  if (points_.size() == capacity_) {
    points_.pop_front();
    ++dropped_;
  }
  points_.push_back(point);
}

void track_store_t::clear() {
  points_.clear();
  dropped_ = 0;
}

#include "ntrip/rtcm_stats.h"

#include "ntrip/rtcm_bits.h"

namespace {

constexpr double ecef_scale_m = 0.0001;    // the unit of 1005's antenna reference point
constexpr std::size_t station_bits = 152;  // 1005's length; 1006 adds the antenna height

}  // namespace

// 1005: type 12, station 12, ITRF year 6, four system flags, X 38 signed, two flags, Y 38 signed,
// quarter-cycle 2, Z 38 signed (each in 0.1 mm).
std::optional<rtcm_station_t> rtcm_station(const rtcm_frame_t& frame) {
  if (frame.type != 1005 && frame.type != 1006) return std::nullopt;
  if (frame.payload.size() * 8 < station_bits) return std::nullopt;
  rtcm_station_t s;
  s.id = static_cast<std::uint16_t>(rtcm_unsigned(frame.payload, 12, 12));
  s.x_m = static_cast<double>(rtcm_signed(frame.payload, 34, 38)) * ecef_scale_m;
  s.y_m = static_cast<double>(rtcm_signed(frame.payload, 74, 38)) * ecef_scale_m;
  s.z_m = static_cast<double>(rtcm_signed(frame.payload, 114, 38)) * ecef_scale_m;
  return s;
}

void rtcm_stats_t::feed(std::span<const std::uint8_t> bytes, double now_s) {
  bytes_ += bytes.size();
  framer_.feed(bytes, [&](const rtcm_frame_t& frame) {
    ++frames_;
    last_frame_s_ = now_s;
    auto& t = types_[frame.type];
    if (t.count > 0) t.interval_s = now_s - t.last_s;
    ++t.count;
    t.last_s = now_s;
    if (auto station = rtcm_station(frame)) station_ = station;
  });
}

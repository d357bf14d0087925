#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <span>

#include "ntrip/rtcm_framer.h"

// A reference station's antenna position from message 1005 or 1006, in metres, earth-centred.
struct rtcm_station_t {
  std::uint16_t id = 0;
  double x_m = 0.0;
  double y_m = 0.0;
  double z_m = 0.0;
  bool operator==(const rtcm_station_t&) const = default;
};

// The station position of a 1005 or 1006 payload; nothing for another type or a short payload.
std::optional<rtcm_station_t> rtcm_station(const rtcm_frame_t& frame);

// How often one message type arrived.
struct rtcm_type_count_t {
  std::uint64_t count = 0;
  double last_s = 0.0;      // the clock when it last arrived
  double interval_s = 0.0;  // between its last two arrivals; 0 until it came twice
};

// What a correction stream carried: bytes, good frames by message type, bad frames, the base station
// and when the last frame arrived. Observations are counted, never decoded.
class rtcm_stats_t {
public:
  // Counts the bytes and the frames in them; now_s dates what arrived.
  void feed(std::span<const std::uint8_t> bytes, double now_s);
  // Forgets a partial frame at a new connection; the counts stay.
  void restart() { framer_.reset(); }

  std::uint64_t bytes() const { return bytes_; }
  std::uint64_t frames() const { return frames_; }
  std::uint64_t bad_frames() const { return framer_.bad_frames(); }
  const std::map<std::uint16_t, rtcm_type_count_t>& types() const { return types_; }
  const std::optional<rtcm_station_t>& station() const { return station_; }
  // The clock when the last good frame arrived; nothing before the first.
  std::optional<double> last_frame_s() const { return last_frame_s_; }

private:
  rtcm_framer_t framer_;
  std::uint64_t bytes_ = 0;
  std::uint64_t frames_ = 0;
  std::map<std::uint16_t, rtcm_type_count_t> types_;
  std::optional<rtcm_station_t> station_;
  std::optional<double> last_frame_s_;
};

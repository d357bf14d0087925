#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <span>
#include <string_view>

#include "link/receive_tap.h"

class connection_t;

// How a fix was made, in the words of a GPX fix element; unknown when the receiver did not say.
enum class fix_kind_t : std::uint8_t { unknown, two_d, three_d, dgps, pps };
std::string_view fix_kind_text(fix_kind_t kind);  // "2d", "3d", "dgps", "pps"; empty when unknown

// One epoch's position, north and east positive.
struct track_point_t {
  double lat = 0;
  double lon = 0;
  double utc_s = -1;  // seconds since 1970-01-01 UTC; negative while the date is not known
  double ele_m = 0;   // above mean sea level
  double hdop = 0;    // 0: not reported
  std::int64_t sat = 0;
  fix_kind_t fix = fix_kind_t::unknown;

  bool operator==(const track_point_t&) const = default;
};

// The session's full track: every epoch's fix, not the map's thinned line, up to a day at 10 Hz;
// beyond that the oldest points go first and are counted. It reads the hub's fix as each chunk
// arrives, before the chunk is decoded, so each chunk's last epoch is kept; a receiver sends an
// epoch's sentences or records together, and a capture plays an epoch per delivery. sample()
// takes the epoch decoded last (before an export).
class track_store_t final : public receive_tap_t {
public:
  static constexpr std::size_t default_capacity = 864000;  // points: a day at 10 Hz

  explicit track_store_t(const connection_t& hub, std::size_t capacity = default_capacity);

  void received(std::span<const std::uint8_t> bytes) override;
  // Keeps the hub's fix when it is valid and from a new epoch.
  void sample();
  void clear();

  const std::deque<track_point_t>& points() const { return points_; }
  // The oldest points that made room for newer ones.
  std::uint64_t dropped() const { return dropped_; }

private:
  const connection_t& hub_;
  std::size_t capacity_;
  std::deque<track_point_t> points_;
  std::uint64_t dropped_ = 0;
  double last_day_s_ = 0;  // the time of day of the newest point
};

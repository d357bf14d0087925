#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <utility>
#include <vector>

#include "gnss/gnss_ids.h"

// A satellite of any system, by its system and its number as the receiver gives it.
struct sky_key_t {
  gnss_system_t system = gnss_system_t::gps;
  std::uint16_t number = 0;
  bool operator==(const sky_key_t&) const = default;
  // By system, then number: a system's satellites stand together.
  bool operator<(const sky_key_t& o) const { return std::pair(system, number) < std::pair(o.system, o.number); }
};

// One signal of a satellite that the receiver tracks.
struct sky_signal_t {
  gnss_signal_t id = 0;
  std::uint8_t cn0 = 0;  // dB-Hz, above 0
  bool used = false;     // in the fix, where the receiver says so for each signal
  double time = 0.0;     // s, when it was last reported
  bool operator==(const sky_signal_t&) const = default;
};

// The signals a satellite is tracked on, in the order they were first reported, at most
// `capacity` of them: more bands than a receiver tracks on one satellite. Held in place, so a
// table of satellites is one block of memory.
class sky_signals_t {
public:
  static constexpr std::size_t capacity = 6;

  const sky_signal_t* begin() const { return slots_.data(); }
  const sky_signal_t* end() const { return slots_.data() + count_; }
  std::size_t size() const { return count_; }
  bool empty() const { return count_ == 0; }
  const sky_signal_t& operator[](std::size_t i) const { return slots_[i]; }

  // The signal reported now with its C/N0, or null: a C/N0 of 0 (not tracked) removes it, and a
  // new signal beyond the capacity is dropped.
  // Every report of a satellite comes through here: it is inline.
  sky_signal_t* set(gnss_signal_t id, std::uint8_t cn0, double now) {
    std::size_t i = 0;
    while (i < count_ && slots_[i].id != id) ++i;
    if (cn0 == 0) {
      if (i < count_) remove(i);
      return nullptr;
    }
    if (i == count_) {
      if (count_ == capacity) return nullptr;
      slots_[count_++] = {id, cn0, false, now};
    }
    slots_[i].cn0 = cn0;
    slots_[i].time = now;
    return &slots_[i];
  }
  // Removes the signals last reported before the limit.
  void expire(double limit);

private:
  void remove(std::size_t i);

  std::array<sky_signal_t, capacity> slots_{};
  std::uint8_t count_ = 0;
};

struct sky_satellite_t {
  double time = 0.0;             // s, when anything last reported it
  bool placed = false;           // elevation and azimuth are known
  std::int8_t elevation = 0;     // degrees above the horizon; below it is negative
  std::uint16_t azimuth = 0;     // degrees from true north
  bool used = false;             // in the fix
  std::uint8_t health = 0;       // from UBX: 0 unknown, 1 healthy, 2 unhealthy
  std::uint8_t quality = 0;      // from UBX: 0 no signal to 7 code and carrier locked
  std::int16_t residual_dm = 0;  // from UBX: pseudorange residual, 0.1 m
  sky_signals_t tracked;

  // The strongest signal's C/N0, 0 without one.
  std::uint8_t best_cn0() const;
};

// The satellites in view, kept in key order for the readers and found in one step by the decoder,
// which looks a satellite up for every group of fields it reads. Satellites come and go seldom;
// only then is the order kept and the index rebuilt. At most `capacity` satellites are kept.
class sky_table_t {
public:
  using value_type = std::pair<sky_key_t, sky_satellite_t>;
  static constexpr std::size_t number_limit = 1000;  // numbers are below this
  static constexpr std::size_t capacity = 255;       // satellites; seven systems fill a third

  sky_table_t() : position_(gnss_system_count * number_limit) {}

  auto begin() const { return entries_.cbegin(); }
  auto end() const { return entries_.cend(); }
  std::size_t size() const { return entries_.size(); }
  bool empty() const { return entries_.empty(); }
  // The satellite, or null.
  const sky_satellite_t* find(sky_key_t key) const;

  // The satellite's entry, made when new; null when the table is full. The key's number is below
  // number_limit.
  sky_satellite_t* entry(sky_key_t key) {
    const auto at = position_[slot(key)];
    return at != 0 ? &entries_[at - 1].second : insert(key);
  }
  // The satellites of one system, in number order.
  std::span<value_type> of_system(gnss_system_t system);
  void clear();
  // Removes every satellite and signal last reported before the limit; the oldest report time of
  // those that stay (infinity for none).
  double expire(double limit);

private:
  static std::size_t slot(sky_key_t key) { return index_of(key.system) * number_limit + key.number; }
  sky_satellite_t* insert(sky_key_t key);
  void reindex();

  std::vector<value_type> entries_;
  std::vector<std::uint8_t> position_;                              // by slot: the entry's position + 1, or 0 for none
  std::array<std::uint8_t, gnss_system_count + 1> system_start_{};  // each system's first position
};

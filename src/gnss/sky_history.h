#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "core/ring.h"
#include "gnss/gnss_ids.h"

// What the sky looked like at one moment: per system the satellites in view and used, the DOPs
// and the mean C/N0 of the four strongest signals (NaN where there was none).
struct sky_sample_t {
  double time = 0.0;  // s
  std::array<std::uint8_t, gnss_system_count> in_view{};
  std::array<std::uint8_t, gnss_system_count> used{};
  float hdop = 0.0f;
  float pdop = 0.0f;
  float cn0_top = 0.0f;  // dB-Hz
  bool operator==(const sky_sample_t&) const = default;
};

// A sample a second for the last hour, oldest first, for the history charts.
class sky_history_t {
public:
  static constexpr double period_s = 1.0;
  static constexpr std::size_t capacity = 3600;  // an hour of samples
  static constexpr std::size_t strongest = 4;    // signals whose C/N0 the samples average

  const ring_t<sky_sample_t>& samples() const { return samples_; }
  // Whether a sample is due at this time: a period after the last one, or the first.
  bool due(double now) const { return now >= next_; }
  void add(const sky_sample_t& sample);
  void clear();

private:
  ring_t<sky_sample_t> samples_{capacity};
  double next_ = 0.0;
};

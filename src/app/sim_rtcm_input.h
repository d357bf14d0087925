#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "ntrip/rtcm_stats.h"
#include "sim/sim_engine.h"
#include "sim/sim_input.h"

// The simulated receiver's correction input: counts the RTCM 3 frames clients send and tells the
// engine when some arrived, which moves an RTK-capable receiver towards a fixed solution.
class sim_rtcm_input_t final : public sim_input_t {
public:
  explicit sim_rtcm_input_t(sim_engine_t& engine) : engine_(engine) {}

  std::string received(std::string_view bytes) override {
    const auto before = stats_.frames();
    stats_.feed({reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size()}, 0.0);
    if (stats_.frames() != before) engine_.corrections_arrived();
    return {};
  }
  const rtcm_stats_t& stats() const { return stats_; }

private:
  sim_engine_t& engine_;
  rtcm_stats_t stats_;
};

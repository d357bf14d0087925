#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <thread>

#include "app/sim_rtcm_input.h"
#include "sim/sim_engine.h"
#include "sim/sim_receiver.h"
#include "sim/sim_server.h"

// The demo's receiver: the simulator serving a walk at 10 Hz on a free port of 127.0.0.1, on a
// thread of its own, until the demo ends. It takes RTCM corrections as an RTK receiver does, going
// to RTK float and fixed while they arrive, and answers configuration and MON-VER as korvid-sim does.
class demo_sim_t {
public:
  static constexpr double rate_hz = 10.0;
  static constexpr double speed_mps = 6.0;  // a bicycle, so the track grows visibly

  // ubx: NAV-PVT and NAV-POSLLH frames instead of sentences; gnss: the systems of a multi-GNSS
  // receiver (bits of sim/sim_sky.h), 0 for GPS alone.
  explicit demo_sim_t(bool ubx = false, std::uint8_t gnss = 0);
  ~demo_sim_t();
  demo_sim_t(const demo_sim_t&) = delete;
  demo_sim_t& operator=(const demo_sim_t&) = delete;

  // False when no port could be had.
  bool started() const { return port_ != 0; }
  std::uint16_t port() const { return port_; }

private:
  sim_engine_t engine_;
  sim_server_t server_;
  sim_rtcm_input_t rtcm_{engine_};
  sim_receiver_t receiver_;  // answers the console's commands as a receiver does
  std::atomic<bool> stop_{false};
  std::uint16_t port_ = 0;
  std::thread thread_;
};

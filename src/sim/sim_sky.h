#pragma once

#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

#include "gnss/gnss_ids.h"

// The multi-GNSS sky of the simulated receiver: for each system asked for, satellites crossing
// the sky, tracked on the system's first band and some also on a second one, used in the fix when
// high enough.

// A set of systems, one bit per gnss_system_t.
using gnss_system_set_t = std::uint8_t;
inline gnss_system_set_t bit_of(gnss_system_t system) {
  return static_cast<gnss_system_set_t>(1u << index_of(system));
}

// "gps,glo,gal,bds,qzss" in any order and selection; nothing for an empty list or another name.
std::optional<gnss_system_set_t> parse_gnss_list(std::string_view list);

struct sim_signal_t {
  gnss_signal_t id = 0;  // NMEA signal id
  int cn0 = 0;           // dB-Hz
};

struct sim_satellite_t {
  gnss_system_t system = gnss_system_t::gps;
  int number = 0;  // as NMEA 4.11 numbers it: GLONASS 65-96, the others from 1
  int elevation = 0;
  int azimuth = 0;
  bool used = false;
  std::vector<sim_signal_t> bands;  // the signals tracked, the first band first
};

// The satellites of the systems at t seconds, by system in the screens' order, then number.
std::vector<sim_satellite_t> sim_sky(gnss_system_set_t systems, double t);

#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "sim/sim_engine.h"
#include "sim/sim_server.h"

// What korvid-sim, the receiver simulator, was asked to do.
struct sim_options_t {
  sim_config_t receiver;       // the epoch length follows --rate
  sim_server_config_t server;  // the period follows --rate
  std::string replay_file;     // serve this capture line by line instead
  bool pty = false;            // serve on a pseudo-terminal instead of TCP
  std::uint32_t baud = 0;      // with pty: the only rate the device answers at; 0 answers at any
  std::string udp_host;        // send datagrams to udp_host:udp_port instead of serving TCP
  std::uint16_t udp_port = 0;
  bool help = false;
  std::string rtcm_file;         // write a correction stream of `duration` epochs (10 without) here and stop
  bool ignore_commands = false;  // no answers to the clients' commands
};

// Either the options or a one-line message naming what was wrong.
struct sim_parse_t {
  std::optional<sim_options_t> options;
  std::string error;
};

// Reads the options in order; the first bad one is the error, and --help ends the reading.
sim_parse_t parse_sim(std::span<const std::string_view> args);

extern const char* const sim_usage;

#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "ntrip/ntrip_address.h"
#include "ui/open_sheets.h"

// What korvid, the window, was asked to do.
struct window_options_t {
  bool demo = false;       // run the built-in simulator on loopback and connect to it
  bool ubx = false;        // the demo's simulator sends UBX frames instead of sentences
  std::uint8_t gnss = 0;   // the demo's systems beside GPS alone (bits of sim/sim_sky.h)
  std::string screenshot;  // render the window to this PNG and exit
  double after_s = 3.0;    // s before the screenshot
  int width = 1100;        // the window's size, screen points
  int height = 760;
  std::vector<sheet_id_t> sheets;  // open them (for screenshots)
  bool dark = false;               // a dark palette (for screenshots of the dark theme)
  bool help = false;
  std::optional<ntrip_address_t> corrections;  // stream this mountpoint to the receiver from the start
  std::string capture;                         // a capture to play at start
};

struct window_parse_t {
  std::optional<window_options_t> options;
  std::string error;
};

window_parse_t parse_window(std::span<const std::string_view> args);

extern const char* const window_usage;

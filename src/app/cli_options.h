#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>

// What korvid-cli was asked to do.
struct cli_options_t {
  std::string replay_file;
  std::size_t chunk = 0;  // replay chunk size in bytes
  bool json = false;
  bool show_all = false;
  bool help = false;
};

inline constexpr std::size_t cli_max_chunk = 65536;  // bytes

// Either the options or a one-line message naming what was wrong.
struct cli_parse_t {
  std::optional<cli_options_t> options;
  std::string error;
};

cli_parse_t parse_cli(std::span<const std::string_view> args);

extern const char* const cli_usage;

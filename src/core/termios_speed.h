#pragma once

#include <termios.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <optional>
#include <utility>

// The baud rates a serial link and the simulated serial device use, with their termios speeds.
inline constexpr std::array<std::pair<std::uint32_t, speed_t>, 8> termios_speeds{{
    {4800, B4800},
    {9600, B9600},
    {19200, B19200},
    {38400, B38400},
    {57600, B57600},
    {115200, B115200},
    {230400, B230400},
    {460800, B460800},
}};

// The termios speed of a rate in bauds; nothing for a rate not in the table.
inline std::optional<speed_t> termios_speed(std::uint32_t baud) {
  const auto* match =
      std::find_if(termios_speeds.begin(), termios_speeds.end(), [&](const auto& s) { return s.first == baud; });
  if (match == termios_speeds.end()) return std::nullopt;
  return match->second;
}

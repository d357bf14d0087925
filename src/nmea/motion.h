#pragma once

#include <array>
#include <cstddef>

// A short history of movement, newest at index 0, always the same length.
inline constexpr std::size_t motion_history_length = 10;
using motion_history_t = std::array<double, motion_history_length>;

// Inserts the value at index 0; the oldest falls off the end.
inline void push_history(motion_history_t& history, double value) {
  for (std::size_t i = history.size() - 1; i > 0; --i) history[i] = history[i - 1];
  history[0] = value;
}

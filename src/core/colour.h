#pragma once

#include <cstdint>

// The semantic colours a model chooses for its texts; the screens map them to the palette of the
// current light or dark theme.
enum class colour_t : std::uint8_t {
  primary,    // the ordinary label colour
  secondary,  // a dimmed label
  tertiary,
  accent,
  blue,
  green,
  orange,
  red,
  purple,
  fill,        // the system's fill for tracks and gauges
  background,  // the system's background
};

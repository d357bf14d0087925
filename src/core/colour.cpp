#include "core/colour.h"

const char* colour_name(colour_t c) {
  switch (c) {
    case colour_t::primary: return "primary";
    case colour_t::secondary: return "secondary";
    case colour_t::tertiary: return "tertiary";
    case colour_t::accent: return "accent";
    case colour_t::blue: return "blue";
    case colour_t::green: return "green";
    case colour_t::orange: return "orange";
    case colour_t::red: return "red";
    case colour_t::purple: return "purple";
    case colour_t::fill: return "fill";
    case colour_t::background: return "background";
  }
  return "primary";
}

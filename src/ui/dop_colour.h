#pragma once

#include "core/colour.h"

// The colour and the bar fill of a dilution-of-precision value, shared by every DOP gauge.
//   up to 1: primary, up to 2: blue, up to 5: green, up to 10: orange, up to 20: red, else secondary.
colour_t dop_colour(double dop);

// The gauge's fill: 1 - dop / 20 clamped to 0..1, so a DOP of 0 fills the bar and 20 or more
// empties it. A value that is not a number gives an empty bar.
float dop_progress(double dop);

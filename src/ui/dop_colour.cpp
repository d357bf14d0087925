#include "ui/dop_colour.h"

#include <cmath>

namespace {

constexpr double dop_empty = 20.0;  // the DOP at which the gauge is empty

struct dop_band_t {
  double up_to;
  colour_t colour;
};
constexpr dop_band_t dop_bands[] = {
    {1.0, colour_t::primary}, {2.0, colour_t::blue}, {5.0, colour_t::green},
    {10.0, colour_t::orange}, {20.0, colour_t::red},
};

}  // namespace

colour_t dop_colour(double dop) {
  for (const auto& band : dop_bands)
    if (dop <= band.up_to) return band.colour;
  return colour_t::secondary;  // above 20, and NaN
}

float dop_progress(double dop) {
  const double p = 1.0 - dop / dop_empty;
  if (!(p > 0.0)) return 0.0f;  // also NaN
  if (p > 1.0) return 1.0f;
  return static_cast<float>(p);
}

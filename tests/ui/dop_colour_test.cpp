#include "ui/dop_colour.h"

#include <gtest/gtest.h>

#include <limits>

namespace {

TEST(dop_colour, bands_close_at_their_upper_bound_and_the_bar_empties_at_20) {
  const struct {
    double dop;
    colour_t colour;
    float progress;
  } rows[] = {
      {0.0, colour_t::primary, 1.0f},     {1.0, colour_t::primary, 0.95f},
      {1.01, colour_t::blue, 0.9495f},    {2.0, colour_t::blue, 0.9f},
      {2.5, colour_t::green, 0.875f},     {5.0, colour_t::green, 0.75f},
      {5.5, colour_t::orange, 0.725f},    {10.0, colour_t::orange, 0.5f},
      {10.5, colour_t::red, 0.475f},      {20.0, colour_t::red, 0.0f},
      {20.01, colour_t::secondary, 0.0f}, {99.99, colour_t::secondary, 0.0f},
      {-1.0, colour_t::primary, 1.0f},    {std::numeric_limits<double>::quiet_NaN(), colour_t::secondary, 0.0f},
  };
  for (const auto& r : rows) {
    EXPECT_EQ(dop_colour(r.dop), r.colour) << r.dop;
    EXPECT_NEAR(dop_progress(r.dop), r.progress, 1e-6) << r.dop;
  }
}

}  // namespace

#include "ui/dop_colour.h"

#include <gtest/gtest.h>

#include <limits>
#include <tuple>

namespace {

TEST(dop_colour, bands_close_at_their_upper_bound_and_the_bar_empties_at_20) {
  const std::tuple<double, colour_t, float> rows[] = {
      // DOP, band, bar
      {0.0, colour_t::primary, 1.0f},     {1.0, colour_t::primary, 0.95f},
      {1.01, colour_t::blue, 0.9495f},    {2.0, colour_t::blue, 0.9f},
      {2.5, colour_t::green, 0.875f},     {5.0, colour_t::green, 0.75f},
      {5.5, colour_t::orange, 0.725f},    {10.0, colour_t::orange, 0.5f},
      {10.5, colour_t::red, 0.475f},      {20.0, colour_t::red, 0.0f},
      {20.01, colour_t::secondary, 0.0f}, {99.99, colour_t::secondary, 0.0f},
      {-1.0, colour_t::primary, 1.0f},    {std::numeric_limits<double>::quiet_NaN(), colour_t::secondary, 0.0f},
  };
  for (const auto& [dop, colour, progress] : rows) {
    EXPECT_EQ(dop_colour(dop), colour) << dop;
    EXPECT_NEAR(dop_progress(dop), progress, 1e-6) << dop;
  }
}

}  // namespace

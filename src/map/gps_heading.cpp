#include "map/gps_heading.h"

#include <cmath>

void gps_heading_t::update(double true_heading) {
  constexpr double half_turn = 180.0;  // degrees
  constexpr double turn = 360.0;       // degrees
  heading_value = heading_offset + std::fabs(true_heading);
  const double previous = heading;
  if (std::fabs(previous - heading_value) > half_turn) {
    const double delta = previous - heading_value < 0 ? -turn : turn;
    heading_value += delta;
    heading_offset += delta;
  }
  heading = heading_value;
}

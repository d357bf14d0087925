#pragma once

#include "core/observable.h"

// The device's compass heading, unwrapped: it does not jump from 359 to 0 degrees but counts on
// (360, 361, ...), so that a rotation bound to it turns the short way. Every instance continues
// where the last one ended: the last value and the multiple of 360 degrees added to the compass
// are shared by the whole process.
class gps_heading_t final : public observable_t {
public:
  gps_heading_t() : heading(*this, heading_value) {}

  // A new true heading in degrees; a negative one (no true heading available) counts by its size.
  void update(double true_heading);

  published_t<double> heading;

  // For tests: the process starts again from 0.
  static void reset_process_values() { heading_value = heading_offset = 0.0; }

private:
  static inline double heading_value = 0.0;   // the last unwrapped heading
  static inline double heading_offset = 0.0;  // the multiple of 360 degrees added to the compass
};

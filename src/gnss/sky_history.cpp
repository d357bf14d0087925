#include "gnss/sky_history.h"

#include <cmath>

void sky_history_t::add(const sky_sample_t& sample) {
  samples_.push_back(sample);
  next_ = std::floor(sample.time / period_s) * period_s + period_s;
}

void sky_history_t::clear() {
  samples_.clear();
  next_ = 0.0;
}

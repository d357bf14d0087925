#pragma once

#include "ubx/records.h"

// A receiver of decoded UBX navigation records: the six sentence decoders fold a binary fix into
// the same state that text sentences feed.
class gps_protocol_bin_t {
public:
  virtual ~gps_protocol_bin_t() = default;
  virtual void update_posllh(const gps_posllh_t& record) = 0;
  virtual void update_pvt(const gps_pvt_t& record) = 0;
};

#pragma once

#include "ubx/records.h"

// A receiver of the records that describe the sky: the satellites (NAV-SAT), their signals
// (NAV-SIG) and the dilutions of precision (NAV-DOP).
class gps_protocol_sky_t {
public:
  virtual ~gps_protocol_sky_t() = default;
  virtual void update_dop(const gps_dop_t& record) = 0;
  virtual void update_sat(const gps_sat_t& record) = 0;
  virtual void update_sig(const gps_sig_t& record) = 0;
};

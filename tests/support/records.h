#pragma once

#include "ubx/records.h"

// Records with the fields a test sets and the header of a decoded frame.
inline gps_pvt_t pvt_record() {
  gps_pvt_t r;
  r.cls = 0x01;
  r.id = 0x07;
  r.length = 92;
  return r;
}

inline gps_posllh_t posllh_record() {
  gps_posllh_t r;
  r.cls = 0x01;
  r.id = 0x02;
  r.length = 28;
  return r;
}

#pragma once

#include <cstdint>
#include <vector>

#include "ubx/records.h"

// Records with the header of a decoded frame and the fields a test sets.
inline gps_pvt_t pvt_record() {
  gps_pvt_t r;
  r.cls = ubx_class_nav;
  r.id = gps_pvt_t::message_id;
  r.length = gps_pvt_t::payload_length;
  return r;
}

inline gps_posllh_t posllh_record() {
  gps_posllh_t r;
  r.cls = ubx_class_nav;
  r.id = gps_posllh_t::message_id;
  r.length = gps_posllh_t::payload_length;
  return r;
}

// Little-endian bytes for images of other messages, built field by field.
class image_writer_t {
public:
  image_writer_t& u8(std::uint32_t v) {
    bytes.push_back(static_cast<std::uint8_t>(v));
    return *this;
  }
  image_writer_t& u16(std::uint32_t v) { return u8(v).u8(v >> 8); }
  image_writer_t& u32(std::uint32_t v) { return u16(v).u16(v >> 16); }
  std::vector<std::uint8_t> bytes;
};

// A plausible NAV-PVT: Adelaide, 3D fix, 14 satellites, 2017-07-19 08:50:05.
inline gps_pvt_t valid_pvt() {
  auto r = pvt_record();
  r.iTOW = 291023400;
  r.year = 2017;
  r.month = 7;
  r.day = 19;
  r.hour = 8;
  r.min = 50;
  r.sec = 5;
  r.fixType = 3;
  r.numSV = 14;
  r.lat = -349062349;
  r.lon = 1386081181;
  r.pDOP = 145;
  return r;
}

#pragma once

#include <cstdint>
#include <utility>
#include <vector>

#include "ubx/records.h"

// Records with the header of a decoded frame and the fields a test sets. Their fields stand in wire
// order, so an initialiser lists them as a frame does.
inline gps_pvt_t pvt_record() {
  return {ubx_class_nav, gps_pvt_t::message_id, gps_pvt_t::payload_length};
}

inline gps_posllh_t posllh_record() {
  return {ubx_class_nav, gps_posllh_t::message_id, gps_posllh_t::payload_length};
}

// A plausible NAV-PVT: Adelaide, 3D fix, 14 satellites, 2017-07-19 08:50:05, pDOP 1.45.
inline gps_pvt_t valid_pvt() {
  constexpr std::uint8_t cls = ubx_class_nav, id = gps_pvt_t::message_id, length = gps_pvt_t::payload_length;
  // class, id, length, iTOW, date, time, valid, tAcc, nano, fixType, flags, flags2, numSV, lon, lat, ...
  auto r = gps_pvt_t{cls, id, length, 291023400, 2017, 7, 19, 8, 50, 5, 0, 0, 0, 3, 0, 0, 14, 1386081181, -349062349};
  r.pDOP = 145;
  return r;
}

// NAV-SAT and NAV-SIG records whose header matches their entries.
template <class Record>
Record list_record(std::vector<typename Record::entry_t> entries) {
  Record r;
  r.cls = ubx_class_nav;
  r.id = Record::message_id;
  r.version = Record::known_version;
  r.count = static_cast<std::uint8_t>(entries.size());
  r.entries = std::move(entries);
  r.length = r.length_of_count();
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

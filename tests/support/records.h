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

#include <cstdint>
#include <vector>

// Little-endian images and whole frames, built field by field for tests.
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

inline std::vector<std::uint8_t> image_of(const gps_posllh_t& r) {
  image_writer_t w;
  w.u8(r.cls).u8(r.id).u16(r.length).u32(r.iTOW).u32(static_cast<std::uint32_t>(r.lon));
  w.u32(static_cast<std::uint32_t>(r.lat)).u32(static_cast<std::uint32_t>(r.height));
  w.u32(static_cast<std::uint32_t>(r.hMSL)).u32(r.hAcc).u32(r.vAcc);
  return w.bytes;
}

inline std::vector<std::uint8_t> image_of(const gps_pvt_t& r) {
  image_writer_t w;
  w.u8(r.cls).u8(r.id).u16(r.length).u32(r.iTOW).u16(r.year).u8(r.month).u8(r.day).u8(r.hour).u8(r.min);
  w.u8(r.sec).u8(r.valid).u32(r.tAcc).u32(static_cast<std::uint32_t>(r.nano)).u8(r.fixType).u8(r.flags);
  w.u8(r.flags2).u8(r.numSV);
  for (const std::int32_t v : {r.lon, r.lat, r.height, r.hMSL}) w.u32(static_cast<std::uint32_t>(v));
  w.u32(r.hAcc).u32(r.vAcc);
  for (const std::int32_t v : {r.velN, r.velE, r.velD, r.gSpeed, r.headMot}) w.u32(static_cast<std::uint32_t>(v));
  w.u32(r.sAcc).u32(r.headAcc).u16(r.pDOP).u16(r.flags3).u32(r.reserved1).u32(static_cast<std::uint32_t>(r.headVeh));
  w.u16(static_cast<std::uint16_t>(r.magDec)).u16(r.magAcc);
  return w.bytes;
}

// B5 62, the image, CK_A, CK_B.
inline std::vector<std::uint8_t> frame_of(const std::vector<std::uint8_t>& image) {
  std::vector<std::uint8_t> frame;
  frame.reserve(image.size() + 4);
  frame.push_back(0xB5);
  frame.push_back(0x62);
  std::uint8_t a = 0;
  std::uint8_t b = 0;
  for (const auto byte : image) {
    a = static_cast<std::uint8_t>(a + byte);
    b = static_cast<std::uint8_t>(b + a);
    frame.push_back(byte);
  }
  frame.push_back(a);
  frame.push_back(b);
  return frame;
}

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

#include "ubx/records.h"

#include <iterator>

namespace {

// Reads little-endian fields one after another from a record image.
class image_reader_t {
public:
  explicit image_reader_t(std::span<const std::uint8_t> image) : image_(image) {}

  std::uint8_t u8() { return image_[at_++]; }
  std::uint16_t u16() {
    const auto lo = u8();
    return static_cast<std::uint16_t>(lo | (u8() << 8));
  }
  std::uint32_t u32() {
    const std::uint32_t lo = u16();
    return lo | (static_cast<std::uint32_t>(u16()) << 16);
  }
  std::int16_t i16() { return static_cast<std::int16_t>(u16()); }
  std::int32_t i32() { return static_cast<std::int32_t>(u32()); }

private:
  std::span<const std::uint8_t> image_;
  std::size_t at_ = 0;
};

}  // namespace

gps_posllh_t gps_posllh_t::from_image(std::span<const std::uint8_t, image_size> image) {
  image_reader_t r(image);
  gps_posllh_t p;
  p.cls = r.u8();
  p.id = r.u8();
  p.length = r.u16();
  p.iTOW = r.u32();
  p.lon = r.i32();
  p.lat = r.i32();
  p.height = r.i32();
  p.hMSL = r.i32();
  p.hAcc = r.u32();
  p.vAcc = r.u32();
  return p;
}

gps_pvt_t gps_pvt_t::from_image(std::span<const std::uint8_t, image_size> image) {
  image_reader_t r(image);
  gps_pvt_t p;
  p.cls = r.u8();
  p.id = r.u8();
  p.length = r.u16();
  p.iTOW = r.u32();
  p.year = r.u16();
  p.month = r.u8();
  p.day = r.u8();
  p.hour = r.u8();
  p.min = r.u8();
  p.sec = r.u8();
  p.valid = r.u8();
  p.tAcc = r.u32();
  p.nano = r.i32();
  p.fixType = r.u8();
  p.flags = r.u8();
  p.flags2 = r.u8();
  p.numSV = r.u8();
  p.lon = r.i32();
  p.lat = r.i32();
  p.height = r.i32();
  p.hMSL = r.i32();
  p.hAcc = r.u32();
  p.vAcc = r.u32();
  p.velN = r.i32();
  p.velE = r.i32();
  p.velD = r.i32();
  p.gSpeed = r.i32();
  p.headMot = r.i32();
  p.sAcc = r.u32();
  p.headAcc = r.u32();
  p.pDOP = r.u16();
  p.flags3 = r.u16();
  p.reserved1 = r.u32();
  p.headVeh = r.i32();
  p.magDec = r.i16();
  p.magAcc = r.u16();
  return p;
}

bool gps_posllh_t::is_plausible() const {
  return lat >= -lat_limit && lat <= lat_limit && lon >= -lon_limit && lon <= lon_limit;
}

bool gps_pvt_t::is_valid() const {
  constexpr unsigned max_satellites = 36;
  constexpr unsigned max_pdop = 9999;  // 0.01 units
  if (numSV > max_satellites) return false;
  if (pDOP > max_pdop) return false;
  if (fixType >= std::size(ubx_fix_type_text)) return false;
  if (lat < -lat_limit || lat > lat_limit) return false;
  if (lon < -lon_limit || lon > lon_limit) return false;
  if (month < 1 || month > 12) return false;
  if (day < 1 || day > 31) return false;
  if (hour > 23) return false;
  if (min > 59) return false;
  if (sec > 59) return false;
  return true;
}

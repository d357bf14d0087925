#include "ubx/records.h"

#include <algorithm>
#include <concepts>
#include <iterator>
#include <type_traits>

namespace {

// Each record's fields in wire order. This is the one statement of each layout: from_image reads
// by it and image_of writes by it. Each field takes as many bytes as its type.
template <class R, class F>
requires std::same_as<std::remove_const_t<R>, gps_posllh_t>
void for_each_field(R& r, F&& f) {
  f(r.cls), f(r.id), f(r.length), f(r.iTOW), f(r.lon), f(r.lat), f(r.height), f(r.hMSL), f(r.hAcc), f(r.vAcc);
}

template <class R, class F>
requires std::same_as<std::remove_const_t<R>, gps_pvt_t>
void for_each_field(R& r, F&& f) {
  f(r.cls), f(r.id), f(r.length), f(r.iTOW), f(r.year), f(r.month), f(r.day), f(r.hour), f(r.min), f(r.sec);
  f(r.valid), f(r.tAcc), f(r.nano), f(r.fixType), f(r.flags), f(r.flags2), f(r.numSV), f(r.lon), f(r.lat);
  f(r.height), f(r.hMSL), f(r.hAcc), f(r.vAcc), f(r.velN), f(r.velE), f(r.velD), f(r.gSpeed), f(r.headMot);
  f(r.sAcc), f(r.headAcc), f(r.pDOP), f(r.flags3), f(r.reserved1), f(r.headVeh), f(r.magDec), f(r.magAcc);
}

template <class R, class F>
requires std::same_as<std::remove_const_t<R>, gps_dop_t>
void for_each_field(R& r, F&& f) {
  f(r.cls), f(r.id), f(r.length), f(r.iTOW), f(r.gDOP), f(r.pDOP), f(r.tDOP), f(r.vDOP), f(r.hDOP), f(r.nDOP);
  f(r.eDOP);
}

template <class R, class F>
requires std::same_as<std::remove_const_t<R>, gps_sat_sv_t>
void for_each_field(R& r, F&& f) {
  f(r.gnssId), f(r.svId), f(r.cno), f(r.elev), f(r.azim), f(r.prRes), f(r.flags);
}

template <class R, class F>
requires std::same_as<std::remove_const_t<R>, gps_sig_sv_t>
void for_each_field(R& r, F&& f) {
  f(r.gnssId), f(r.svId), f(r.sigId), f(r.freqId), f(r.prRes), f(r.cno), f(r.qualityInd), f(r.corrSource);
  f(r.ionoModel), f(r.sigFlags), f(r.reserved1);
}

// The header of a list record; its entries follow.
template <class R, class F>
requires std::same_as<std::remove_const_t<R>, gps_sat_t> || std::same_as<std::remove_const_t<R>, gps_sig_t>
void for_each_field(R& r, F&& f) {
  f(r.cls), f(r.id), f(r.length), f(r.iTOW), f(r.version), f(r.count), f(r.reserved);
}

// Reads little-endian fields one after another from a record image.
class image_reader_t {
public:
  explicit image_reader_t(std::span<const std::uint8_t> image) : image_(image) {}

  template <std::integral T>
  void operator()(T& field) {
    std::uint32_t v = 0;
    for (std::size_t k = 0; k < sizeof(T); ++k) v |= std::uint32_t{image_[at_++]} << (8 * k);
    field = static_cast<T>(static_cast<std::make_unsigned_t<T>>(v));
  }

private:
  std::span<const std::uint8_t> image_;
  std::size_t at_ = 0;
};

// Writes little-endian fields one after another into a record image.
class image_writer_t {
public:
  explicit image_writer_t(std::span<std::uint8_t> image) : image_(image) {}

  template <std::integral T>
  void operator()(T field) {
    const std::uint32_t v = static_cast<std::make_unsigned_t<T>>(field);
    for (std::size_t k = 0; k < sizeof(T); ++k) image_[at_++] = static_cast<std::uint8_t>(v >> (8 * k));
  }

private:
  std::span<std::uint8_t> image_;
  std::size_t at_ = 0;
};

template <class Record>
Record read_image(std::span<const std::uint8_t> image) {
  Record r;
  for_each_field(r, image_reader_t(image));
  return r;
}

template <class Record>
std::array<std::uint8_t, Record::image_size> write_image(const Record& r) {
  std::array<std::uint8_t, Record::image_size> image{};
  for_each_field(r, image_writer_t(image));
  return image;
}

template <class Record>
std::vector<std::uint8_t> write_list_image(const Record& r) {
  std::vector<std::uint8_t> image(Record::header_size + r.entries.size() * Record::entry_size);
  for_each_field(r, image_writer_t(image));
  for (std::size_t k = 0; k < r.entries.size(); ++k)
    for_each_field(r.entries[k],
                   image_writer_t(std::span(image).subspan(Record::header_size + k * Record::entry_size)));
  return image;
}

bool within(std::int32_t value, std::int32_t limit) {
  return value >= -limit && value <= limit;
}

}  // namespace

gps_posllh_t gps_posllh_t::from_image(std::span<const std::uint8_t, image_size> image) {
  return read_image<gps_posllh_t>(image);
}

gps_pvt_t gps_pvt_t::from_image(std::span<const std::uint8_t, image_size> image) {
  return read_image<gps_pvt_t>(image);
}

gps_dop_t gps_dop_t::from_image(std::span<const std::uint8_t, image_size> image) {
  return read_image<gps_dop_t>(image);
}

template <class Entry, std::uint8_t Id, std::uint8_t Version>
void gps_list_record_t<Entry, Id, Version>::read_image(std::span<const std::uint8_t> image) {
  for_each_field(*this, image_reader_t(image));
  entries.resize((image.size() - header_size) / entry_size);
  for (std::size_t k = 0; k < entries.size(); ++k)
    for_each_field(entries[k], image_reader_t(image.subspan(header_size + k * entry_size)));
}
template struct gps_list_record_t<gps_sat_sv_t, 0x35, 1>;
template struct gps_list_record_t<gps_sig_sv_t, 0x43, 0>;

std::array<std::uint8_t, gps_posllh_t::image_size> image_of(const gps_posllh_t& record) {
  return write_image(record);
}

std::array<std::uint8_t, gps_pvt_t::image_size> image_of(const gps_pvt_t& record) {
  return write_image(record);
}

std::array<std::uint8_t, gps_dop_t::image_size> image_of(const gps_dop_t& record) {
  return write_image(record);
}

std::vector<std::uint8_t> image_of(const gps_sat_t& record) {
  return write_list_image(record);
}

std::vector<std::uint8_t> image_of(const gps_sig_t& record) {
  return write_list_image(record);
}

// Both sums are kept wider than a byte and cut at the end: only their low eight bits count.
std::array<std::uint8_t, 2> ubx_checksum(std::span<const std::uint8_t> image) {
  std::uint32_t ck_a = 0;
  std::uint32_t ck_b = 0;
  for (const auto byte : image) {
    ck_a += byte;
    ck_b += ck_a;
  }
  return {static_cast<std::uint8_t>(ck_a), static_cast<std::uint8_t>(ck_b)};
}

std::vector<std::uint8_t> frame_of(std::span<const std::uint8_t> image) {
  const auto checksum = ubx_checksum(image);
  std::vector<std::uint8_t> frame(ubx_sync.size() + image.size() + checksum.size());
  auto at = std::copy(ubx_sync.begin(), ubx_sync.end(), frame.begin());
  at = std::copy(image.begin(), image.end(), at);
  std::copy(checksum.begin(), checksum.end(), at);
  return frame;
}

bool gps_posllh_t::is_plausible() const {
  return within(lat, lat_limit) && within(lon, lon_limit);
}

bool gps_pvt_t::is_plausible() const {
  constexpr unsigned max_satellites = 36;
  constexpr unsigned max_pdop = 9999;  // 0.01 units
  if (numSV > max_satellites) return false;
  if (pDOP > max_pdop) return false;
  if (fixType >= std::size(ubx_fix_type_text)) return false;
  if (!within(lat, lat_limit) || !within(lon, lon_limit)) return false;
  if (month < 1 || month > 12) return false;
  if (day < 1 || day > 31) return false;
  if (hour > 23) return false;
  if (min > 59) return false;
  if (sec > 59) return false;
  return true;
}

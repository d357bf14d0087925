#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

// The UBX navigation records, each the image of a frame from its class byte to the end of its
// payload. Multi-byte fields are little-endian on the wire and are read and written as such on
// any host.

// A frame: the two sync bytes, the record image, then the image's Fletcher checksum.
inline constexpr std::array<std::uint8_t, 2> ubx_sync = {0xB5, 0x62};
inline constexpr std::uint8_t ubx_class_nav = 0x01;

// NAV-POSLLH: geodetic position. 32-byte image, payload length 28.
struct gps_posllh_t {
  static constexpr std::size_t image_size = 32;
  static constexpr std::uint16_t payload_length = image_size - 4;
  static constexpr std::uint8_t message_id = 0x02;

  std::uint8_t cls = 0;
  std::uint8_t id = 0;
  std::uint16_t length = 0;
  std::uint32_t iTOW = 0;   // GPS time of week, ms
  std::int32_t lon = 0;     // 1e-7 degree
  std::int32_t lat = 0;     // 1e-7 degree
  std::int32_t height = 0;  // above the ellipsoid, mm
  std::int32_t hMSL = 0;    // above mean sea level, mm
  std::uint32_t hAcc = 0;   // mm
  std::uint32_t vAcc = 0;   // mm

  static gps_posllh_t from_image(std::span<const std::uint8_t, image_size> image);
  // Latitude within +-90 and longitude within +-180 degrees; nothing else is checked.
  bool is_plausible() const;
  bool operator==(const gps_posllh_t&) const = default;
};

// NAV-PVT: position, velocity, time, fix type and DOP. 96-byte image, payload length 92.
struct gps_pvt_t {
  static constexpr std::size_t image_size = 96;
  static constexpr std::uint16_t payload_length = image_size - 4;
  static constexpr std::uint8_t message_id = 0x07;

  std::uint8_t cls = 0;
  std::uint8_t id = 0;
  std::uint16_t length = 0;
  std::uint32_t iTOW = 0;    // GPS time of week, ms
  std::uint16_t year = 0;    // UTC
  std::uint8_t month = 0;    // 1..12
  std::uint8_t day = 0;      // 1..31
  std::uint8_t hour = 0;     // 0..23
  std::uint8_t min = 0;      // 0..59
  std::uint8_t sec = 0;      // 0..59
  std::uint8_t valid = 0;    // validity flags of date and time
  std::uint32_t tAcc = 0;    // ns
  std::int32_t nano = 0;     // fraction of the second, ns
  std::uint8_t fixType = 0;  // index into ubx_fix_type_text
  std::uint8_t flags = 0;
  std::uint8_t flags2 = 0;
  std::uint8_t numSV = 0;     // satellites used
  std::int32_t lon = 0;       // 1e-7 degree
  std::int32_t lat = 0;       // 1e-7 degree
  std::int32_t height = 0;    // above the ellipsoid, mm
  std::int32_t hMSL = 0;      // above mean sea level, mm
  std::uint32_t hAcc = 0;     // mm
  std::uint32_t vAcc = 0;     // mm
  std::int32_t velN = 0;      // mm/s
  std::int32_t velE = 0;      // mm/s
  std::int32_t velD = 0;      // mm/s
  std::int32_t gSpeed = 0;    // ground speed, mm/s
  std::int32_t headMot = 0;   // heading of motion, 1e-5 degree
  std::uint32_t sAcc = 0;     // mm/s
  std::uint32_t headAcc = 0;  // 1e-5 degree
  std::uint16_t pDOP = 0;     // 0.01
  std::uint16_t flags3 = 0;
  std::uint32_t reserved1 = 0;
  std::int32_t headVeh = 0;  // 1e-5 degree
  std::int16_t magDec = 0;   // 0.01 degree
  std::uint16_t magAcc = 0;  // 0.01 degree

  static gps_pvt_t from_image(std::span<const std::uint8_t, image_size> image);
  // Satellites, DOP, fix type, position and the UTC date and time within their ranges, checked in
  // that order. The validity flags are not consulted.
  bool is_plausible() const;
  bool operator==(const gps_pvt_t&) const = default;
};

// NAV-DOP: dilutions of precision. 22-byte image, payload length 18.
struct gps_dop_t {
  static constexpr std::size_t image_size = 22;
  static constexpr std::uint16_t payload_length = image_size - 4;
  static constexpr std::uint8_t message_id = 0x04;

  std::uint8_t cls = 0;
  std::uint8_t id = 0;
  std::uint16_t length = 0;
  std::uint32_t iTOW = 0;  // GPS time of week, ms
  std::uint16_t gDOP = 0;  // 0.01, as the six below
  std::uint16_t pDOP = 0;
  std::uint16_t tDOP = 0;
  std::uint16_t vDOP = 0;
  std::uint16_t hDOP = 0;
  std::uint16_t nDOP = 0;
  std::uint16_t eDOP = 0;

  static gps_dop_t from_image(std::span<const std::uint8_t, image_size> image);
  bool operator==(const gps_dop_t&) const = default;
};

// One satellite of a NAV-SAT record, 12 bytes.
struct gps_sat_sv_t {
  static constexpr std::size_t size = 12;
  static constexpr std::uint32_t flag_used = 0x08;  // flags: used in the fix
  static constexpr std::uint32_t quality_mask = 0x07;
  static constexpr int health_shift = 4;  // flags bits 4-5: 0 unknown, 1 healthy, 2 unhealthy

  std::uint8_t gnssId = 0;
  std::uint8_t svId = 0;
  std::uint8_t cno = 0;     // C/N0, dB-Hz
  std::int8_t elev = 0;     // degrees; beyond +-90 unknown
  std::int16_t azim = 0;    // degrees 0..360
  std::int16_t prRes = 0;   // pseudorange residual, 0.1 m
  std::uint32_t flags = 0;  // quality, used, health, ...
  bool operator==(const gps_sat_sv_t&) const = default;
};

// One signal of a NAV-SIG record, 16 bytes.
struct gps_sig_sv_t {
  static constexpr std::size_t size = 16;
  static constexpr std::uint16_t flag_pr_used = 0x08;  // sigFlags: its pseudorange is used in the fix

  std::uint8_t gnssId = 0;
  std::uint8_t svId = 0;
  std::uint8_t sigId = 0;
  std::uint8_t freqId = 0;  // GLONASS frequency slot + 7
  std::int16_t prRes = 0;   // 0.1 m
  std::uint8_t cno = 0;     // dB-Hz
  std::uint8_t qualityInd = 0;
  std::uint8_t corrSource = 0;
  std::uint8_t ionoModel = 0;
  std::uint16_t sigFlags = 0;
  std::uint32_t reserved1 = 0;
  bool operator==(const gps_sig_sv_t&) const = default;
};

// A record of a header and a list of entries whose count the header gives: NAV-SAT (satellites)
// and NAV-SIG (signals). Its image is 12 bytes of header, then the entries.
template <class Entry, std::uint8_t Id, std::uint8_t Version>
struct gps_list_record_t {
  using entry_t = Entry;
  static constexpr std::uint8_t message_id = Id;
  static constexpr std::uint8_t known_version = Version;
  static constexpr std::size_t header_size = 12;
  static constexpr std::size_t entry_size = Entry::size;
  static constexpr std::size_t entries_max = 255;
  static constexpr std::size_t image_size_max = header_size + entries_max * entry_size;

  std::uint8_t cls = 0;
  std::uint8_t id = 0;
  std::uint16_t length = 0;
  std::uint32_t iTOW = 0;  // GPS time of week, ms
  std::uint8_t version = 0;
  std::uint8_t count = 0;  // numSvs or numSigs
  std::uint16_t reserved = 0;
  std::vector<Entry> entries;

  // Reads the image in place, keeping the entries' storage; every whole entry is read.
  void read_image(std::span<const std::uint8_t> image);
  // The payload length of `count` entries.
  std::uint16_t length_of_count() const { return static_cast<std::uint16_t>(header_size - 4 + count * entry_size); }
  // The known version, and as many entries as the count says.
  bool is_plausible() const { return version == known_version && entries.size() == count; }
  bool operator==(const gps_list_record_t&) const = default;
};
using gps_sat_t = gps_list_record_t<gps_sat_sv_t, 0x35, 1>;
using gps_sig_t = gps_list_record_t<gps_sig_sv_t, 0x43, 0>;

// The image of a record, the inverse of from_image and read_image.
std::array<std::uint8_t, gps_posllh_t::image_size> image_of(const gps_posllh_t& record);
std::array<std::uint8_t, gps_pvt_t::image_size> image_of(const gps_pvt_t& record);
std::array<std::uint8_t, gps_dop_t::image_size> image_of(const gps_dop_t& record);
std::vector<std::uint8_t> image_of(const gps_sat_t& record);
std::vector<std::uint8_t> image_of(const gps_sig_t& record);

// CK_A and CK_B of a record image, from its class byte to the end of its payload.
std::array<std::uint8_t, 2> ubx_checksum(std::span<const std::uint8_t> image);
// The whole frame of a record image: sync bytes, the image, its checksum.
std::vector<std::uint8_t> frame_of(std::span<const std::uint8_t> image);

inline constexpr std::int32_t lat_limit = 900'000'000;    // 1e-7 degree
inline constexpr std::int32_t lon_limit = 1'800'000'000;  // 1e-7 degree

// NAV-PVT fix types: 0 "no fix" to 5 "time only fix".
inline constexpr std::string_view ubx_fix_type_text[] = {"no fix", "dead reckoning",        "2D fix",
                                                         "3D fix", "GNSS + dead reckoning", "time only fix"};
// Days of the GPS week, which starts on Sunday.
inline constexpr std::string_view ubx_weekday_text[] = {"sun", "mon", "tue", "wed", "thu", "fri", "sat"};

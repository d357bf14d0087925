#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

#include "ubx/gps_protocol_bin.h"
#include "ubx/records.h"

// The kind of a record.
enum class gps_bin_format_t : std::uint8_t { none, posllh, pvt };

// The result of decoding one chunk: that of the last frame-level event in it.
enum class gps_bin_return_t : std::int8_t {
  need_more_data = -1,   // no frame ended in this chunk
  ok = 0,                // a record was decoded and delivered
  chk_invalid = 2,       // a checksum byte did not match; frame dropped
  invalid_length = 4,    // the length field is not the record's payload length
  invalid_data = 5,      // the record failed its plausibility check
  unsupported_type = 6,  // neither NAV-POSLLH nor NAV-PVT; frame skipped
};

std::string_view text(gps_bin_return_t result);

// Finds UBX frames in a byte stream split into any chunks, checks their Fletcher checksum, and
// hands NAV-POSLLH and NAV-PVT records that pass their checks to the receivers, in list order.
// The end of a frame follows from the record size that class and id fix; the length field is only
// checked after the checksum.
class gps_bin_t final {
public:
  explicit gps_bin_t(std::vector<gps_protocol_bin_t*> receivers) : arr_update(std::move(receivers)) {}

  // Consumes the whole chunk; state carries over to the next call.
  gps_bin_return_t decode(std::span<const std::uint8_t> chunk);

  std::vector<gps_protocol_bin_t*> arr_update;
  gps_posllh_t posllh;  // the last NAV-POSLLH image stored
  gps_pvt_t pvt;        // the last NAV-PVT image stored
  std::int32_t size_data = gps_pvt_t::image_size;
  std::array<std::uint8_t, gps_pvt_t::image_size> data{};  // the frame buffer, reused
  gps_bin_format_t type = gps_bin_format_t::none;          // kind of the frame in progress
  // Kind of the record last decoded and passed on, which the frame in progress does not change.
  gps_bin_format_t decoded_type = gps_bin_format_t::none;
  std::array<std::uint8_t, 2> chk{};  // computed CK_A, CK_B
  std::int32_t h = 0;                 // sync bytes matched
  std::int32_t d = 0;                 // bytes after the sync bytes

private:
  void abandon();
  void checksum();
  template <class Record>
  gps_bin_return_t pass_on(Record& record, void (gps_protocol_bin_t::*update)(const Record&));
  gps_bin_return_t decode_frame();
};

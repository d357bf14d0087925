#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

#include "ubx/gps_protocol_bin.h"
#include "ubx/gps_protocol_sky.h"
#include "ubx/records.h"

// The kind of a record.
enum class gps_bin_format_t : std::uint8_t { none, posllh, pvt, dop, sat, sig };

// The result of decoding one chunk: that of the last frame-level event in it.
enum class gps_bin_return_t : std::int8_t {
  need_more_data = -1,   // no frame ended in this chunk
  ok = 0,                // a record was decoded and delivered
  chk_invalid = 2,       // a checksum byte did not match; frame dropped
  invalid_length = 4,    // the length field is not the record's payload length
  invalid_data = 5,      // the record failed its plausibility check
  unsupported_type = 6,  // neither NAV-POSLLH nor NAV-PVT: a sky record, or a frame skipped
};

std::string_view text(gps_bin_return_t result);

// Finds UBX frames in a byte stream split into any chunks, checks their Fletcher checksum, and
// hands NAV-POSLLH and NAV-PVT records that pass their checks to the receivers, in list order.
// The end of a frame follows from the record size that class and id fix; the length field is only
// checked after the checksum.
//
// The sky records (NAV-DOP, NAV-SAT, NAV-SIG) go to the sky receivers alone, and to the chunk's
// result they are what every other message is, unsupported, whatever becomes of them: the result
// and the last decoded record stay those of NAV-POSLLH and NAV-PVT. A NAV-SAT or NAV-SIG frame
// ends where its length field says, when that length fits whole entries; otherwise the frame is
// dropped at its header and the bytes after it are hunted through.
class gps_bin_t final {
public:
  // The largest record image: NAV-SIG with 255 signals.
  static constexpr std::size_t image_size_max = gps_sig_t::image_size_max;

  explicit gps_bin_t(std::vector<gps_protocol_bin_t*> receivers, std::vector<gps_protocol_sky_t*> sky_receivers = {})
      : arr_update(std::move(receivers)), arr_sky(std::move(sky_receivers)) {}

  // Consumes the whole chunk; state carries over to the next call.
  gps_bin_return_t decode(std::span<const std::uint8_t> chunk);

  std::vector<gps_protocol_bin_t*> arr_update;
  std::vector<gps_protocol_sky_t*> arr_sky;
  gps_posllh_t posllh;  // the last NAV-POSLLH image stored
  gps_pvt_t pvt;        // the last NAV-PVT image stored
  gps_dop_t dop;        // the last sky records stored
  gps_sat_t sat;
  gps_sig_t sig;
  std::int32_t size_data = gps_pvt_t::image_size;
  std::array<std::uint8_t, image_size_max> data{};  // the frame buffer, reused
  gps_bin_format_t type = gps_bin_format_t::none;   // kind of the frame in progress
  // Kind of the record last decoded and passed on, which the frame in progress does not change.
  gps_bin_format_t decoded_type = gps_bin_format_t::none;
  std::array<std::uint8_t, 2> chk{};  // computed CK_A, CK_B
  std::int32_t h = 0;                 // sync bytes matched
  std::int32_t d = 0;                 // bytes after the sync bytes

private:
  static constexpr std::int32_t list_header_size = 4;  // class, id and length: what sizes a list record

  bool sky_frame() const { return type >= gps_bin_format_t::dop; }
  void abandon();
  void start_frame();
  void image_complete();
  void checksum();
  template <class Record>
  gps_bin_return_t pass_on(Record& record, void (gps_protocol_bin_t::*update)(const Record&));
  gps_bin_return_t decode_frame();
  void pass_on_sky();
};

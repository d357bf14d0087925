#include "ubx/gps_bin.h"

#include <algorithm>
#include <cstring>

std::string_view text(gps_bin_return_t result) {
  switch (result) {
    case gps_bin_return_t::need_more_data:
      return "need more data";
    case gps_bin_return_t::ok:
      return "ok";
    case gps_bin_return_t::chk_invalid:
      return "checksum invalid";
    case gps_bin_return_t::invalid_length:
      return "invalid length";
    case gps_bin_return_t::invalid_data:
      return "invalid data";
    case gps_bin_return_t::unsupported_type:
      return "unsupported type";
  }
  return "unsupported type";
}

void gps_bin_t::abandon() {
  type = gps_bin_format_t::none;
  h = 0;
  d = 0;
}

namespace {

// From this many bytes on, a search or copy is worth a library call; a link that delivers a few
// bytes at a time takes the plain loops.
constexpr std::size_t long_run = 16;

}  // namespace

gps_bin_return_t gps_bin_t::decode(std::span<const std::uint8_t> chunk) {
  auto result = gps_bin_return_t::need_more_data;
  const std::uint8_t* const bytes = chunk.data();
  const std::size_t n = chunk.size();
  std::size_t i = 0;
  while (i < n) {
    // Hunting for the first sync byte: every other byte is dropped and leaves no frame in progress,
    // so a run of them is skipped at once.
    if (h == 0) {
      std::size_t at = i;
      if (n - i >= long_run) {
        const auto* sync = static_cast<const std::uint8_t*>(std::memchr(bytes + i, ubx_sync[0], n - i));
        at = sync == nullptr ? n : static_cast<std::size_t>(sync - bytes);
      } else {
        while (at < n && bytes[at] != ubx_sync[0]) ++at;
      }
      if (at > i) abandon();
      i = at;
      if (i == n) break;
      h = 1;
      ++i;
      continue;
    }
    // The second sync byte: a byte that breaks the sequence is dropped, not tried as a first one.
    if (h == 1) {
      if (bytes[i] == ubx_sync[1]) {
        h = 2;
      } else {
        abandon();
      }
      ++i;
      continue;
    }

    // Inside the record image after its class and id: copy the run up to the image's end at once.
    if (d >= 2 && d < size_data) {
      const std::size_t run = std::min(n - i, static_cast<std::size_t>(size_data - d));
      if (run >= long_run) {
        std::memcpy(data.data() + d, bytes + i, run);
      } else {
        for (std::size_t k = 0; k < run; ++k) data[static_cast<std::size_t>(d) + k] = bytes[i + k];
      }
      d += static_cast<std::int32_t>(run);
      i += run;
      if (d == size_data) checksum();
      continue;
    }

    // The class and id, or a checksum byte: the image between them is copied above.
    const std::uint8_t b = bytes[i++];
    if (d < size_data) data[static_cast<std::size_t>(d)] = b;
    ++d;
    if (d == 2) {
      if (data[0] == ubx_class_nav && data[1] == gps_posllh_t::message_id) {
        type = gps_bin_format_t::posllh;
        size_data = gps_posllh_t::image_size;
      } else if (data[0] == ubx_class_nav && data[1] == gps_pvt_t::message_id) {
        type = gps_bin_format_t::pvt;
        size_data = gps_pvt_t::image_size;
      } else {
        abandon();
        result = gps_bin_return_t::unsupported_type;
      }
    } else if (d == size_data + 1) {
      if (b != chk[0]) {
        abandon();
        result = gps_bin_return_t::chk_invalid;
      }
    } else if (d == size_data + 2) {
      if (b == chk[1]) {
        result = decode_frame();
      } else {
        abandon();
        result = gps_bin_return_t::chk_invalid;
      }
    }
  }
  return result;
}

void gps_bin_t::checksum() {
  chk = ubx_checksum(std::span(data).first(static_cast<std::size_t>(size_data)));
}

// The length field and the plausibility rules are checked after the checksum; a record that passes
// them reaches every receiver in list order.
template <class Record>
gps_bin_return_t gps_bin_t::pass_on(Record& record, void (gps_protocol_bin_t::*update)(const Record&)) {
  record = Record::from_image(std::span(data).template first<Record::image_size>());
  if (record.length != Record::payload_length) return gps_bin_return_t::invalid_length;
  if (!record.is_plausible()) return gps_bin_return_t::invalid_data;
  for (auto* receiver : arr_update) (receiver->*update)(record);
  decoded_type = type;
  return gps_bin_return_t::ok;
}

// The frame's kind was set from its class and id, so the image has that record's size.
gps_bin_return_t gps_bin_t::decode_frame() {
  h = 0;
  d = 0;
  if (type == gps_bin_format_t::posllh) return pass_on(posllh, &gps_protocol_bin_t::update_posllh);
  return pass_on(pvt, &gps_protocol_bin_t::update_pvt);
}

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
      if (d == size_data) image_complete();
      continue;
    }

    // The class and id, or a checksum byte: the image between them is copied above.
    const std::uint8_t b = bytes[i++];
    if (d < size_data) data[static_cast<std::size_t>(d)] = b;
    ++d;
    // A wrong checksum byte drops the frame; only the six decoders' records make it the result.
    const auto checksum_failed = [&] {
      if (!sky_frame()) result = gps_bin_return_t::chk_invalid;
      abandon();
    };
    if (d == 2) {
      start_frame();
      if (type == gps_bin_format_t::none) abandon();
      if (type == gps_bin_format_t::none || sky_frame()) result = gps_bin_return_t::unsupported_type;
    } else if (d == size_data + 1) {
      if (b != chk[0]) checksum_failed();
    } else if (d == size_data + 2) {
      if (b != chk[1]) {
        checksum_failed();
      } else if (sky_frame()) {
        pass_on_sky();
      } else {
        result = decode_frame();
      }
    }
  }
  return result;
}

// The kind of the frame from its class and id, and the image size that the kind fixes; a list
// record's size is known once its length field is in.
void gps_bin_t::start_frame() {
  struct kind_t {
    std::uint8_t id;
    gps_bin_format_t type;
    std::int32_t size;
  };
  constexpr kind_t kinds[] = {
      {gps_posllh_t::message_id, gps_bin_format_t::posllh, gps_posllh_t::image_size},
      {gps_pvt_t::message_id, gps_bin_format_t::pvt, gps_pvt_t::image_size},
      {gps_dop_t::message_id, gps_bin_format_t::dop, gps_dop_t::image_size},
      {gps_sat_t::message_id, gps_bin_format_t::sat, list_header_size},
      {gps_sig_t::message_id, gps_bin_format_t::sig, list_header_size},
  };
  type = gps_bin_format_t::none;
  if (data[0] != ubx_class_nav) return;
  for (const auto& kind : kinds) {
    if (data[1] != kind.id) continue;
    type = kind.type;
    size_data = kind.size;
  }
}

// The image so far is complete: a list record's header gives the size of the rest, which must be
// whole entries; any other image is followed by its checksum.
void gps_bin_t::image_complete() {
  const bool list = type == gps_bin_format_t::sat || type == gps_bin_format_t::sig;
  if (!list || size_data != list_header_size) {
    checksum();
    return;
  }
  const std::size_t length = data[2] | static_cast<std::size_t>(data[3]) << 8;
  const std::size_t entries_start = gps_sat_t::header_size - list_header_size;
  const std::size_t entry = type == gps_bin_format_t::sat ? gps_sat_t::entry_size : gps_sig_t::entry_size;
  if (length < entries_start || (length - entries_start) % entry != 0 ||
      (length - entries_start) / entry > gps_sat_t::entries_max) {
    abandon();
    return;
  }
  size_data = static_cast<std::int32_t>(list_header_size + length);
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

// A sky record reaches the sky receivers when its length (for a list, its count and version) is
// right; the chunk's result is not its concern.
void gps_bin_t::pass_on_sky() {
  h = 0;
  d = 0;
  const auto image = std::span<const std::uint8_t>(data).first(static_cast<std::size_t>(size_data));
  if (type == gps_bin_format_t::dop) {
    dop = gps_dop_t::from_image(image.first<gps_dop_t::image_size>());
    if (dop.length != gps_dop_t::payload_length) return;
    for (auto* receiver : arr_sky) receiver->update_dop(dop);
  } else if (type == gps_bin_format_t::sat) {
    sat.read_image(image);
    if (!sat.is_plausible()) return;
    for (auto* receiver : arr_sky) receiver->update_sat(sat);
  } else {
    sig.read_image(image);
    if (!sig.is_plausible()) return;
    for (auto* receiver : arr_sky) receiver->update_sig(sig);
  }
}

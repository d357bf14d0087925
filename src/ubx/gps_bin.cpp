#include "ubx/gps_bin.h"

#include <algorithm>
#include <cstring>

std::string_view text(gps_bin_return_t result) {
  switch (result) {
    case gps_bin_return_t::need_more_data: return "need more data";
    case gps_bin_return_t::ok: return "ok";
    case gps_bin_return_t::chk_ignored: return "checksum ignored";
    case gps_bin_return_t::chk_invalid: return "checksum invalid";
    case gps_bin_return_t::invalid_size: return "invalid size";
    case gps_bin_return_t::invalid_length: return "invalid length";
    case gps_bin_return_t::invalid_data: return "invalid data";
    case gps_bin_return_t::unsupported_type: return "unsupported type";
    case gps_bin_return_t::malformed: return "malformed";
  }
  return "malformed";
}

void gps_bin_t::abandon() {
  chk_ignored = false;
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
        const auto* sync = static_cast<const std::uint8_t*>(std::memchr(bytes + i, header_ubx[0], n - i));
        at = sync == nullptr ? n : static_cast<std::size_t>(sync - bytes);
      } else {
        while (at < n && bytes[at] != header_ubx[0]) ++at;
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
      if (bytes[i] == header_ubx[1]) {
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

    const std::uint8_t b = bytes[i++];
    if (d < size_data) data[static_cast<std::size_t>(d)] = b;
    ++d;
    if (d == 2) {
      if (data[0] == header_posllh[0] && data[1] == header_posllh[1]) {
        type = gps_bin_format_t::posllh;
        size_data = gps_posllh_t::image_size;
      } else if (data[0] == header_pvt[0] && data[1] == header_pvt[1]) {
        type = gps_bin_format_t::pvt;
        size_data = gps_pvt_t::image_size;
      } else {
        abandon();
        result = gps_bin_return_t::unsupported_type;
      }
    } else if (d == size_data) {
      checksum();
    } else if (d == size_data + 1) {
      if (b != chk[0]) {
        if (chk_ignore) {
          chk_ignored = true;
        } else {
          abandon();
          result = gps_bin_return_t::chk_invalid;
        }
      }
    } else if (d == size_data + 2) {
      if (b == chk[1]) {
        result = decode_frame();
      } else if (chk_ignore) {
        chk_ignored = true;
        result = decode_frame();
      } else {
        abandon();
        result = gps_bin_return_t::chk_invalid;
      }
    } else if (d > size_data + 2) {
      abandon();
    }
  }
  return result;
}

// The Fletcher checksum of the record image, from its class byte to the end of its payload.
// Both sums are kept wider than a byte and cut at the end: only their low eight bits count.
void gps_bin_t::checksum() {
  std::uint32_t ck_a = 0;
  std::uint32_t ck_b = 0;
  const auto size = static_cast<std::size_t>(size_data);
  for (std::size_t i = 0; i < size; ++i) {
    ck_a += data[i];
    ck_b += ck_a;
  }
  chk = {static_cast<std::uint8_t>(ck_a), static_cast<std::uint8_t>(ck_b)};
}

gps_bin_return_t gps_bin_t::decode_frame() {
  const auto image = std::span<const std::uint8_t>(data).first(static_cast<std::size_t>(size_data));
  if (type == gps_bin_format_t::none) return gps_bin_return_t::malformed;
  h = 0;
  d = 0;
  if (type == gps_bin_format_t::posllh) {
    if (image.size() != gps_posllh_t::image_size) return gps_bin_return_t::invalid_size;
    posllh = gps_posllh_t::from_image(image.first<gps_posllh_t::image_size>());
    if (posllh.length + 4u != gps_posllh_t::image_size) return gps_bin_return_t::invalid_length;
    if (!posllh.is_plausible()) return gps_bin_return_t::invalid_data;
    for (auto* receiver : arr_update) receiver->update_posllh(posllh);
  } else {
    if (image.size() != gps_pvt_t::image_size) return gps_bin_return_t::invalid_size;
    pvt = gps_pvt_t::from_image(image.first<gps_pvt_t::image_size>());
    if (pvt.length + 4u != gps_pvt_t::image_size) return gps_bin_return_t::invalid_length;
    if (!pvt.is_valid()) return gps_bin_return_t::invalid_data;
    for (auto* receiver : arr_update) receiver->update_pvt(pvt);
  }
  decoded_type = type;
  return chk_ignored ? gps_bin_return_t::chk_ignored : gps_bin_return_t::ok;
}

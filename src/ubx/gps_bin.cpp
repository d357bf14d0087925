#include "ubx/gps_bin.h"

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

gps_bin_return_t gps_bin_t::decode(std::span<const std::uint8_t> chunk) {
  auto result = gps_bin_return_t::need_more_data;
  for (const std::uint8_t b : chunk) {
    // Hunting: a byte that breaks the sync sequence is dropped, not tried as a first sync byte.
    if (h < static_cast<std::int32_t>(header_ubx.size())) {
      if (b == header_ubx[static_cast<std::size_t>(h)]) {
        ++h;
      } else {
        abandon();
      }
      continue;
    }

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
      std::uint8_t ck_a = 0;
      std::uint8_t ck_b = 0;
      for (std::int32_t i = 0; i < d; ++i) {
        ck_a = static_cast<std::uint8_t>(ck_a + data[static_cast<std::size_t>(i)]);
        ck_b = static_cast<std::uint8_t>(ck_b + ck_a);
      }
      chk = {ck_a, ck_b};
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

#include "ntrip/rtcm_framer.h"

#include <algorithm>
#include <cstring>

#include "core/crc24q.h"
#include "ntrip/rtcm_bits.h"

namespace {

constexpr std::uint8_t reserved_mask = 0xFC;  // the 6 bits after the preamble are always 0

}  // namespace

std::size_t rtcm_framer_t::expected_size() const {
  const std::size_t length = (static_cast<std::size_t>(buffer_[1] & 0x03) << 8) | buffer_[2];
  return header_size + length + crc_size;
}

// True when b completed a good frame, which frame_ then describes.
bool rtcm_framer_t::push(std::uint8_t b) {
  if (size_ == 0 && b != preamble) {
    ++skipped_bytes_;
    return false;
  }
  buffer_[size_++] = b;
  if (size_ == 2 && (b & reserved_mask) != 0) {
    resync();
    return false;
  }
  if (size_ < header_size || size_ < expected_size()) return false;

  const std::size_t body = size_ - crc_size;
  const auto crc = static_cast<std::uint32_t>(rtcm_unsigned({buffer_.data() + body, crc_size}, 0, 24));
  if (crc != crc24q({buffer_.data(), body})) {
    ++bad_frames_;
    resync();
    return false;
  }
  frame_.bytes = {buffer_.data(), size_};
  frame_.payload = {buffer_.data() + header_size, body - header_size};
  frame_.type = frame_.payload.size() >= 2 ? static_cast<std::uint16_t>(rtcm_unsigned(frame_.payload, 0, 12)) : 0;
  size_ = 0;
  return true;
}

// Drops the false preamble and gives the bytes after it back to be searched again, ahead of any
// still waiting: they all came from one buffered frame, so they fit.
void rtcm_framer_t::resync() {
  ++skipped_bytes_;
  const std::size_t waiting = replay_size_ - replay_at_;
  const std::size_t rest = size_ - 1;
  std::memmove(replay_.data() + rest, replay_.data() + replay_at_, waiting);
  std::copy_n(buffer_.begin() + 1, rest, replay_.begin());
  replay_at_ = 0;
  replay_size_ = rest + waiting;
  size_ = 0;
}

#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

// One RTCM 3 frame as it arrived: preamble, 6 reserved bits, a 10-bit payload length, the payload
// and a CRC-24Q over everything before it.
struct rtcm_frame_t {
  std::uint16_t type = 0;                 // the payload's first 12 bits; 0 for a payload too short
  std::span<const std::uint8_t> payload;  // valid until the next feed
  std::span<const std::uint8_t> bytes;    // the whole frame
};

// Cuts a byte stream into RTCM 3 frames. A frame whose CRC does not match is counted as bad and
// dropped, and the search for the next preamble starts one byte after the bad one's, so a frame
// hidden behind a false preamble is still found. Bytes between frames are skipped. The state
// carries over between calls, so frames may arrive split across any number of chunks.
class rtcm_framer_t {
public:
  static constexpr std::uint8_t preamble = 0xD3;
  static constexpr std::size_t header_size = 3;
  static constexpr std::size_t crc_size = 3;
  static constexpr std::size_t max_payload = 1023;
  static constexpr std::size_t max_frame = header_size + max_payload + crc_size;

  // Calls on_frame(const rtcm_frame_t&) for each good frame in the bytes.
  template <class on_frame_t>
  void feed(std::span<const std::uint8_t> bytes, on_frame_t&& on_frame) {
    for (const auto b : bytes) {
      if (push(b)) on_frame(frame_);
      // Bytes given back by a false preamble are searched again before the next new byte.
      while (replay_at_ < replay_size_) {
        if (push(replay_[replay_at_++])) on_frame(frame_);
      }
    }
  }

  std::uint64_t bad_frames() const { return bad_frames_; }
  std::uint64_t skipped_bytes() const { return skipped_bytes_; }
  // Forgets a partial frame, as at a new connection.
  void reset() {
    size_ = 0;
    replay_at_ = replay_size_ = 0;
  }

private:
  bool push(std::uint8_t b);
  std::size_t expected_size() const;
  void resync();

  std::array<std::uint8_t, max_frame> buffer_{};
  std::size_t size_ = 0;
  std::array<std::uint8_t, max_frame> replay_{};  // bytes after a false preamble, to search again
  std::size_t replay_at_ = 0;
  std::size_t replay_size_ = 0;
  rtcm_frame_t frame_;
  std::uint64_t bad_frames_ = 0;
  std::uint64_t skipped_bytes_ = 0;
};

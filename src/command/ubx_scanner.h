#pragma once

#include <cstdint>
#include <functional>
#include <span>
#include <vector>

#include "command/ubx_message.h"

// Finds whole UBX frames of any class in a byte stream split into any chunks, beside text or
// other protocols, and hands each one with a good checksum on. Memory stays bounded: a frame
// longer than max_payload is skipped.
class ubx_scanner_t {
public:
  static constexpr std::size_t max_payload = 4096;  // bytes; the answers read here are far shorter
  using frame_t = std::function<void(ubx_id_t message, std::span<const std::uint8_t> payload)>;

  explicit ubx_scanner_t(frame_t frame) : frame_(std::move(frame)) {}
  void feed(std::span<const std::uint8_t> bytes);
  void reset() { pending_.clear(); }

private:
  frame_t frame_;
  std::vector<std::uint8_t> pending_;  // from a sync byte on, an unfinished frame
};

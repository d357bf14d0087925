#pragma once

#include <cstdint>
#include <span>

// Sees every chunk the hub decodes, raw and in receive order, just before it is decoded: a
// recording of the session, a stream shared with other programs. Called on the main thread.
class receive_tap_t {
public:
  virtual ~receive_tap_t() = default;
  virtual void received(std::span<const std::uint8_t> bytes) = 0;
  // A link came up: a new connection to the receiver (or to the bridge's peer).
  virtual void link_up() {}
};

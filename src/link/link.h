#pragma once

#include <cstdint>
#include <span>
#include <string>

#include "core/colour.h"
#include "core/observable.h"

// How a TCP peer is named in status texts and console lines: "127.0.0.1:10110".
inline std::string host_port(const std::string& host, std::uint16_t port) {
  return host + ":" + std::to_string(port);
}

// What a transport reports to the hub, on the main thread. Every link, whatever carries its bytes,
// reports through these three calls, so the hub holds the one receive path. A report belongs to
// the link's current request: once stop() or a newer connect has ended a request, nothing of it
// arrives.
class link_events_t {
public:
  virtual ~link_events_t() = default;
  // The link is up; peer names it as the status shows it ("127.0.0.1:10110", a peripheral's name).
  virtual void link_up(const std::string& peer) = 0;
  // A connect attempt failed, or the link was lost unasked. error is the C library's error number,
  // or 0 when the transport has none.
  virtual void link_down(const std::string& peer, std::int32_t error) = 0;
  // One received chunk, raw, exactly as it arrived.
  virtual void link_bytes(std::span<const std::uint8_t> bytes) = 0;
};

// What the hub asks of every transport, on the main thread.
class link_t {
public:
  virtual ~link_t() = default;
  // The user wants this link (set by connect, cleared by stop).
  virtual bool enabled() const = 0;
  // The user's disconnect: the link closes without a report.
  virtual void stop() = 0;
  // Bridged bytes for the peer; dropped while the link is not up.
  virtual void write(std::span<const std::uint8_t> bytes) = 0;
};

class tcp_link_t : public link_t {
public:
  // 0 when an attempt was started, -1 when already connected. Never blocks.
  virtual std::int32_t connect(const std::string& host, std::uint16_t port) = 0;
  // A connection is established.
  virtual bool valid() const = 0;
};

// Observable: a notice comes before each change of what it shows (its status and colour).
class ble_link_t : public link_t, public observable_t {
public:
  // Sets the name to look for, enables the link and starts scanning.
  virtual void connect(const std::string& name) = 0;
  // The central's own state ("BLE 2 unsupported" in red, "scanning", ...), so that the screens can
  // tell a user why nothing happens.
  virtual std::string radio_status() const = 0;
  virtual colour_t radio_colour() const = 0;
  // The radio's state as last reported ("BLE 5 powered on", "BLE 2 unsupported"); empty before.
  virtual std::string radio_state() const = 0;
};

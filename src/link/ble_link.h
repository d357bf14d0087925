#pragma once

#include <cstdint>
#include <span>
#include <string>

#include "core/colour.h"

#include "link/receive.h"

// What the Bluetooth LE central reports to its owner, on the main thread.
class ble_delegate_t : public receive_line_t, public receive_arr_t {
public:
  virtual void ble_connected(const std::string& name) = 0;
  virtual void ble_disconnected(const std::string& name) = 0;
  // Every notification's raw bytes, before they are interpreted.
  virtual void ble_bridge(std::span<const std::uint8_t> bytes) = 0;
  // Complete text lines follow: the data handled last is text, not binary.
  virtual void ble_text_mode() = 0;
};

// What the hub uses of the Bluetooth LE central, on the main thread.
class ble_link_t {
public:
  virtual ~ble_link_t() = default;
  // Sets the name to look for, enables the link and starts scanning.
  virtual void connect(const std::string& name) = 0;
  // The user wants this link (set by connect, cleared by stop).
  virtual bool enabled() const = 0;
  // The user's disconnect: disables the link, stops a scan when the radio is on and cancels the
  // peripheral connection, without a report.
  virtual void stop() = 0;
  // Writes to the peripheral when it and both UART characteristics are known; drops otherwise.
  virtual void write(std::span<const std::uint8_t> bytes) = 0;
  // The central's own state ("BLE 2 unsupported" in red, "scanning", ...), so that the screens can
  // tell a user why nothing happens.
  virtual std::string radio_status() const = 0;
  virtual colour_t radio_colour() const = 0;
};


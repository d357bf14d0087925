#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

// A source of receiver data beside TCP and Bluetooth, named by its address:
//   serial:///dev/ttyACM0            a serial or USB port, its baud rate detected
//   serial:///dev/ttyUSB0?baud=N     ... at a given rate
//   udp://:PORT                      datagrams sent to a local port
//   gpsd://HOST[:PORT][?raw]         a gpsd daemon (port 2947), relaying NMEA or, with raw, every byte
struct source_address_t {
  enum class kind_t { serial, udp, gpsd };
  kind_t kind = kind_t::serial;
  std::string path;        // serial: the device
  std::uint32_t baud = 0;  // serial: 0 detects the rate
  std::string host;        // gpsd: as parse_host reads it
  std::uint16_t port = 0;  // udp, gpsd
  bool raw = false;        // gpsd

  // The address as the user writes it, normalised: "gpsd://127.0.0.1:2947".
  std::string text() const;
  bool operator==(const source_address_t&) const = default;
};

// True for the schemes above, so a caller knows which parser a text is for.
bool is_source_url(std::string_view url);

// The address, or a message naming what is wrong with it.
struct source_address_parse_t {
  std::optional<source_address_t> address;
  std::string error;
};
source_address_parse_t parse_source_url(std::string_view url);

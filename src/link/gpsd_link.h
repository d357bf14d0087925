#pragma once

#include <cstdint>
#include <string>

#include "link/link.h"

inline constexpr std::uint16_t gpsd_default_port = 2947;  // the port gpsd listens on

// A gpsd daemon that relays its receivers' data, for a receiver that gpsd owns. Reports through
// link_status_events_t: up and down with the daemon's name ("gpsd 127.0.0.1:2947"), the device
// gpsd reads as a status once the daemon names it ("gpsd 127.0.0.1:2947 /dev/ttyACM0"), and the
// relayed bytes as chunks. gpsd's own JSON lines start with "{", so the receive path drops them.
class gpsd_link_t : public link_t {
public:
  // Connects to the daemon and asks for NMEA sentences, or with raw for the receivers' bytes as
  // they come (UBX frames included). 0 when an attempt was started, -1 when connected already.
  virtual std::int32_t connect(const std::string& host, std::uint16_t port, bool raw) = 0;
  // The daemon is connected.
  virtual bool valid() const = 0;
};

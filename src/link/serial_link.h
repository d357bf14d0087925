#pragma once

#include <cstdint>
#include <string>

#include "link/link.h"

// A receiver on a serial or USB port. Reports through link_status_events_t: the rate it tries
// while detecting ("detecting baud rate (38400)..."), up with the port and its rate, down with an
// error number that serial_error_text words.
class serial_link_t : public link_t {
public:
  // Opens the port at baud, or at the first rate at which a receiver's data arrives when baud is
  // 0. 0 when an attempt was started, -1 when the port is open already. Never blocks.
  virtual std::int32_t open(const std::string& path, std::uint32_t baud) = 0;
  // The port is open and its data flows.
  virtual bool valid() const = 0;
};

// What a serial link's error number means to a user who can act on it: "permission denied: add
// your user to the dialout group" for EACCES, "device removed" for ENODEV; the C library's text
// for an error it has no better words for.
std::string serial_error_text(std::int32_t error);

// How a serial link names its port once up: "/dev/ttyACM0 at 38400 baud".
std::string serial_peer(const std::string& path, std::uint32_t baud);

#pragma once

#include <cstdint>
#include <string>

#include "link/link.h"

// A receiver or bridge that sends its stream as UDP datagrams to a local port. Reports through
// link_status_events_t: "listening on :PORT" once bound, up with the first sender's address
// ("127.0.0.1:40001", "[::1]:40001"), that of a later sender as a status, each datagram as one
// chunk, and down with the C library's error number when the port cannot be had.
class udp_link_t : public link_t {
public:
  // Listens on the port on every local IPv4 and IPv6 address. 0 when started, -1 when listening
  // already. Never blocks.
  virtual std::int32_t listen(std::uint16_t port) = 0;
  // The port is bound and datagrams are read.
  virtual bool valid() const = 0;
};

// How a listening UDP link shows its port: ":10110".
inline std::string udp_port_text(std::uint16_t port) {
  return ":" + std::to_string(port);
}

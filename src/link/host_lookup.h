#pragma once

#include <sys/socket.h>

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

// One address a host name resolved to, ready for socket() and connect().
struct socket_address_t {
  int family = 0;
  sockaddr_storage storage{};
  socklen_t length = 0;
};

struct host_addresses_t {
  std::vector<socket_address_t> addresses;  // in the order getaddrinfo prefers
  int error = 0;                            // a getaddrinfo code (negative), an error number, or 0
};

// Looks a host up with getaddrinfo on a thread of its own and waits for it in slices of poll_ms,
// giving up (returning nothing) as soon as `stay` says so. getaddrinfo cannot be interrupted and
// may wait far longer than a user waits for a disconnect or for the program to quit: a lookup given
// up ends later on its own, touching nothing but its own result.
std::optional<host_addresses_t> look_up(const std::string& name, std::uint16_t port, int poll_ms,
                                        const std::function<bool()>& stay);

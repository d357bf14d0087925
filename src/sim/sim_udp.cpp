#include "sim/sim_udp.h"

#include <netdb.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>

sim_udp_t::~sim_udp_t() {
  if (fd_ != -1) ::close(fd_);
}

bool sim_udp_t::open(const std::string& host, std::uint16_t port) {
  addrinfo hints{};
  hints.ai_socktype = SOCK_DGRAM;
  hints.ai_flags = AI_NUMERICHOST | AI_NUMERICSERV;
  addrinfo* found = nullptr;
  if (::getaddrinfo(host.c_str(), std::to_string(port).c_str(), &hints, &found) != 0) return false;
  fd_ = ::socket(found->ai_family, SOCK_DGRAM, 0);
  std::memcpy(&to_, found->ai_addr, found->ai_addrlen);
  to_size_ = found->ai_addrlen;
  ::freeaddrinfo(found);
  return fd_ != -1;
}

void sim_udp_t::send(std::string_view piece) {
  for (std::size_t at = 0; at < piece.size(); at += max_datagram) {
    const auto size = std::min(max_datagram, piece.size() - at);
    ::sendto(fd_, piece.data() + at, size, 0, reinterpret_cast<const sockaddr*>(&to_), to_size_);
  }
}

#pragma once

#include <sys/socket.h>

#include <cstdint>
#include <string>
#include <string_view>

// Sends the receiver's stream as UDP datagrams to one address, one datagram per piece (an epoch),
// as receivers and bridges that broadcast NMEA do.
class sim_udp_t {
public:
  static constexpr std::size_t max_datagram = 65507;  // bytes of a UDP payload over IPv4

  sim_udp_t() = default;
  ~sim_udp_t();
  sim_udp_t(const sim_udp_t&) = delete;
  sim_udp_t& operator=(const sim_udp_t&) = delete;

  // host is an IPv4 or IPv6 literal. False when it is not one, or with errno set when no socket
  // could be had.
  bool open(const std::string& host, std::uint16_t port);
  // Sends the piece, cut into datagrams of at most max_datagram bytes.
  void send(std::string_view piece);

private:
  int fd_ = -1;
  sockaddr_storage to_{};
  socklen_t to_size_ = 0;
};

#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

// How a TCP peer is named, whether typed in the settings, picked from the host history or given on
// the command line. A host is one of:
// - a dotted quad of decimal numbers with its first and last numbers 1 to 254, normalised
//   ("010.0.0.1" is "10.0.0.1"). Any text of only digits and dots must be one, so that no part of
//   the program reads "010" as the octal 8, as the C library would;
// - an IPv6 address, kept in brackets as it is written before a port ("[::1]"), normalised;
// - a host name: labels of letters, digits and hyphens joined by dots, which the C library would
//   not read as an address in another notation (such as "0x7f.1").
std::optional<std::string> parse_ipv4(std::string_view text);
std::optional<std::string> parse_host(std::string_view text);
// 1 to 65535 in decimal digits.
std::optional<std::uint16_t> parse_port(std::string_view text);
// The name to look up: the host without the brackets of an IPv6 address.
std::string lookup_name(const std::string& host);

struct tcp_address_t {
  std::string host;
  std::uint16_t port = 0;
};

// "tcp://HOST:PORT", or a message naming what is wrong with it.
struct tcp_address_parse_t {
  std::optional<tcp_address_t> address;
  std::string error;
};
tcp_address_parse_t parse_tcp_url(std::string_view url);

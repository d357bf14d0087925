#include "link/host_address.h"

#include <arpa/inet.h>
#include <netinet/in.h>

#include <array>

#include "nmea/fields.h"

namespace {

bool only_digits_and_dots(std::string_view text) {
  return text.find_first_not_of("0123456789.") == std::string_view::npos;
}

// "[::1]" for "::1" or "[0:0::1]"; nothing when the text is no IPv6 address.
std::optional<std::string> parse_ipv6(std::string_view text) {
  if (text.size() >= 2 && text.front() == '[' && text.back() == ']') text = text.substr(1, text.size() - 2);
  in6_addr address{};
  if (::inet_pton(AF_INET6, std::string(text).c_str(), &address) != 1) return std::nullopt;
  std::array<char, INET6_ADDRSTRLEN> out{};
  ::inet_ntop(AF_INET6, &address, out.data(), out.size());
  return "[" + std::string(out.data()) + "]";
}

bool is_label(std::string_view label) {
  const auto letter_digit_hyphen = [](char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '-';
  };
  if (label.empty() || label.size() > 63 || label.front() == '-' || label.back() == '-') return false;
  for (const char c : label)
    if (!letter_digit_hyphen(c)) return false;
  return true;
}

bool is_host_name(std::string_view text) {
  if (text.size() > 253) return false;
  const std::string name(text);
  for (;;) {
    const auto dot = text.find('.');
    if (!is_label(text.substr(0, dot))) return false;
    if (dot == std::string_view::npos) break;
    text.remove_prefix(dot + 1);
  }
  in_addr numeric{};
  return ::inet_aton(name.c_str(), &numeric) == 0;
}

}  // namespace

std::optional<std::string> parse_ipv4(std::string_view text) {
  unsigned octets[4] = {0, 0, 0, 0};
  bool all_parts_good = true;
  for (int i = 0; i < 4; ++i) {
    const auto dot = i < 3 ? text.find('.') : std::string_view::npos;
    const auto part = text.substr(0, dot);
    const auto number = parse_unsigned(part, 255);
    if (!part.empty() && part.front() != '+' && number) {
      octets[i] = static_cast<unsigned>(*number);
    } else {
      all_parts_good = false;
    }
    if (dot == std::string_view::npos) {
      if (i < 3) all_parts_good = false;
      break;
    }
    text.remove_prefix(dot + 1);
  }
  if (!all_parts_good || octets[0] < 1 || octets[0] > 254 || octets[3] < 1 || octets[3] > 254) return std::nullopt;
  return std::to_string(octets[0]) + "." + std::to_string(octets[1]) + "." + std::to_string(octets[2]) + "." +
         std::to_string(octets[3]);
}

std::optional<std::string> parse_host(std::string_view text) {
  if (only_digits_and_dots(text)) return parse_ipv4(text);
  if (text.find(':') != std::string_view::npos) return parse_ipv6(text);
  if (is_host_name(text)) return std::string(text);
  return std::nullopt;
}

std::optional<std::uint16_t> parse_port(std::string_view text) {
  const auto p = parse_unsigned(text, UINT16_MAX);
  if (!p || *p == 0 || text.front() == '+') return std::nullopt;
  return static_cast<std::uint16_t>(*p);
}

std::string lookup_name(const std::string& host) {
  if (host.size() >= 2 && host.front() == '[') return host.substr(1, host.size() - 2);
  return host;
}

tcp_address_parse_t parse_tcp_url(std::string_view url) {
  constexpr std::string_view scheme = "tcp://";
  const std::string quoted = "'" + std::string(url) + "'";
  const auto colon = url.rfind(':');
  if (url.substr(0, scheme.size()) != scheme || colon < scheme.size())
    return {std::nullopt, "takes tcp://HOST:PORT, not " + quoted};
  const auto host_text = url.substr(scheme.size(), colon - scheme.size());
  const auto port_text = url.substr(colon + 1);
  // A port after an IPv6 address is told from the address's own colons only by the brackets.
  const bool bracketed = !host_text.empty() && host_text.front() == '[';
  const auto host = bracketed || host_text.find(':') == std::string_view::npos ? parse_host(host_text) : std::nullopt;
  if (!host)
    return {std::nullopt,
            "needs a HOST that is a dotted quad with its first and last numbers 1 to 254, a host name "
            "or an IPv6 address in brackets, not '" +
                std::string(host_text) + "' in " + quoted};
  const auto port = parse_port(port_text);
  if (!port) return {std::nullopt, "needs a PORT from 1 to 65535, not '" + std::string(port_text) + "' in " + quoted};
  return {tcp_address_t{*host, *port}, {}};
}

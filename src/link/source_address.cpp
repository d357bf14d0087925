#include "link/source_address.h"

#include <array>

#include "core/termios_speed.h"
#include "link/gpsd_link.h"
#include "link/host_address.h"
#include "nmea/fields.h"

namespace {

constexpr std::string_view serial_scheme = "serial://";
constexpr std::string_view udp_scheme = "udp://";
constexpr std::string_view gpsd_scheme = "gpsd://";

bool starts_with(std::string_view text, std::string_view prefix) {
  return text.substr(0, prefix.size()) == prefix;
}

source_address_parse_t failure(std::string message) {
  return {std::nullopt, std::move(message)};
}

source_address_parse_t parse_serial(std::string_view rest, const std::string& quoted) {
  source_address_t a;
  const auto query = rest.find('?');
  a.path = std::string(rest.substr(0, query));
  if (a.path.size() < 2 || a.path.front() != '/')
    return failure("takes serial:///dev/NAME with the device's full path, not " + quoted);
  if (query != std::string_view::npos) {
    constexpr std::string_view baud_key = "baud=";
    const auto option = rest.substr(query + 1);
    const auto baud =
        starts_with(option, baud_key) ? parse_unsigned(option.substr(baud_key.size()), 460800) : std::nullopt;
    if (!baud || !termios_speed(static_cast<std::uint32_t>(*baud)))
      return failure("takes ?baud= with one of 4800, 9600, 19200, 38400, 57600, 115200, 230400 or 460800, not " +
                     quoted);
    a.baud = static_cast<std::uint32_t>(*baud);
  }
  return {a, {}};
}

source_address_parse_t parse_udp(std::string_view rest, const std::string& quoted) {
  const auto port = rest.size() > 1 && rest.front() == ':' ? parse_port(rest.substr(1)) : std::nullopt;
  if (!port) return failure("takes udp://:PORT with a PORT from 1 to 65535, not " + quoted);
  source_address_t a;
  a.kind = source_address_t::kind_t::udp;
  a.port = *port;
  return {a, {}};
}

source_address_parse_t parse_gpsd(std::string_view rest, const std::string& quoted) {
  source_address_t a;
  a.kind = source_address_t::kind_t::gpsd;
  constexpr std::string_view raw = "?raw";
  if (rest.size() >= raw.size() && rest.substr(rest.size() - raw.size()) == raw) {
    a.raw = true;
    rest.remove_suffix(raw.size());
  }
  if (rest.empty()) return failure("takes gpsd://HOST[:PORT], not " + quoted);
  // A port follows the host after a colon; an IPv6 address is told from it by its brackets.
  const auto close = rest.rfind(']');
  const auto colon = rest.rfind(':');
  const bool has_port =
      colon != std::string_view::npos && (rest.front() != '[' || (close != std::string_view::npos && colon > close));
  if (has_port) {
    const auto tcp = parse_tcp_url("tcp://" + std::string(rest));
    if (!tcp.address) return failure("takes gpsd://HOST[:PORT], not " + quoted);
    a.host = tcp.address->host;
    a.port = tcp.address->port;
    return {a, {}};
  }
  const auto host = parse_host(rest);
  if (!host) return failure("takes gpsd://HOST[:PORT] with a dotted quad, a host name or [IPv6], not " + quoted);
  a.host = *host;
  a.port = gpsd_default_port;
  return {a, {}};
}

}  // namespace

std::string source_address_t::text() const {
  switch (kind) {
    case kind_t::serial:
      return std::string(serial_scheme) + path + (baud != 0 ? "?baud=" + std::to_string(baud) : std::string());
    case kind_t::udp:
      return std::string(udp_scheme) + ":" + std::to_string(port);
    case kind_t::gpsd:
      return std::string(gpsd_scheme) + host_port(host, port) + (raw ? "?raw" : "");
  }
  return {};
}

bool is_source_url(std::string_view url) {
  return starts_with(url, serial_scheme) || starts_with(url, udp_scheme) || starts_with(url, gpsd_scheme);
}

source_address_parse_t parse_source_url(std::string_view url) {
  const std::string quoted = "'" + std::string(url) + "'";
  if (starts_with(url, serial_scheme)) return parse_serial(url.substr(serial_scheme.size()), quoted);
  if (starts_with(url, udp_scheme)) return parse_udp(url.substr(udp_scheme.size()), quoted);
  if (starts_with(url, gpsd_scheme) && url.size() > gpsd_scheme.size())
    return parse_gpsd(url.substr(gpsd_scheme.size()), quoted);
  return failure("takes serial://, udp:// or gpsd:// with an address, not " + quoted);
}

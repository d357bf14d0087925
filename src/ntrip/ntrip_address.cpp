#include "ntrip/ntrip_address.h"

#include "link/host_address.h"
#include "link/link.h"

namespace {

constexpr std::string_view scheme = "ntrip://";

int hex_digit(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return -1;
}

// "%40" is "@"; a "%" not followed by two hex digits stands for itself.
std::string percent_decoded(std::string_view text) {
  std::string out;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] == '%' && i + 2 < text.size() && hex_digit(text[i + 1]) >= 0 && hex_digit(text[i + 2]) >= 0) {
      out.push_back(static_cast<char>(hex_digit(text[i + 1]) * 16 + hex_digit(text[i + 2])));
      i += 2;
    } else {
      out.push_back(text[i]);
    }
  }
  return out;
}

std::string percent_encoded(std::string_view text) {
  static constexpr char digits[] = "0123456789ABCDEF";
  std::string out;
  for (const char c : text) {
    if (c == '@' || c == ':' || c == '%' || c == '/') {
      out += '%';
      out += digits[(static_cast<unsigned char>(c) >> 4) & 0xF];
      out += digits[static_cast<unsigned char>(c) & 0xF];
    } else {
      out += c;
    }
  }
  return out;
}

// A mountpoint is printable ASCII without blanks or "/": it goes into the request line as it is.
bool valid_mountpoint(std::string_view m) {
  for (const char c : m) {
    if (c <= ' ' || c > '~' || c == '/') return false;
  }
  return true;
}

}  // namespace

std::string ntrip_address_t::caster() const {
  return host_port(host, port);
}

std::string ntrip_address_t::text() const {
  return std::string(scheme) + (user.empty() ? "" : percent_encoded(user) + "@") + caster() + "/" + mountpoint;
}

std::string ntrip_address_t::url() const {
  std::string credentials;
  if (!user.empty() || !password.empty())
    credentials = percent_encoded(user) + (password.empty() ? "" : ":" + percent_encoded(password)) + "@";
  return std::string(scheme) + credentials + caster() + "/" + mountpoint;
}

ntrip_address_parse_t parse_ntrip_url(std::string_view url, bool need_mountpoint) {
  const std::string form = need_mountpoint ? "ntrip://[USER[:PASS]@]HOST[:PORT]/MOUNT" : "ntrip://HOST[:PORT]";
  const auto fail = [&](const std::string& why) {
    return ntrip_address_parse_t{std::nullopt, "takes " + form + why + ", not '" + std::string(url) + "'"};
  };
  if (url.substr(0, scheme.size()) != scheme) return fail("");
  auto rest = url.substr(scheme.size());
  ntrip_address_t a;
  if (const auto at = rest.rfind('@'); at != std::string_view::npos) {
    const auto userinfo = rest.substr(0, at);
    const auto colon = userinfo.find(':');
    a.user = percent_decoded(userinfo.substr(0, colon));
    if (colon != std::string_view::npos) a.password = percent_decoded(userinfo.substr(colon + 1));
    rest = rest.substr(at + 1);
  }
  const auto slash = rest.find('/');
  const auto authority = rest.substr(0, slash);
  if (slash != std::string_view::npos) a.mountpoint = std::string(rest.substr(slash + 1));
  if (need_mountpoint && a.mountpoint.empty()) return fail(" with a mountpoint");
  if (!valid_mountpoint(a.mountpoint)) return fail(" with a mountpoint of printable characters");
  // A port follows the host after a colon; an IPv6 address is told from it by its brackets.
  const auto close = authority.rfind(']');
  const auto colon = authority.rfind(':');
  const bool has_port = colon != std::string_view::npos &&
                        (authority.front() != '[' || (close != std::string_view::npos && colon > close));
  if (has_port) {
    const auto tcp = parse_tcp_url("tcp://" + std::string(authority));
    if (!tcp.address) return fail(" with a PORT from 1 to 65535");
    a.host = tcp.address->host;
    a.port = tcp.address->port;
  } else {
    const auto host = parse_host(authority);
    if (!host) return fail(" with a dotted quad, a host name or [IPv6] as HOST");
    a.host = *host;
  }
  return {a, {}};
}

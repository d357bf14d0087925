#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

inline constexpr std::uint16_t ntrip_default_port = 2101;

// A caster and one of its mountpoints: ntrip://[USER[:PASS]@]HOST[:PORT]/MOUNT. The user name may
// hold "@" (casters often take an e-mail address), so the last "@" ends it; "%40" and the like are
// decoded in the user name and the password.
struct ntrip_address_t {
  std::string user;
  std::string password;
  std::string host;  // as parse_host reads it
  std::uint16_t port = ntrip_default_port;
  std::string mountpoint;  // empty: the caster itself, for its source table

  // The caster as status texts name it: "127.0.0.1:2101".
  std::string caster() const;
  // The address without the password, for screens and console lines.
  std::string text() const;
  // The whole address, password included, for the settings.
  std::string url() const;
  bool operator==(const ntrip_address_t&) const = default;
};

struct ntrip_address_parse_t {
  std::optional<ntrip_address_t> address;
  std::string error;
};

// The address, or a message naming what is wrong. need_mountpoint: a corrections source needs one;
// a source table request takes the caster alone.
ntrip_address_parse_t parse_ntrip_url(std::string_view url, bool need_mountpoint);

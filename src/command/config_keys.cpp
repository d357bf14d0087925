#include "command/config_keys.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cstdio>

#include "command/hex_text.h"

namespace {

constexpr std::size_t val_header = 4;  // version, layer(s), two reserved bytes or a position
constexpr std::size_t key_size = 4;

constexpr std::array<config_key_t, 34> keys{{
    {"CFG-RATE-MEAS", 0x30210001, key_type_t::u2},
    {"CFG-RATE-NAV", 0x30210002, key_type_t::u2},
    {"CFG-NAVSPG-DYNMODEL", 0x20110021, key_type_t::e1},
    {"CFG-UART1-BAUDRATE", 0x40520001, key_type_t::u4},
    {"CFG-SIGNAL-GPS_ENA", 0x1031001F, key_type_t::l},
    {"CFG-SIGNAL-SBAS_ENA", 0x10310020, key_type_t::l},
    {"CFG-SIGNAL-GAL_ENA", 0x10310021, key_type_t::l},
    {"CFG-SIGNAL-BDS_ENA", 0x10310022, key_type_t::l},
    {"CFG-SIGNAL-QZSS_ENA", 0x10310024, key_type_t::l},
    {"CFG-SIGNAL-GLO_ENA", 0x10310025, key_type_t::l},
    {"CFG-MSGOUT-NMEA_ID_GGA_UART1", 0x209100BB, key_type_t::u1},
    {"CFG-MSGOUT-NMEA_ID_GGA_USB", 0x209100BD, key_type_t::u1},
    {"CFG-MSGOUT-NMEA_ID_GLL_UART1", 0x209100CA, key_type_t::u1},
    {"CFG-MSGOUT-NMEA_ID_GLL_USB", 0x209100CC, key_type_t::u1},
    {"CFG-MSGOUT-NMEA_ID_GSA_UART1", 0x209100C0, key_type_t::u1},
    {"CFG-MSGOUT-NMEA_ID_GSA_USB", 0x209100C2, key_type_t::u1},
    {"CFG-MSGOUT-NMEA_ID_GSV_UART1", 0x209100C5, key_type_t::u1},
    {"CFG-MSGOUT-NMEA_ID_GSV_USB", 0x209100C7, key_type_t::u1},
    {"CFG-MSGOUT-NMEA_ID_RMC_UART1", 0x209100AC, key_type_t::u1},
    {"CFG-MSGOUT-NMEA_ID_RMC_USB", 0x209100AE, key_type_t::u1},
    {"CFG-MSGOUT-NMEA_ID_VTG_UART1", 0x209100B1, key_type_t::u1},
    {"CFG-MSGOUT-NMEA_ID_VTG_USB", 0x209100B3, key_type_t::u1},
    {"CFG-MSGOUT-NMEA_ID_ZDA_UART1", 0x209100D9, key_type_t::u1},
    {"CFG-MSGOUT-NMEA_ID_ZDA_USB", 0x209100DB, key_type_t::u1},
    {"CFG-MSGOUT-UBX_NAV_PVT_UART1", 0x20910007, key_type_t::u1},
    {"CFG-MSGOUT-UBX_NAV_PVT_USB", 0x20910009, key_type_t::u1},
    {"CFG-MSGOUT-UBX_NAV_POSLLH_UART1", 0x2091002A, key_type_t::u1},
    {"CFG-MSGOUT-UBX_NAV_POSLLH_USB", 0x2091002C, key_type_t::u1},
    {"CFG-MSGOUT-UBX_NAV_SAT_UART1", 0x20910016, key_type_t::u1},
    {"CFG-MSGOUT-UBX_NAV_SAT_USB", 0x20910018, key_type_t::u1},
    {"CFG-MSGOUT-UBX_NAV_SIG_UART1", 0x20910346, key_type_t::u1},
    {"CFG-MSGOUT-UBX_NAV_SIG_USB", 0x20910348, key_type_t::u1},
    {"CFG-MSGOUT-UBX_NAV_DOP_UART1", 0x20910039, key_type_t::u1},
    {"CFG-MSGOUT-UBX_NAV_DOP_USB", 0x2091003B, key_type_t::u1},
}};

bool same_name(std::string_view a, std::string_view b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(), [](char x, char y) {
    return std::toupper(static_cast<unsigned char>(x)) == std::toupper(static_cast<unsigned char>(y));
  });
}

std::vector<std::uint8_t> keys_payload(std::uint8_t version, std::uint8_t layers, std::span<const std::uint32_t> keys) {
  std::vector<std::uint8_t> payload{version, layers, 0, 0};
  for (const auto key : keys) put_le(payload, key, key_size);
  return payload;
}

}  // namespace

std::span<const config_key_t> config_keys() {
  return keys;
}

const config_key_t* find_config_key(std::string_view name) {
  const auto it =
      std::find_if(keys.begin(), keys.end(), [&](const config_key_t& k) { return same_name(k.name, name); });
  return it == keys.end() ? nullptr : &*it;
}

const config_key_t* find_config_key(std::uint32_t id) {
  const auto it = std::find_if(keys.begin(), keys.end(), [&](const config_key_t& k) { return k.id == id; });
  return it == keys.end() ? nullptr : &*it;
}

std::size_t key_value_size(std::uint32_t id) {
  constexpr std::array<std::size_t, 8> sizes{0, 1, 1, 2, 4, 8, 0, 0};
  return sizes[(id >> 28) & 0x7];
}

std::string_view key_type_name(key_type_t type) {
  constexpr std::array<std::string_view, 5> names{"L", "U1", "E1", "U2", "U4"};
  return names[static_cast<std::size_t>(type)];
}

std::string key_name(std::uint32_t id) {
  if (const auto* key = find_config_key(id)) return std::string(key->name);
  char text[16];
  std::snprintf(text, sizeof text, "0x%08X", id);
  return text;
}

std::optional<std::uint32_t> parse_key(std::string_view text) {
  if (const auto* key = find_config_key(text)) return key->id;
  if (text.size() != 10 || !same_name(text.substr(0, 2), "0x")) return std::nullopt;
  const auto id = parse_hex_u32(text.substr(2));
  if (!id || key_value_size(*id) == 0) return std::nullopt;
  return id;
}

std::vector<std::uint8_t> valset_payload(std::uint8_t layers, std::span<const key_value_t> items) {
  std::vector<std::uint8_t> payload{0, layers, 0, 0};
  for (const auto& item : items) {
    put_le(payload, item.key, key_size);
    put_le(payload, item.value, key_value_size(item.key));
  }
  return payload;
}

std::vector<std::uint8_t> valget_payload(std::uint8_t layer, std::span<const std::uint32_t> keys) {
  return keys_payload(0, layer, keys);
}

std::vector<std::uint8_t> valdel_payload(std::uint8_t layers, std::span<const std::uint32_t> keys) {
  return keys_payload(0, layers, keys);
}

std::optional<std::vector<std::uint32_t>> keys_of(ubx_id_t message, std::span<const std::uint8_t> payload) {
  if (message == ubx_cfg_valset) {
    const auto items = items_of(payload);
    if (!items) return std::nullopt;
    std::vector<std::uint32_t> ids;
    for (const auto& item : *items) ids.push_back(item.key);
    return ids;
  }
  if (payload.size() < val_header || (payload.size() - val_header) % key_size != 0) return std::nullopt;
  std::vector<std::uint32_t> ids;
  for (std::size_t at = val_header; at < payload.size(); at += key_size)
    ids.push_back(static_cast<std::uint32_t>(get_le(payload, at, key_size)));
  return ids;
}

std::optional<std::vector<key_value_t>> items_of(std::span<const std::uint8_t> payload) {
  if (payload.size() < val_header) return std::nullopt;
  std::vector<key_value_t> items;
  for (std::size_t at = val_header; at < payload.size();) {
    if (payload.size() - at < key_size) return std::nullopt;
    const auto key = static_cast<std::uint32_t>(get_le(payload, at, key_size));
    const auto size = key_value_size(key);
    at += key_size;
    if (size == 0 || payload.size() - at < size) return std::nullopt;
    items.push_back({key, get_le(payload, at, size)});
    at += size;
  }
  return items;
}

std::string items_text(std::span<const key_value_t> items) {
  std::string text;
  for (const auto& item : items) {
    if (!text.empty()) text += ", ";
    text += key_name(item.key) + "=" + std::to_string(item.value);
  }
  return text;
}

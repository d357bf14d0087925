#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "command/ubx_message.h"

// The key-value configuration of generation 9 receivers: each item has a 32-bit key whose bits
// 28 to 30 give the size of its value (1 bit stored as one byte, 1, 2, 4 or 8 bytes).
enum class key_type_t : std::uint8_t { l, u1, e1, u2, u4 };

struct config_key_t {
  std::string_view name;
  std::uint32_t id;
  key_type_t type;
};

// The items users change most: rates, message outputs on UART1 and USB, constellations, the
// dynamic model and the UART1 baud rate.
std::span<const config_key_t> config_keys();
// By name ("CFG-RATE-MEAS", any letter case); nullptr when the table has none.
const config_key_t* find_config_key(std::string_view name);
const config_key_t* find_config_key(std::uint32_t id);
// Bytes of a key's value, from its size bits; 0 for a key with a size no item has.
std::size_t key_value_size(std::uint32_t id);
std::string_view key_type_name(key_type_t type);
// The table's name, or the id in hex ("0x10990001") for a key it does not know.
std::string key_name(std::uint32_t id);

// A key named by the table or written as a hex id ("0x30210001"); nullopt for neither.
std::optional<std::uint32_t> parse_key(std::string_view text);

struct key_value_t {
  std::uint32_t key = 0;
  std::uint64_t value = 0;
  bool operator==(const key_value_t&) const = default;
};

// Memory layers: a VALSET writes RAM (applied at once), battery-backed RAM and flash as asked.
inline constexpr std::uint8_t layer_ram = 0x01;
inline constexpr std::uint8_t layer_bbr = 0x02;
inline constexpr std::uint8_t layer_flash = 0x04;
// VALGET reads one layer by number, not by bit.
inline constexpr std::uint8_t valget_layer_ram = 0;

std::vector<std::uint8_t> valset_payload(std::uint8_t layers, std::span<const key_value_t> items);
std::vector<std::uint8_t> valget_payload(std::uint8_t layer, std::span<const std::uint32_t> keys);
std::vector<std::uint8_t> valdel_payload(std::uint8_t layers, std::span<const std::uint32_t> keys);
// The keys of a VALGET poll, a VALDEL or (with values) a VALSET; nullopt when it is malformed.
std::optional<std::vector<std::uint32_t>> keys_of(ubx_id_t message, std::span<const std::uint8_t> payload);
// The items of a VALSET or of a VALGET answer; nullopt when a value runs past the end or a key
// has no known size.
std::optional<std::vector<key_value_t>> items_of(std::span<const std::uint8_t> payload);
// "CFG-RATE-MEAS=200, CFG-SIGNAL-GPS_ENA=1"
std::string items_text(std::span<const key_value_t> items);

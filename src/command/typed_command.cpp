#include "command/typed_command.h"

#include <limits>

#include "command/config_keys.h"
#include "command/hex_text.h"
#include "nmea/fields.h"
#include "nmea/sentence.h"

namespace {

constexpr std::string_view line_end = "\r\n";
constexpr std::uint16_t time_ref_gps = 1;

typed_parse_t fail(std::string message) {
  return {std::nullopt, std::move(message)};
}

// Splits at commas; an empty text gives no parts.
std::vector<std::string_view> split(std::string_view text) {
  std::vector<std::string_view> parts;
  while (!text.empty()) {
    const auto comma = text.find(',');
    parts.push_back(text.substr(0, comma));
    if (comma == std::string_view::npos) break;
    text.remove_prefix(comma + 1);
  }
  return parts;
}

constexpr std::uint32_t unread = 0x100;  // above any byte: a number that was not there

// One or two hex digits.
std::uint32_t hex_byte(std::string_view text) {
  return text.size() > 2 ? unread : parse_hex_u32(text).value_or(unread);
}

typed_parse_t nmea(std::string_view text) {
  const bool has_checksum = text.find('*') != std::string_view::npos;
  typed_command_t command;
  command.text = has_checksum ? std::string(text) : with_checksum(text);
  command.bytes.assign(command.text.begin(), command.text.end());
  command.bytes.insert(command.bytes.end(), line_end.begin(), line_end.end());
  return {command, {}};
}

typed_parse_t ubx(std::string_view text) {
  const auto parts = split(text);
  if (parts.size() < 2 || parts.size() > 3)
    return fail("ubx: needs CLASS,ID[,PAYLOAD] in hex, such as ubx:06,08,c80001000100");
  const auto cls = hex_byte(parts[0]);
  const auto id = hex_byte(parts[1]);
  if (cls == unread || id == unread)
    return fail("ubx: class and id are two hex digits each, not '" + std::string(text) + "'");
  const auto payload = parts.size() == 3 ? parse_hex_bytes(parts[2]) : std::vector<std::uint8_t>{};
  if (!payload) return fail("ubx: the payload is pairs of hex digits, not '" + std::string(parts[2]) + "'");
  return {ubx_command({static_cast<std::uint8_t>(cls), static_cast<std::uint8_t>(id)}, *payload, hex_text(*payload)),
          {}};
}

// A whole UBX frame typed as hex waits for its answer as the same message built from parts would.
typed_parse_t raw(std::string_view text) {
  const auto bytes = parse_hex_bytes(text);
  if (!bytes || bytes->empty()) return fail("hex: needs pairs of hex digits, such as hex:B5620A0400000E34");
  typed_command_t command;
  const auto& b = *bytes;
  if (b.size() >= ubx_frame_overhead && b[0] == 0xB5 && b[1] == 0x62 &&
      get_le(b, 4, 2) + ubx_frame_overhead == b.size()) {
    const std::vector<std::uint8_t> payload(b.begin() + 6, b.end() - 2);
    command = ubx_command({b[2], b[3]}, payload, hex_text(payload));
  }
  command.bytes = b;
  command.text = "hex " + hex_text(b);
  return {command, {}};
}

typed_parse_t set(std::string_view text) {
  std::vector<key_value_t> items;
  for (const auto item : split(text)) {
    const auto equals = item.find('=');
    const auto key = parse_key(item.substr(0, equals));
    if (!key) return fail("set: unknown key '" + std::string(item.substr(0, equals)) + "'");
    if (equals == std::string_view::npos) return fail("set: " + std::string(item) + " needs =VALUE");
    const auto size = key_value_size(*key);
    const auto max = size == 8 ? std::numeric_limits<std::uint64_t>::max() : (std::uint64_t{1} << (8 * size)) - 1;
    const auto limit = find_config_key(*key) && find_config_key(*key)->type == key_type_t::l ? 1 : max;
    const auto value = parse_unsigned(item.substr(equals + 1), limit);
    if (!value)
      return fail("set: " + std::string(item.substr(0, equals)) + " takes a whole number from 0 to " +
                  std::to_string(limit) + ", not '" + std::string(item.substr(equals + 1)) + "'");
    items.push_back({*key, *value});
  }
  if (items.empty()) return fail("set: needs KEY=VALUE, such as set:CFG-RATE-MEAS=200");
  return {ubx_command(ubx_cfg_valset, valset_payload(layer_ram, items), items_text(items)), {}};
}

typed_parse_t keys_command(std::string_view verb, std::string_view text) {
  std::vector<std::uint32_t> keys;
  std::string names;
  for (const auto item : split(text)) {
    const auto key = parse_key(item);
    if (!key) return fail(std::string(verb) + ": unknown key '" + std::string(item) + "'");
    keys.push_back(*key);
    names += (names.empty() ? "" : ", ") + key_name(*key);
  }
  if (keys.empty()) return fail(std::string(verb) + ": needs a key, such as " + std::string(verb) + ":CFG-RATE-MEAS");
  if (verb == "get") return {ubx_command(ubx_cfg_valget, valget_payload(valget_layer_ram, keys), names), {}};
  return {ubx_command(ubx_cfg_valdel, valdel_payload(layer_bbr | layer_flash, keys), names), {}};
}

typed_parse_t rate(std::string_view text) {
  const auto parts = split(text);
  // 0 stands for a missing or unreadable number: neither may be 0.
  const auto meas = parts.empty() ? 0 : parse_unsigned(parts[0], 0xFFFF).value_or(0);
  const auto nav = parts.size() < 2 ? 1 : parse_unsigned(parts[1], 0xFFFF).value_or(0);
  if (parts.size() > 2 || meas == 0 || nav == 0)
    return fail("rate: needs the measurement period in ms and optionally the navigation ratio, such as rate:200,1");
  const auto payload =
      cfg_rate_payload(static_cast<std::uint16_t>(meas), static_cast<std::uint16_t>(nav), time_ref_gps);
  return {ubx_command(ubx_cfg_rate, payload, std::to_string(meas) + " ms, " + std::to_string(nav)), {}};
}

typed_parse_t msg(std::string_view text) {
  const auto parts = split(text);
  const auto cls = parts.size() == 3 ? hex_byte(parts[0]) : unread;
  const auto id = parts.size() == 3 ? hex_byte(parts[1]) : unread;
  const auto r = parts.size() == 3 ? parse_unsigned(parts[2], 0xFF).value_or(unread) : unread;
  if (cls == unread || id == unread || r == unread)
    return fail("msg: needs CLASS,ID in hex and a rate, such as msg:01,07,1");
  const ubx_id_t message{static_cast<std::uint8_t>(cls), static_cast<std::uint8_t>(id)};
  return {ubx_command(ubx_cfg_msg, cfg_msg_payload(message, static_cast<std::uint8_t>(r)),
                      ubx_name(message) + " " + std::to_string(r)),
          {}};
}

}  // namespace

typed_command_t ubx_command(ubx_id_t message, const std::vector<std::uint8_t>& payload, const std::string& detail) {
  typed_command_t command;
  command.bytes = ubx_frame(message, payload);
  command.message = message;
  command.text = ubx_name(message) + (detail.empty() ? "" : " " + detail);
  if (message.cls == ubx_class_cfg) {
    command.answer = answer_kind_t::ack;
  } else if (payload.empty()) {
    command.answer = answer_kind_t::poll;
  }
  return command;
}

typed_parse_t parse_typed_command(std::string_view text) {
  if (text.starts_with('$')) return nmea(text);
  const auto colon = text.find(':');
  const auto verb = text.substr(0, colon);
  const auto rest = colon == std::string_view::npos ? std::string_view{} : text.substr(colon + 1);
  if (verb == "ubx") return ubx(rest);
  if (verb == "hex") return raw(rest);
  if (verb == "set") return set(rest);
  if (verb == "get" || verb == "del") return keys_command(verb, rest);
  if (verb == "rate") return rate(rest);
  if (verb == "msg") return msg(rest);
  return fail("unknown command '" + std::string(text) +
              "': give $SENTENCE, ubx:, hex:, set:, get:, del:, rate: or msg:");
}

#include "command/ubx_message.h"

#include <algorithm>
#include <array>
#include <cstdio>

#include "ubx/records.h"

namespace {

constexpr std::size_t mon_ver_software = 30;   // bytes of the software version string
constexpr std::size_t mon_ver_hardware = 10;   // ... of the hardware version
constexpr std::size_t mon_ver_extension = 30;  // ... of each extension

struct known_name_t {
  ubx_id_t message;
  const char* name = nullptr;
};
constexpr std::array<known_name_t, 8> known_names{{{ubx_ack_nak, "ACK-NAK"},
                                                   {ubx_ack_ack, "ACK-ACK"},
                                                   {ubx_cfg_msg, "CFG-MSG"},
                                                   {ubx_cfg_rate, "CFG-RATE"},
                                                   {ubx_cfg_valset, "CFG-VALSET"},
                                                   {ubx_cfg_valget, "CFG-VALGET"},
                                                   {ubx_cfg_valdel, "CFG-VALDEL"},
                                                   {ubx_mon_ver, "MON-VER"}}};

// A fixed-size text field: up to its first NUL.
std::string fixed_text(std::span<const std::uint8_t> field) {
  const auto end = std::find(field.begin(), field.end(), std::uint8_t{0});
  return {field.begin(), end};
}

void put_text(std::vector<std::uint8_t>& out, const std::string& text, std::size_t size) {
  for (std::size_t i = 0; i < size; ++i) out.push_back(i < text.size() ? static_cast<std::uint8_t>(text[i]) : 0);
}

}  // namespace

std::vector<std::uint8_t> ubx_frame(ubx_id_t message, std::span<const std::uint8_t> payload) {
  std::vector<std::uint8_t> image{message.cls, message.id};
  put_le(image, payload.size(), 2);
  image.insert(image.end(), payload.begin(), payload.end());
  return frame_of(image);
}

std::string ubx_name(ubx_id_t message) {
  for (const auto& known : known_names)
    if (known.message == message) return known.name;
  char text[16];
  std::snprintf(text, sizeof text, "UBX %02X %02X", message.cls, message.id);
  return text;
}

void put_le(std::vector<std::uint8_t>& out, std::uint64_t value, std::size_t size) {
  for (std::size_t i = 0; i < size; ++i) out.push_back(static_cast<std::uint8_t>(value >> (8 * i)));
}

std::uint64_t get_le(std::span<const std::uint8_t> in, std::size_t offset, std::size_t size) {
  std::uint64_t value = 0;
  for (std::size_t i = 0; i < size; ++i) value |= std::uint64_t{in[offset + i]} << (8 * i);
  return value;
}

std::vector<std::uint8_t> cfg_rate_payload(std::uint16_t meas_ms, std::uint16_t nav_rate, std::uint16_t time_ref) {
  std::vector<std::uint8_t> payload;
  put_le(payload, meas_ms, 2);
  put_le(payload, nav_rate, 2);
  put_le(payload, time_ref, 2);
  return payload;
}

std::vector<std::uint8_t> cfg_msg_payload(ubx_id_t message, std::uint8_t rate) {
  return {message.cls, message.id, rate};
}

// 40 bytes of versions, then any number of 30-byte extensions.
std::optional<receiver_identity_t> decode_mon_ver(std::span<const std::uint8_t> payload) {
  const std::size_t fixed = mon_ver_software + mon_ver_hardware;
  if (payload.size() < fixed || (payload.size() - fixed) % mon_ver_extension != 0) return std::nullopt;
  receiver_identity_t identity;
  identity.software = fixed_text(payload.subspan(0, mon_ver_software));
  identity.hardware = fixed_text(payload.subspan(mon_ver_software, mon_ver_hardware));
  for (std::size_t at = fixed; at < payload.size(); at += mon_ver_extension)
    identity.extensions.push_back(fixed_text(payload.subspan(at, mon_ver_extension)));
  return identity;
}

std::vector<std::uint8_t> mon_ver_payload(const receiver_identity_t& identity) {
  std::vector<std::uint8_t> payload;
  put_text(payload, identity.software, mon_ver_software);
  put_text(payload, identity.hardware, mon_ver_hardware);
  for (const auto& extension : identity.extensions) put_text(payload, extension, mon_ver_extension);
  return payload;
}

std::string identity_text(const receiver_identity_t& identity) {
  std::string text = identity.software + ", " + identity.hardware;
  for (const auto& extension : identity.extensions) text += ", " + extension;
  return text;
}

#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

// A UBX message as the receiver's port carries it: class, id and payload, framed with the sync
// bytes, the little-endian payload length and the Fletcher checksum.
struct ubx_id_t {
  std::uint8_t cls = 0;
  std::uint8_t id = 0;
  bool operator==(const ubx_id_t&) const = default;
};

inline constexpr ubx_id_t ubx_ack_nak{0x05, 0x00};
inline constexpr ubx_id_t ubx_ack_ack{0x05, 0x01};
inline constexpr ubx_id_t ubx_cfg_msg{0x06, 0x01};
inline constexpr ubx_id_t ubx_cfg_rate{0x06, 0x08};
inline constexpr ubx_id_t ubx_cfg_valset{0x06, 0x8A};
inline constexpr ubx_id_t ubx_cfg_valget{0x06, 0x8B};
inline constexpr ubx_id_t ubx_cfg_valdel{0x06, 0x8C};
inline constexpr ubx_id_t ubx_mon_ver{0x0A, 0x04};
inline constexpr std::uint8_t ubx_class_cfg = 0x06;
inline constexpr std::size_t ubx_frame_overhead = 8;  // sync, class, id, length, checksum

// The whole frame of a message.
std::vector<std::uint8_t> ubx_frame(ubx_id_t message, std::span<const std::uint8_t> payload);

// The message's name where Korvid knows it ("CFG-VALSET"), else its class and id ("UBX 06 3E").
std::string ubx_name(ubx_id_t message);

// Appends value as `size` little-endian bytes.
void put_le(std::vector<std::uint8_t>& out, std::uint64_t value, std::size_t size);
// Reads `size` little-endian bytes at offset; the caller checks the bounds.
std::uint64_t get_le(std::span<const std::uint8_t> in, std::size_t offset, std::size_t size);

// CFG-RATE of the receivers before the key-value configuration: measurement period in ms,
// measurements per navigation solution, time reference (1 GPS).
std::vector<std::uint8_t> cfg_rate_payload(std::uint16_t meas_ms, std::uint16_t nav_rate, std::uint16_t time_ref);
// CFG-MSG: the output rate of one message on the port the command arrives on.
std::vector<std::uint8_t> cfg_msg_payload(ubx_id_t message, std::uint8_t rate);

// MON-VER's strings: software and hardware version, then the extensions ("PROTVER=27.11").
struct receiver_identity_t {
  std::string software;
  std::string hardware;
  std::vector<std::string> extensions;
  bool operator==(const receiver_identity_t&) const = default;
};
std::optional<receiver_identity_t> decode_mon_ver(std::span<const std::uint8_t> payload);
std::vector<std::uint8_t> mon_ver_payload(const receiver_identity_t& identity);
// "ROM SPG 5.10 (7b202e), 000A0000, MOD=NEO-M9N, PROTVER=32.01": one line for logs and tooltips.
std::string identity_text(const receiver_identity_t& identity);

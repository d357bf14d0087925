#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

// Reads RTCM 3's big-endian bit fields: `length` bits (at most 64) from bit `at` of the payload.
// Bits beyond the payload read as zero, so a short message never reads past its buffer.
inline std::uint64_t rtcm_unsigned(std::span<const std::uint8_t> payload, std::size_t at, unsigned length) {
  std::uint64_t value = 0;
  for (unsigned i = 0; i < length; ++i, ++at) {
    const std::size_t byte = at / 8;
    const unsigned bit = byte < payload.size() ? (payload[byte] >> (7 - at % 8)) & 1u : 0u;
    value = (value << 1) | bit;
  }
  return value;
}

// A two's-complement field of `length` bits (2 to 64).
inline std::int64_t rtcm_signed(std::span<const std::uint8_t> payload, std::size_t at, unsigned length) {
  const auto raw = rtcm_unsigned(payload, at, length);
  if (length < 64 && (raw >> (length - 1)) & 1u) return static_cast<std::int64_t>(raw | (~std::uint64_t{0} << length));
  return static_cast<std::int64_t>(raw);
}

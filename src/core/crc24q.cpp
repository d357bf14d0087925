#include "core/crc24q.h"

#include <array>

namespace {

constexpr std::uint32_t polynomial = 0x1864CFB;

constexpr std::array<std::uint32_t, 256> make_table() {
  std::array<std::uint32_t, 256> table{};
  for (std::uint32_t i = 0; i < 256; ++i) {
    std::uint32_t crc = i << 16;
    for (int bit = 0; bit < 8; ++bit) {
      crc <<= 1;
      if (crc & 0x1000000) crc ^= polynomial;
    }
    table[i] = crc & 0xFFFFFF;
  }
  return table;
}

constexpr auto table = make_table();

}  // namespace

std::uint32_t crc24q(std::span<const std::uint8_t> bytes) {
  std::uint32_t crc = 0;
  for (const auto b : bytes) crc = ((crc << 8) & 0xFFFFFF) ^ table[((crc >> 16) ^ b) & 0xFF];
  return crc;
}

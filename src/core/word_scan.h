#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

// Byte searches eight bytes at a time for the line and chunk scanners. They are used where the
// host is little-endian, so that the first byte of a loaded word is its lowest; elsewhere the
// callers take their plain byte loops.
namespace word_scan {

inline constexpr bool enabled = std::endian::native == std::endian::little;
inline constexpr std::uint64_t ones = 0x0101010101010101u;
inline constexpr std::uint64_t low7 = 0x7F7F7F7F7F7F7F7Fu;
inline constexpr std::uint64_t high = 0x8080808080808080u;

inline std::uint64_t load(const void* p) {
  std::uint64_t w;
  std::memcpy(&w, p, sizeof w);
  return w;
}

// 0x80 in every byte of the word that is zero, 0 in every other byte. Exact: no carry crosses
// from one byte into the next.
inline std::uint64_t zero_bytes(std::uint64_t w) {
  return ~(((w & low7) + low7) | w | low7);
}

// 0x80 in every byte of the word that equals c.
inline std::uint64_t bytes_equal(std::uint64_t w, char c) {
  return zero_bytes(w ^ (ones * static_cast<std::uint8_t>(c)));
}

// The index within the word of the lowest marked byte of a non-zero mask.
inline std::size_t first_marked(std::uint64_t mask) {
  return static_cast<std::size_t>(std::countr_zero(mask)) / 8;
}

// The index of the first c in text[from, size), or size.
inline std::size_t find(const char* text, std::size_t from, std::size_t size, char c) {
  std::size_t i = from;
  if constexpr (enabled) {
    for (; i + 8 <= size; i += 8)
      if (const auto hits = bytes_equal(load(text + i), c); hits != 0) return i + first_marked(hits);
  }
  for (; i < size; ++i)
    if (text[i] == c) return i;
  return size;
}

}  // namespace word_scan

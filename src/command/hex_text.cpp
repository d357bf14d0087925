#include "command/hex_text.h"

namespace {

int digit_value(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return -1;
}

}  // namespace

std::optional<std::vector<std::uint8_t>> parse_hex_bytes(std::string_view text) {
  std::vector<std::uint8_t> bytes;
  int high = -1;  // the first digit of a pair read so far
  for (const char c : text) {
    if (c == ' ' && high < 0) continue;
    const int v = digit_value(c);
    if (v < 0) return std::nullopt;
    if (high < 0) {
      high = v;
    } else {
      bytes.push_back(static_cast<std::uint8_t>(high * 16 + v));
      high = -1;
    }
  }
  if (high >= 0) return std::nullopt;
  return bytes;
}

std::optional<std::uint32_t> parse_hex_u32(std::string_view text) {
  if (text.empty() || text.size() > 8) return std::nullopt;
  std::uint32_t value = 0;
  for (const char c : text) {
    const int v = digit_value(c);
    if (v < 0) return std::nullopt;
    value = value * 16 + static_cast<std::uint32_t>(v);
  }
  return value;
}

std::string hex_text(std::span<const std::uint8_t> bytes) {
  static constexpr char digits[] = "0123456789ABCDEF";
  std::string text;
  for (const auto b : bytes) {
    if (!text.empty()) text += ' ';
    text += digits[b >> 4];
    text += digits[b & 0xF];
  }
  return text;
}

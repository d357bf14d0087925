#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

// Hex digits as users type them: either letter case; bytes may be separated by spaces.
std::optional<std::vector<std::uint8_t>> parse_hex_bytes(std::string_view text);
// One to eight digits.
std::optional<std::uint32_t> parse_hex_u32(std::string_view text);
// "B5 62 06 8A": upper-case pairs separated by spaces.
std::string hex_text(std::span<const std::uint8_t> bytes);

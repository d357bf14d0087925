#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

// Framing of one NMEA 0183 line as the hub accepts it: "$", the tag, comma-separated fields and
// "*" with two hexadecimal digits, without CR and LF.

inline constexpr std::size_t sentence_min_length = 10;  // characters
inline constexpr std::size_t sentence_max_length = 80;  // characters

// What one pass over a line finds: its number of Unicode code points (continuation bytes are not
// counted); whether it has exactly one "*", followed by exactly two hexadecimal digits (either
// case) that equal the XOR of every byte between the leading "$" and the "*"; and its fields, cut
// at every "," with empty ones kept. Field 0 is the tag with its "$" and the last field keeps the
// "*" and checksum digits; the views point into the line.
struct sentence_scan_t {
  std::size_t characters = 0;
  bool checksum_ok = false;
  std::size_t field_count = 0;  // fields the line has; only the first fields.size() are stored
};
sentence_scan_t scan_sentence(std::string_view line, std::span<std::string_view> fields);

// The number of Unicode code points of UTF-8 text.
std::size_t count_characters(std::string_view text);

// The XOR of every byte of a sentence's body, the text between "$" and "*".
std::uint8_t body_checksum(std::string_view body);
// The sentence with its "*hh" suffix, in upper-case digits: "$GPGGA,..." gives "$GPGGA,...*47".
std::string with_checksum(std::string_view sentence);

// The text of a field before its checksum suffix: the last field of a sentence without "*hh".
std::string_view strip_checksum(std::string_view field);

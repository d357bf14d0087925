#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

// Framing of one NMEA 0183 line as the hub accepts it: "$", the tag, comma-separated fields and
// "*" with two hexadecimal digits, without CR and LF.

inline constexpr std::size_t sentence_min_length = 10;  // characters
inline constexpr std::size_t sentence_max_length = 80;  // characters

// The number of Unicode code points of UTF-8 text (continuation bytes are not counted).
std::size_t count_characters(std::string_view text);

// Exactly one "*", followed by exactly two hexadecimal digits (either case) that equal the XOR
// of every byte between the leading "$" and the "*".
bool checksum_valid(std::string_view line);

// The XOR of every byte of a sentence's body, the text between "$" and "*".
std::uint8_t body_checksum(std::string_view body);
// The sentence with its "*hh" suffix, in upper-case digits: "$GPGGA,..." gives "$GPGGA,...*47".
std::string with_checksum(std::string_view sentence);

// Cuts the whole line at every ",", keeping empty fields; field 0 is the tag with its "$" and the
// last field keeps the "*" and checksum digits. The views point into the line.
void split_fields(std::string_view line, std::vector<std::string_view>& fields);

// What count_characters, checksum_valid and split_fields say of a line, from one pass over it.
struct sentence_scan_t {
  std::size_t characters = 0;
  bool checksum_ok = false;
  std::size_t field_count = 0;  // fields the line has; only the first fields.size() are stored
};
sentence_scan_t scan_sentence(std::string_view line, std::span<std::string_view> fields);

// The text of a field before its checksum suffix: the last field of a sentence without "*hh".
std::string_view strip_checksum(std::string_view field);

#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

// The rules by which a decoder reads one field. A field is always read whole: anything before or
// after the number makes it unreadable (absent).

namespace fields_detail {

// The general forms of parse_int and parse_unsigned below.
std::optional<std::int64_t> parse_int(std::string_view field);
std::optional<std::uint64_t> parse_unsigned(std::string_view field, std::uint64_t max);

// The value of a field of one to four decimal digits and nothing else, or -1. Such fields (times,
// PRNs, counts) are most of what the decoders read, so this much is done in line.
inline int short_digits(std::string_view field) {
  if (field.empty() || field.size() > 4) return -1;
  int value = 0;
  for (const char c : field) {
    if (c < '0' || c > '9') return -1;
    value = value * 10 + (c - '0');
  }
  return value;
}

}  // namespace fields_detail

// A decimal integer with an optional "+" or "-" that fits a signed 64-bit integer.
inline std::optional<std::int64_t> parse_int(std::string_view field) {
  if (const int value = fields_detail::short_digits(field); value >= 0) return value;
  return fields_detail::parse_int(field);
}

// An unsigned field (PRN, elevation, azimuth, SNR, counts): an optional "+" and decimal digits
// within the type's range. Any "-", even "-0", makes it absent.
inline std::optional<std::uint64_t> parse_unsigned(std::string_view field, std::uint64_t max) {
  if (const int value = fields_detail::short_digits(field); value >= 0) {
    if (static_cast<std::uint64_t>(value) > max) return std::nullopt;
    return static_cast<std::uint64_t>(value);
  }
  return fields_detail::parse_unsigned(field, max);
}

// A floating-point number: optional sign, digits with an optional point and fraction (".5" and
// "5." included), optional exponent; or inf, infinity, nan in any letter case. No hexadecimal,
// no blanks. Overflow gives +-infinity and underflow the nearest double, as strtod does.
std::optional<double> parse_double(std::string_view field);

// A "." anywhere in the field. Fields are a few characters long: a plain loop beats a library call.
inline bool has_point(std::string_view field) {
  for (const char c : field)
    if (c == '.') return true;
  return false;
}

// The optional decimal value with three outcomes.
enum class decimal_outcome_t : std::uint8_t {
  absent,  // no number: the target keeps its value and the decoder goes on
  bad,     // below 0, above the bound, or written without a point: the update stops here
  value,   // the target takes the number
};
struct decimal_read_t {
  decimal_outcome_t outcome;
  double value;
};
decimal_read_t read_decimal(std::string_view field, double upper_bound);

// read_decimal into a target (a double or a published double): false when the update must stop.
template <class Target>
bool store_decimal(std::string_view field, double upper_bound, Target& target) {
  const auto r = read_decimal(field, upper_bound);
  if (r.outcome == decimal_outcome_t::bad) return false;
  if (r.outcome == decimal_outcome_t::value) target = r.value;
  return true;
}

// The field when it is exactly one of the two letters, else the current letter.
std::string_view pick_letter(std::string_view field, std::string_view first, std::string_view second,
                             std::string_view current);

// ddmm.mmmm (degree_digits 2) or dddmm.mmmm (3) as degrees, with no sign applied. An empty field
// reads as 0.0.
std::optional<double> parse_coordinate(std::string_view field, int degree_digits);

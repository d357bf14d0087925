#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

// The rules by which a decoder reads one field. A field is always read whole: anything before or
// after the number makes it unreadable (absent).

// A decimal integer with an optional "+" or "-" that fits a signed 64-bit integer.
std::optional<std::int64_t> parse_int(std::string_view field);

// An unsigned field (PRN, elevation, azimuth, SNR, counts): an optional "+" and decimal digits
// within the type's range. Any "-", even "-0", makes it absent.
std::optional<std::uint64_t> parse_unsigned(std::string_view field, std::uint64_t max);

// A floating-point number: optional sign, digits with an optional point and fraction (".5" and
// "5." included), optional exponent; or inf, infinity, nan in any letter case. No hexadecimal,
// no blanks. Overflow gives +-infinity and underflow the nearest double, as strtod does.
std::optional<double> parse_double(std::string_view field);

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

// A coordinate magnitude turned into the map's signed form: negative for "S" and "W".
double signed_coordinate(double magnitude, std::string_view hemisphere);

#include "nmea/fields.h"

#include <charconv>
#include <cmath>
#include <limits>
#include <system_error>

namespace {

bool is_digit(char c) {
  return c >= '0' && c <= '9';
}

// The value of a run of decimal digits, or false when the field holds anything else. At most 19
// digits, so the value cannot overflow; longer fields take the general path.
constexpr std::size_t digit_limit = 19;
bool read_short_digits(std::string_view digits, std::uint64_t& value) {
  if (digits.empty() || digits.size() > digit_limit) return false;
  std::uint64_t v = 0;
  for (const char c : digits) {
    if (!is_digit(c)) return false;
    v = v * 10 + static_cast<std::uint64_t>(c - '0');
  }
  value = v;
  return true;
}

// Powers of ten that a double holds exactly.
constexpr double exact_powers_of_ten[] = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,  1e8,  1e9,  1e10, 1e11,
                                          1e12, 1e13, 1e14, 1e15, 1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};
constexpr std::uint64_t exact_mantissa_limit = std::uint64_t{1} << 53;

// Digits with an optional point and no exponent whose digits, read as an integer, a double holds
// exactly, with at most 22 after the point: that integer divided by the power of ten is one
// correctly rounded operation, so the result is the one from_chars gives. Anything else is left
// to the general path (false).
bool read_plain_decimal(std::string_view s, double& value) {
  if (s.size() > digit_limit + 1) return false;
  const char* p = s.data();
  const char* const end = p + s.size();
  std::uint64_t mantissa = 0;
  for (; p != end && is_digit(*p); ++p) mantissa = mantissa * 10 + static_cast<std::uint64_t>(*p - '0');
  std::size_t digits = static_cast<std::size_t>(p - s.data());
  std::size_t fraction_digits = 0;
  if (p != end && *p == '.') {
    const char* const fraction = ++p;
    for (; p != end && is_digit(*p); ++p) mantissa = mantissa * 10 + static_cast<std::uint64_t>(*p - '0');
    fraction_digits = static_cast<std::size_t>(p - fraction);
    digits += fraction_digits;
  }
  if (p != end || digits == 0 || digits > digit_limit || mantissa > exact_mantissa_limit) return false;
  value = static_cast<double>(mantissa);
  if (fraction_digits > 0) value /= exact_powers_of_ten[fraction_digits];
  return true;
}

bool equals_ignoring_case(std::string_view text, std::string_view lower_word) {
  if (text.size() != lower_word.size()) return false;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const char c = text[i] >= 'A' && text[i] <= 'Z' ? static_cast<char>(text[i] - 'A' + 'a') : text[i];
    if (c != lower_word[i]) return false;
  }
  return true;
}

// The shape of a finite decimal number, checked before conversion so that from_chars never sees
// what strtod would not accept whole.
struct decimal_shape_t {
  bool ok = false;
  bool has_nonzero_digit = false;
  long long scale = 0;  // decimal exponent of the first significant digit, for out-of-range results
};

decimal_shape_t decimal_shape(std::string_view s) {
  decimal_shape_t shape;
  std::size_t i = 0;
  std::size_t digits = 0;
  long long first_significant = 0;  // position of the first non-zero digit relative to the point
  long long int_digits = 0;
  while (i < s.size() && is_digit(s[i])) {
    if (s[i] != '0' && !shape.has_nonzero_digit) {
      shape.has_nonzero_digit = true;
      first_significant = static_cast<long long>(i);
    }
    ++i;
    ++digits;
    ++int_digits;
  }
  if (i < s.size() && s[i] == '.') {
    ++i;
    long long frac_pos = 0;
    while (i < s.size() && is_digit(s[i])) {
      if (s[i] != '0' && !shape.has_nonzero_digit) {
        shape.has_nonzero_digit = true;
        first_significant = int_digits + frac_pos;
      }
      ++i;
      ++digits;
      ++frac_pos;
    }
  }
  if (digits == 0) return shape;
  long long exponent = 0;
  if (i < s.size() && (s[i] == 'e' || s[i] == 'E')) {
    ++i;
    bool negative = false;
    if (i < s.size() && (s[i] == '+' || s[i] == '-')) negative = s[i++] == '-';
    if (i == s.size() || !is_digit(s[i])) return shape;
    while (i < s.size() && is_digit(s[i])) {
      if (exponent < 1'000'000'000) exponent = exponent * 10 + (s[i] - '0');
      ++i;
    }
    if (negative) exponent = -exponent;
  }
  if (i != s.size()) return shape;
  shape.ok = true;
  shape.scale = exponent + int_digits - first_significant;
  return shape;
}

}  // namespace

std::optional<std::int64_t> fields_detail::parse_int(std::string_view field) {
  if (!field.empty() && field.front() == '+') {
    field.remove_prefix(1);
    if (field.empty() || !is_digit(field.front())) return std::nullopt;
  }
  if (field.empty() || (field.front() == '-' && field.size() == 1)) return std::nullopt;
  const bool negative = field.front() == '-';
  if (std::uint64_t digits = 0; field.size() <= digit_limit - 1 + (negative ? 1 : 0) &&
                                read_short_digits(field.substr(negative ? 1 : 0), digits)) {
    // At most 18 digits: the value fits either sign.
    const auto value = static_cast<std::int64_t>(digits);
    return negative ? -value : value;
  }
  std::int64_t value = 0;
  const auto [end, ec] = std::from_chars(field.data(), field.data() + field.size(), value);
  if (ec != std::errc() || end != field.data() + field.size()) return std::nullopt;
  return value;
}

std::optional<std::uint64_t> fields_detail::parse_unsigned(std::string_view field, std::uint64_t max) {
  if (!field.empty() && field.front() == '+') field.remove_prefix(1);
  if (field.empty() || !is_digit(field.front())) return std::nullopt;
  if (std::uint64_t digits = 0; read_short_digits(field, digits)) {
    if (digits > max) return std::nullopt;
    return digits;
  }
  std::uint64_t value = 0;
  const auto [end, ec] = std::from_chars(field.data(), field.data() + field.size(), value);
  if (ec != std::errc() || end != field.data() + field.size() || value > max) return std::nullopt;
  return value;
}

std::optional<double> parse_double(std::string_view field) {
  bool negative = false;
  if (!field.empty() && (field.front() == '+' || field.front() == '-')) {
    negative = field.front() == '-';
    field.remove_prefix(1);
  }
  if (field.empty()) return std::nullopt;
  const double sign = negative ? -1.0 : 1.0;
  if (double plain = 0.0; read_plain_decimal(field, plain)) return sign * plain;
  if (equals_ignoring_case(field, "inf") || equals_ignoring_case(field, "infinity"))
    return sign * std::numeric_limits<double>::infinity();
  if (equals_ignoring_case(field, "nan")) return std::copysign(std::numeric_limits<double>::quiet_NaN(), sign);

  const auto shape = decimal_shape(field);
  if (!shape.ok) return std::nullopt;
  double value = 0.0;
  const auto [end, ec] = std::from_chars(field.data(), field.data() + field.size(), value);
  if (ec == std::errc::result_out_of_range) {
    // from_chars leaves the value alone when it is out of range; strtod gives infinity for an
    // overflow and the nearest double, zero, for an underflow.
    value = shape.scale > 0 ? std::numeric_limits<double>::infinity() : 0.0;
  } else if (ec != std::errc() || end != field.data() + field.size()) {
    return std::nullopt;
  }
  return sign * value;
}

decimal_read_t read_decimal(std::string_view field, double upper_bound) {
  const auto number = parse_double(field);
  if (!number) return {decimal_outcome_t::absent, 0.0};
  if (*number < 0.0 || *number > upper_bound) return {decimal_outcome_t::bad, 0.0};
  if (!has_point(field)) return {decimal_outcome_t::bad, 0.0};
  return {decimal_outcome_t::value, *number};
}

std::string_view pick_letter(std::string_view field, std::string_view first, std::string_view second,
                             std::string_view current) {
  if (field.size() == 1 && (field == first || field == second)) return field == first ? first : second;
  return current;
}

std::optional<double> parse_coordinate(std::string_view field, int degree_digits) {
  if (field.empty()) return 0.0;
  if (field.size() < 8 || field.size() > 12) return std::nullopt;
  std::size_t point = std::string_view::npos;
  for (std::size_t i = 0; i < field.size(); ++i) {
    if (field[i] != '.') continue;
    if (point != std::string_view::npos) return std::nullopt;  // a second point
    point = i;
  }
  if (point == std::string_view::npos) return std::nullopt;
  const auto whole_degrees = static_cast<long>(point) - 2;
  if ((whole_degrees != 2 && whole_degrees != 3) || whole_degrees != degree_digits) return std::nullopt;
  const auto degrees = parse_double(field.substr(0, static_cast<std::size_t>(degree_digits)));
  const auto minutes = parse_double(field.substr(static_cast<std::size_t>(degree_digits)));
  if (!degrees || !minutes) return std::nullopt;
  return *degrees + *minutes / 60.0;
}

#include "nmea/fields.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <optional>
#include <tuple>
#include <utility>

namespace {

constexpr double inf = std::numeric_limits<double>::infinity();

TEST(parse_int, reads_whole_fields_only) {
  const std::pair<const char*, std::int64_t> good[] = {{"0", 0}, {"42", 42}, {"+42", 42}, {"-42", -42}, {"007", 7}};
  for (const auto& [field, value] : good) EXPECT_EQ(parse_int(field), value) << field;
  EXPECT_EQ(std::tuple(parse_int("9223372036854775807"), parse_int("-9223372036854775808")),
            std::tuple(INT64_MAX, INT64_MIN));
  for (const char* field : {"9223372036854775808", "", "+", "-", "+-1", "++1", " 1", "1 ", "1.0", "0x1", "1e3"})
    EXPECT_EQ(parse_int(field), std::nullopt) << '"' << field << '"';
}

TEST(parse_unsigned, takes_a_plus_but_never_a_minus) {
  for (const auto& [field, max] : {std::pair<const char*, std::uint64_t>{"255", 255}, {"00255", 255}, {"+00255", 255}})
    EXPECT_EQ(parse_unsigned(field, max), 255u) << field;
  EXPECT_EQ(parse_unsigned("+7", 255), 7u);
  EXPECT_EQ(parse_unsigned("18446744073709551615", UINT64_MAX), UINT64_MAX);
  EXPECT_EQ(parse_unsigned("18446744073709551615", UINT64_MAX - 1), std::nullopt);
  EXPECT_EQ(parse_unsigned("18446744073709551616", UINT64_MAX), std::nullopt);
  for (const char* field : {"256", "00256", "-0", "-1", "", "+", "++1", "1a", "00001a"})
    EXPECT_EQ(parse_unsigned(field, 255), std::nullopt) << '"' << field << '"';
}

TEST(parse_double, reads_the_strtod_grammar_whole) {
  const std::pair<const char*, double> good[] = {
      {"1.5", 1.5},     {"-1.5", -1.5},   {"+1.5", 1.5},       {".5", 0.5},
      {"5.", 5.0},      {"12", 12.0},     {"1e3", 1000.0},     {"1.5E-2", 0.015},
      {"-.5e+1", -5.0}, {"inf", inf},     {"-Infinity", -inf}, {"INF", inf},
      {"1e999", inf},   {"-1e999", -inf}, {"1e-999", 0.0},     {"123456789012345678901", 123456789012345678901.0}};
  for (const auto& [field, value] : good) EXPECT_EQ(parse_double(field), value) << field;
  for (const char* field :
       {"", ".", "-", "e5", "1e", "1e+", "0x1p3", " 1", "1 ", "1,5", "infinit", "nan(1)", "--1", "+-1", "1.5e3x"})
    EXPECT_EQ(parse_double(field), std::nullopt) << '"' << field << '"';
  EXPECT_TRUE(std::isnan(parse_double("NaN").value()));
  EXPECT_TRUE(std::signbit(*parse_double("-1e-999")));
}

TEST(read_decimal, has_three_outcomes) {
  for (const auto& [field, value] : {std::pair{"1.20", 1.2}, {"99.99", 99.99}, {"0.0", 0.0}, {".5", 0.5}}) {
    const auto r = read_decimal(field, 99.99);
    EXPECT_EQ(std::pair(r.outcome, r.value), std::pair(decimal_outcome_t::value, value)) << field;
  }
  for (const char* field : {"1", "-0.5", "100.0", "inf", "nan"})
    EXPECT_EQ(read_decimal(field, 99.99).outcome, decimal_outcome_t::bad) << field;
  for (const char* field : {"", "x.1"})
    EXPECT_EQ(read_decimal(field, 99.99).outcome, decimal_outcome_t::absent) << field;
}

TEST(pick_letter, takes_only_one_of_the_two_letters) {
  EXPECT_EQ(std::tuple(pick_letter("S", "N", "S", "N"), pick_letter("N", "N", "S", "S")), std::tuple("S", "N"));
  for (const char* field : {"s", "NS", "", "E"}) EXPECT_EQ(pick_letter(field, "N", "S", "S"), "S") << field;
}

TEST(parse_coordinate, reads_degrees_and_minutes) {
  const std::tuple<const char*, int, double> good[] = {
      {"4807.038", 2, 48 + 7.038 / 60},
      {"01131.000", 3, 11 + 31.0 / 60},
      {"4807.0381234", 2, 48 + 7.0381234 / 60},
      {"", 2, 0.0},
      {"4899.0000", 2, 48 + 99.0 / 60}};  // minutes are not checked against 60
  for (const auto& [field, degree_digits, value] : good)
    EXPECT_EQ(parse_coordinate(field, degree_digits), value) << field;
  for (const char* field : {"01131.000", "480.7038", "4807", "4807.0", "4807.03812345", "4807.03.8", "48x7.0381"})
    EXPECT_EQ(parse_coordinate(field, 2), std::nullopt) << field;
  EXPECT_EQ(parse_coordinate("4807.038", 3), std::nullopt);
}

}  // namespace

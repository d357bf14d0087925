#include "nmea/fields.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <optional>

namespace {

constexpr double inf = std::numeric_limits<double>::infinity();

TEST(parse_int, reads_whole_fields_only) {
  const struct {
    const char* field;
    std::optional<std::int64_t> expected;
  } cases[] = {
      {"0", 0},
      {"42", 42},
      {"+42", 42},
      {"-42", -42},
      {"007", 7},
      {"9223372036854775807", INT64_MAX},
      {"-9223372036854775808", INT64_MIN},
      {"9223372036854775808", std::nullopt},
      {"", std::nullopt},
      {"+", std::nullopt},
      {"-", std::nullopt},
      {"+-1", std::nullopt},
      {"++1", std::nullopt},
      {" 1", std::nullopt},
      {"1 ", std::nullopt},
      {"1.0", std::nullopt},
      {"0x1", std::nullopt},
      {"1e3", std::nullopt},
  };
  for (const auto& c : cases) EXPECT_EQ(parse_int(c.field), c.expected) << '"' << c.field << '"';
}

TEST(parse_unsigned, takes_a_plus_but_never_a_minus) {
  const struct {
    const char* field;
    std::uint64_t max;
    std::optional<std::uint64_t> expected;
  } cases[] = {
      {"255", 255, 255u},
      {"+7", 255, 7u},
      {"00255", 255, 255u},
      {"+00255", 255, 255u},
      {"18446744073709551615", UINT64_MAX, UINT64_MAX},
      {"256", 255, std::nullopt},
      {"00256", 255, std::nullopt},
      {"18446744073709551616", UINT64_MAX, std::nullopt},
      {"18446744073709551615", UINT64_MAX - 1, std::nullopt},
      {"-0", 255, std::nullopt},
      {"-1", 255, std::nullopt},
      {"", 255, std::nullopt},
      {"+", 255, std::nullopt},
      {"++1", 255, std::nullopt},
      {"1a", 255, std::nullopt},
      {"00001a", 255, std::nullopt},
  };
  for (const auto& c : cases) EXPECT_EQ(parse_unsigned(c.field, c.max), c.expected) << c.field;
}

TEST(parse_double, reads_the_strtod_grammar_whole) {
  const struct {
    const char* field;
    std::optional<double> expected;
  } cases[] = {
      {"1.5", 1.5},
      {"-1.5", -1.5},
      {"+1.5", 1.5},
      {".5", 0.5},
      {"5.", 5.0},
      {"12", 12.0},
      {"1e3", 1000.0},
      {"1.5E-2", 0.015},
      {"-.5e+1", -5.0},
      {"inf", inf},
      {"-Infinity", -inf},
      {"INF", inf},
      {"1e999", inf},
      {"-1e999", -inf},
      {"1e-999", 0.0},
      {"", std::nullopt},
      {".", std::nullopt},
      {"-", std::nullopt},
      {"e5", std::nullopt},
      {"1e", std::nullopt},
      {"1e+", std::nullopt},
      {"0x1p3", std::nullopt},
      {" 1", std::nullopt},
      {"1 ", std::nullopt},
      {"1,5", std::nullopt},
      {"infinit", std::nullopt},
      {"nan(1)", std::nullopt},
      {"--1", std::nullopt},
      {"+-1", std::nullopt},
  };
  for (const auto& c : cases) EXPECT_EQ(parse_double(c.field), c.expected) << '"' << c.field << '"';
  ASSERT_TRUE(parse_double("NaN"));
  EXPECT_TRUE(std::isnan(*parse_double("NaN")));
  EXPECT_TRUE(std::signbit(*parse_double("-1e-999")));
}

TEST(read_decimal, has_three_outcomes) {
  const struct {
    const char* field;
    decimal_outcome_t outcome;
    double value;
  } cases[] = {
      {"1.20", decimal_outcome_t::value, 1.2}, {"99.99", decimal_outcome_t::value, 99.99},
      {"0.0", decimal_outcome_t::value, 0.0},  {".5", decimal_outcome_t::value, 0.5},
      {"1", decimal_outcome_t::bad, 0},        {"-0.5", decimal_outcome_t::bad, 0},
      {"100.0", decimal_outcome_t::bad, 0},    {"inf", decimal_outcome_t::bad, 0},
      {"nan", decimal_outcome_t::bad, 0},      {"", decimal_outcome_t::absent, 0},
      {"x.1", decimal_outcome_t::absent, 0},
  };
  for (const auto& c : cases) {
    const auto r = read_decimal(c.field, 99.99);
    EXPECT_EQ(r.outcome, c.outcome) << '"' << c.field << '"';
    if (c.outcome == decimal_outcome_t::value) {
      EXPECT_DOUBLE_EQ(r.value, c.value) << c.field;
    }
  }
}

TEST(pick_letter, takes_only_one_of_the_two_letters) {
  EXPECT_EQ(pick_letter("S", "N", "S", "N"), "S");
  EXPECT_EQ(pick_letter("N", "N", "S", "S"), "N");
  EXPECT_EQ(pick_letter("s", "N", "S", "N"), "N");
  EXPECT_EQ(pick_letter("NS", "N", "S", "N"), "N");
  EXPECT_EQ(pick_letter("", "N", "S", "S"), "S");
  EXPECT_EQ(pick_letter("E", "N", "S", "N"), "N");
}

TEST(parse_coordinate, reads_degrees_and_minutes) {
  const struct {
    const char* field;
    int degree_digits;
    std::optional<double> expected;
  } cases[] = {
      {"4807.038", 2, 48 + 7.038 / 60},
      {"01131.000", 3, 11 + 31.0 / 60},
      {"4807.0381234", 2, 48 + 7.0381234 / 60},
      {"", 2, 0.0},
      {"", 3, 0.0},
      {"4807.038", 3, std::nullopt},
      {"01131.000", 2, std::nullopt},
      {"480.7038", 2, std::nullopt},
      {"4807", 2, std::nullopt},
      {"4807.0", 2, std::nullopt},
      {"4807.03812345", 2, std::nullopt},
      {"4807.03.8", 2, std::nullopt},
      {"48x7.0381", 2, std::nullopt},
      {"4899.0000", 2, 48 + 99.0 / 60},  // minutes are not checked against 60
  };
  for (const auto& c : cases) {
    const auto r = parse_coordinate(c.field, c.degree_digits);
    ASSERT_EQ(r.has_value(), c.expected.has_value()) << c.field;
    if (r) {
      EXPECT_DOUBLE_EQ(*r, *c.expected) << c.field;
    }
  }
}

}  // namespace

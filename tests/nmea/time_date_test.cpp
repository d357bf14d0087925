#include "nmea/time_date.h"

#include <gtest/gtest.h>

#include <tuple>

namespace {

TEST(time_hms, reads_hhmmss_with_an_unscaled_fraction_or_changes_nothing) {
  const std::pair<const char*, time_hms_t> good[] = {
      {"123519", {12, 35, 19, 0}},      {"123519.00", {12, 35, 19, 0}},    {"123519.5", {12, 35, 19, 5}},
      {"123519.50", {12, 35, 19, 50}},  {"123519.123", {12, 35, 19, 123}}, {"235959.999", {23, 59, 59, 999}},
      {"000000", {0, 0, 0, 0}},         {"+1+2+3", {1, 2, 3, 0}},          {"23+159", {23, 1, 59, 0}},
      {"+15959.+999", {1, 59, 59, 999}}};
  for (const auto& [text, expected] : good) {
    time_hms_t t{1, 1, 1, 1};
    EXPECT_TRUE(t.parse(text)) << text;
    EXPECT_EQ(t, expected) << text;
  }
  // A failed parse changes nothing.
  for (const char* text : {"123519.", "1235.19", "12351", "123519.1.2", "240000", "126000", "123560", "123519.1000", "",
                           "12a519", "-12519", "123519.-1", "1235190", "+24+00+00", "+1+60+0", "+1+0+60", "+1+0+0.1000",
                           "123519.1234567890123456789"}) {
    time_hms_t t{1, 2, 3, 4};
    EXPECT_FALSE(t.parse(text)) << text;
    EXPECT_EQ(t, (time_hms_t{1, 2, 3, 4})) << text;
  }
  // The GPS time of day from a week millisecond: 49 days, 17:02:47.295. Other values come through
  // the decoders' records.
  time_hms_t t;
  t.set_from_itow(0xFFFFFFFFu);
  EXPECT_EQ(t, (time_hms_t{17, 2, 47, 295}));
}

TEST(date_ymd, reads_ddmmyy_with_the_century_window) {
  const std::pair<const char*, date_ymd_t> good[] = {{"230394", {1994, 3, 23}},
                                                     {"010180", {1980, 1, 1}},
                                                     {"311279", {2079, 12, 31}},
                                                     {"310224", {2024, 2, 31}},
                                                     {"010100", {2000, 1, 1}}};
  for (const auto& [text, expected] : good) {
    date_ymd_t d;
    EXPECT_TRUE(d.parse(text)) << text;
    EXPECT_EQ(d, expected) << text;
  }
  for (const char* text :
       {"000124", "011324", "010024", "3201245", "320124", "01012", "", "0a0124", "01-124", "0101-1"}) {
    date_ymd_t d{1, 2, 3};
    EXPECT_FALSE(d.parse(text)) << text;
    EXPECT_EQ(d, (date_ymd_t{1, 2, 3})) << text;
  }
}

TEST(time_date_text, pads_with_zeros_and_widens_for_large_values) {
  EXPECT_EQ(
      std::tuple(hms_chars({1, 2, 3, 400}).view(), hms_chars({123, 2, 3, 0}).view(), hms_chars({1, 100, 3, 0}).view()),
      std::tuple("01:02:03", "123:02:03", "01:100:03"));
  EXPECT_EQ(std::tuple(ymd_chars({2024, 3, 5}).view(), ymd_chars({65535, 12, 100}).view(), ymd_chars({7, 1, 1}).view()),
            std::tuple("2024-03-05", "65535-12-100", "0007-01-01"));
}

}  // namespace

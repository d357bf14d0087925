#include "nmea/sentence.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

namespace {

const char* const gga = "$GPGGA,123519,4807.038,N,01131.000,E,1,08,0.9,545.4,M,46.9,M,,*47";

TEST(checksum_valid, accepts_exactly_two_hex_digits_that_match) {
  const struct {
    std::string line;
    bool valid;
  } cases[] = {
      {gga, true},
      {"$GPGGA,123519,4807.038,N,01131.000,E,1,08,0.9,545.4,M,46.9,M,,*48", false},
      {"$GPGGA,123519,4807.038,N,01131.000,E,1,08,0.9,545.4,M,46.9,M,,*4", false},
      {"$GPGGA,123519,4807.038,N,01131.000,E,1,08,0.9,545.4,M,46.9,M,,*470", false},
      {"$GPGGA,123519,4807.038,N,01131.000,E,1,08,0.9,545.4,M,46.9,M,*,*47", false},
      {"$GPGGA,123519,4807.038,N,01131.000,E,1,08,0.9,545.4,M,46.9,M,,", false},
      {"$GPRMC,1*4f", false},
      {"$*00", true},
      {"*00", true},
      {"$A*41", true},
      {"$A*+1", false},
      {"$A* 41", false},
  };
  for (const auto& c : cases) EXPECT_EQ(checksum_valid(c.line), c.valid) << c.line;
}

TEST(checksum_valid, hex_letters_in_either_case) {
  // The XOR of "GPAAA,1" is 0x4B.
  EXPECT_TRUE(checksum_valid("$GPAAA,1*4B"));
  EXPECT_TRUE(checksum_valid("$GPAAA,1*4b"));
  EXPECT_FALSE(checksum_valid("$GPAAA,1*4G"));
}

TEST(split_fields, keeps_empty_fields_and_the_checksum_on_the_last) {
  std::vector<std::string_view> fields;
  split_fields(gga, fields);
  ASSERT_EQ(fields.size(), 15u);
  EXPECT_EQ(fields[0], "$GPGGA");
  EXPECT_EQ(fields[13], "");
  EXPECT_EQ(fields[14], "*47");
  split_fields("$X,,", fields);
  EXPECT_EQ(fields, (std::vector<std::string_view>{"$X", "", ""}));
  EXPECT_EQ(strip_checksum("12*47"), "12");
  EXPECT_EQ(strip_checksum("12"), "12");
}

TEST(count_characters, counts_code_points) {
  EXPECT_EQ(count_characters("abc"), 3u);
  EXPECT_EQ(count_characters("\xC3\xA9t\xC3\xA9"), 3u);          // été
  EXPECT_EQ(count_characters("\xF0\x9F\x9B\xB0"), 1u);            // one satellite
}

}  // namespace

namespace {

// The one-pass scan says of every line what the three separate steps say.
TEST(scan_sentence, agrees_with_counting_checking_and_splitting) {
  const std::string long_line = "$GPGSV" + std::string(90, ',') + "*00";
  const std::string commas = "$" + std::string(79, ',');
  const std::vector<std::string> lines = {
      gga,
      "$GPGGA,123519,4807.038,N,01131.000,E,1,08,0.9,545.4,M,46.9,M,,*48",
      "$A*41",
      "$*00",
      "$GPAAA,1*4b",
      "$GPGGA,1*2*00",
      "$GP\xc3\xa9\xc3\xa9,1,2*00",
      "$,,,*2C",
      long_line,
      commas,
      "$GPTXT,01,01,02,u-blox ag - www.u-blox.com*50",
  };
  std::vector<std::string_view> fields(80);
  for (const auto& line : lines) {
    const auto scan = scan_sentence(line, fields);
    EXPECT_EQ(scan.characters, count_characters(line)) << line;
    EXPECT_EQ(scan.checksum_ok, checksum_valid(line)) << line;
    std::vector<std::string_view> expected;
    split_fields(line, expected);
    EXPECT_EQ(scan.field_count, expected.size()) << line;
    const std::size_t stored = std::min(scan.field_count, fields.size());
    EXPECT_EQ(std::vector<std::string_view>(fields.begin(), fields.begin() + static_cast<std::ptrdiff_t>(stored)),
              std::vector<std::string_view>(expected.begin(), expected.begin() + static_cast<std::ptrdiff_t>(stored)))
        << line;
  }
}

}  // namespace

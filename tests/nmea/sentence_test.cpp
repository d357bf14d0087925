#include "nmea/sentence.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <string>
#include <tuple>
#include <vector>

namespace {

const std::string gga = "$GPGGA,123519,4807.038,N,01131.000,E,1,08,0.9,545.4,M,46.9,M,,*47";
const std::string gga_body = gga.substr(0, gga.size() - 3);

std::vector<std::string_view> fields_of(std::string_view line, std::size_t room = 100) {
  std::vector<std::string_view> fields(room);
  const auto scan = scan_sentence(line, fields);
  fields.resize(std::min(scan.field_count, room));
  return fields;
}

TEST(scan_sentence, accepts_exactly_two_hex_digits_that_match) {
  for (const std::string& line : {gga, std::string("$*00"), std::string("*00"), std::string("$A*41"),
                                  std::string("$GPAAA,1*4B"), std::string("$GPAAA,1*4b")})
    EXPECT_TRUE(scan_sentence(line, {}).checksum_ok) << line;
  // A second "*" among the scanned words, or one in the wrong place; digits that are no hex digits.
  for (const std::string& line :
       {gga_body + "*48", gga_body + "*4", gga_body + "*470", gga_body.substr(0, gga_body.size() - 1) + "*,*47",
        gga_body, std::string("$GPGGA,1*2*00"), std::string("$GPRMC,1*4f"), std::string("$A*+1"), std::string("$A* 41"),
        std::string("$GPAAA,1*4G"), std::string("$GPAAA,1*G4"), std::string("$GPAAA,1*:B"), std::string("$GPAAA,1*4@"),
        std::string("$GPAAA,2*4b"), std::string("$GPAAA,1*4g")})
    EXPECT_FALSE(scan_sentence(line, {}).checksum_ok) << line;
}

TEST(scan_sentence, cuts_fields_and_counts_code_points) {
  const auto f = fields_of(gga);
  ASSERT_EQ(f.size(), 15u);
  EXPECT_EQ(std::tuple(f[0], f[13], f[14]), std::tuple("$GPGGA", "", "*47"));
  EXPECT_EQ(fields_of("$X,,"), (std::vector<std::string_view>{"$X", "", ""}));
  const std::string commas = "$GPGSV" + std::string(90, ',') + "*00";
  std::vector<std::string_view> room(80);
  EXPECT_EQ(scan_sentence(commas, room).field_count, 91u) << "all counted";
  EXPECT_EQ(fields_of(commas, 80).size(), 80u) << "only those that fit stored";
  const std::pair<std::string, std::size_t> texts[] = {
      {"abc", 3}, {"\xC3\xA9t\xC3\xA9", 3}, {"\xF0\x9F\x9B\xB0", 1}, {"$GP\xC3\xA9\xC3\xA9,1,2*00", 12}, {gga, 65}};
  for (const auto& [text, characters] : texts) EXPECT_EQ(scan_sentence(text, {}).characters, characters) << text;
  EXPECT_EQ(std::tuple(strip_checksum("12*47"), strip_checksum("12")), std::tuple("12", "12"));
}

TEST(with_checksum, appends_the_body_checksum_in_upper_case) {
  EXPECT_EQ(body_checksum("GPAAA,1"), 0x4B);
  EXPECT_EQ(std::tuple(with_checksum("$GPAAA,1"), with_checksum(gga_body), with_checksum("$")),
            std::tuple("$GPAAA,1*4B", gga, "$*00"));
}

}  // namespace

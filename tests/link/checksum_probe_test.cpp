#include "link/checksum_probe.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "nmea/sentence.h"
#include "support/records.h"

namespace {

const std::string gga = "$GPGGA,123519,4807.038,N,01131.000,E,1,08,0.9,545.4,M,46.9,M,,*47\r\n";
const std::string longest = with_checksum("$GPGLL," + std::string(70, '1'));  // 80 characters
const std::string noise = "\xF3\x81\xC4\xFE$\x92*\xE0\xB5\x62\x01\xFF\xFF\x07";

std::string pvt_frame(bool good) {
  auto frame = frame_of(image_of(valid_pvt()));
  if (!good) frame.back() ^= 1;
  return {frame.begin(), frame.end()};
}

TEST(checksum_probe, finds_the_first_valid_sentence_or_frame_in_noise_fed_in_any_chunks) {
  const struct {
    std::string stream;
    std::string first;  // what from_first gives; empty: nothing valid
  } cases[] = {
      {noise + gga + "$GPGLL", gga + "$GPGLL"},
      {noise + pvt_frame(true) + gga, pvt_frame(true) + gga},
      {noise + "$GPGGA,123519*48\r\n" + gga.substr(0, 40), ""},  // wrong checksum, unfinished
      {"$GPGGA,1\x01" + gga.substr(9), ""},                      // not printable
      {"$A*41\r\n", ""},                                         // too short to be a sentence
      {pvt_frame(false), ""},
      {"$GPGGA," + std::string(80, '1') + gga, gga},  // a "$" without LF in reach begins nothing
      {longest + "\r\n", longest + "\r\n"},
  };
  for (const auto& c : cases) {
    for (const std::size_t chunk : {std::size_t{1}, std::size_t{7}, c.stream.size()}) {
      checksum_probe_t probe;
      bool seen = false;
      for (std::size_t at = 0; at < c.stream.size(); at += chunk) {
        const auto piece = c.stream.substr(at, chunk);
        seen = probe.feed({reinterpret_cast<const std::uint8_t*>(piece.data()), piece.size()});
      }
      const auto first = probe.from_first();
      EXPECT_EQ(seen, !c.first.empty()) << c.stream << " in chunks of " << chunk;
      EXPECT_EQ(std::string(first.begin(), first.end()), c.first) << c.stream << " in chunks of " << chunk;
    }
  }
  checksum_probe_t probe;
  probe.feed({reinterpret_cast<const std::uint8_t*>(gga.data()), gga.size()});
  probe.reset();
  EXPECT_FALSE(probe.feed({reinterpret_cast<const std::uint8_t*>(noise.data()), noise.size()}));
}

}  // namespace

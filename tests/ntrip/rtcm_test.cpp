#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "core/crc24q.h"
#include "ntrip/geodesy.h"
#include "ntrip/rtcm_stats.h"
#include "sim/rtcm_encoder.h"

namespace {

std::vector<std::uint8_t> bytes(const std::string& s) {
  return {s.begin(), s.end()};
}

// The empty frame that casters send to keep a connection alive, and its CRC.
const std::string empty_frame("\xD3\x00\x00\x47\xEA\x4B", 6);

std::string message(std::uint16_t type, std::size_t size) {
  std::vector<std::uint8_t> payload(size, 0x55);
  payload[0] = static_cast<std::uint8_t>(type >> 4);
  payload[1] = static_cast<std::uint8_t>((type & 0xF) << 4);
  return rtcm_encoder_t::frame(payload);
}

TEST(Crc24q, WorkedValues) {
  EXPECT_EQ(crc24q(bytes("123456789")), 0xCDE703u);
  EXPECT_EQ(crc24q(bytes(empty_frame.substr(0, 3))), 0x47EA4Bu);
  EXPECT_EQ(crc24q({}), 0u);
}

struct framing_case_t {
  const char* name;
  std::string stream;
  std::size_t chunk;  // fed in pieces of this size
  std::vector<std::uint16_t> types;
  std::uint64_t bad;
};

TEST(RtcmFramer, CutsFramesWhateverTheChunks) {
  const auto f1005 = message(1005, 19), f1077 = message(1077, 220), max = message(4072, 1023);
  auto corrupt = f1077;
  corrupt[40] ^= 0x01;
  // A false preamble whose length runs over a whole frame: the frame behind it is still found.
  const std::string false_start = std::string("\xD3\x00\x40", 3) + f1005;
  const std::vector<framing_case_t> cases = {
      {"one frame", f1005, 4096, {1005}, 0},
      {"byte by byte", f1005 + f1077, 1, {1005, 1077}, 0},
      {"junk between", "xx\r\n" + f1005 + "\x01\xD3" + f1077, 7, {1005, 1077}, 0},
      {"bad crc dropped", corrupt + f1005, 13, {1005}, 1},
      {"false preamble", false_start + f1077, 4096, {1005, 1077}, 1},
      {"reserved bits set", std::string("\xD3\x80\x00", 3) + f1005, 2, {1005}, 0},
      {"empty keep-alive", empty_frame + f1005, 5, {0, 1005}, 0},
      {"longest payload", max, 1000, {4072}, 0},
      {"cut short", f1077.substr(0, 100), 4096, {}, 0},
  };
  for (const auto& c : cases) {
    rtcm_framer_t framer;
    std::vector<std::uint16_t> types;
    std::string seen;
    const auto all = bytes(c.stream);
    for (std::size_t at = 0; at < all.size(); at += c.chunk) {
      const auto n = std::min(c.chunk, all.size() - at);
      framer.feed({all.data() + at, n}, [&](const rtcm_frame_t& f) {
        types.push_back(f.type);
        seen.append(f.bytes.begin(), f.bytes.end());
      });
    }
    EXPECT_EQ(types, c.types) << c.name;
    EXPECT_EQ(framer.bad_frames(), c.bad) << c.name;
    // Each frame is handed out whole, exactly as it was written.
    std::string expected;
    for (const auto type : c.types)
      expected += type == 0 ? empty_frame : type == 1005 ? f1005 : type == 1077 ? f1077 : max;
    EXPECT_EQ(seen, expected) << c.name;
  }
}

TEST(RtcmEncoder, EpochCountsAndStation) {
  rtcm_base_t base;
  base.lat = -33.8568;
  base.lon = 151.2153;
  base.height_m = 42.5;
  base.station_id = 77;
  rtcm_encoder_t encoder(base, 3);
  rtcm_stats_t stats;
  const std::uint32_t epochs = 3;
  std::string stream;
  for (std::uint32_t i = 0; i < epochs; ++i) stream += encoder.epoch(1000 * i);
  const auto all = bytes(stream);
  stats.feed(all, 5.0);

  EXPECT_EQ(stats.bytes(), all.size());
  EXPECT_EQ(stats.frames(), 6 * epochs);
  EXPECT_EQ(stats.bad_frames(), 0u);
  for (const std::uint16_t type : {1005, 1077, 1087, 1097, 1127, 1230}) EXPECT_EQ(stats.types().at(type).count, epochs);
  EXPECT_EQ(stats.types().at(1230).interval_s, 0.0) << "all came at once";
  EXPECT_EQ(stats.last_frame_s(), 5.0);
  stats.feed(bytes(encoder.epoch(3000)), 6.5);
  EXPECT_EQ(stats.types().at(1077).interval_s, 1.5);
  ASSERT_TRUE(stats.station());
  EXPECT_EQ(stats.station()->id, 77);
  const auto p = geodetic_from_ecef(stats.station()->x_m, stats.station()->y_m, stats.station()->z_m);
  EXPECT_NEAR(p.coordinate.latitude, base.lat, 1e-8);
  EXPECT_NEAR(p.coordinate.longitude, base.lon, 1e-8);
  EXPECT_NEAR(p.height_m, base.height_m, 1e-3);

  // Each message has its exact size: MSM7 is a 169-bit header, a cell mask of satellites times two
  // signals, 36 bits per satellite and 80 per cell (GPS 9, GLONASS 7, Galileo 8, BeiDou 10
  // satellites); 1005 is 152 bits, 1230 with four biases 96.
  std::vector<std::pair<std::uint16_t, std::size_t>> sizes;
  rtcm_framer_t framer;
  framer.feed(bytes(encoder.epoch(0)), [&](const rtcm_frame_t& f) { sizes.emplace_back(f.type, f.payload.size()); });
  const auto msm7 = [](std::size_t n) { return (169 + 2 * n + 36 * n + 80 * 2 * n + 7) / 8; };
  EXPECT_EQ(sizes, (std::vector<std::pair<std::uint16_t, std::size_t>>{
                       {1005, 19}, {1077, msm7(9)}, {1087, msm7(7)}, {1097, msm7(8)}, {1127, msm7(10)}, {1230, 12}}));

  // The same seed writes the same stream.
  rtcm_encoder_t again(base, 3);
  const auto first = again.epoch(0);
  EXPECT_EQ(stream.substr(0, first.size()), first);
}

}  // namespace

#include "sim/sim_engine.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "link/connection.h"
#include "link/offline_links.h"
#include "link/replay.h"
#include "nmea/sentence.h"
#include "support/recording_console.h"
#include "support/test_queue.h"

namespace {

std::vector<std::string> lines_of(const std::string& bytes) {
  std::vector<std::string> lines;
  std::size_t start = 0;
  while (start < bytes.size()) {
    const auto end = bytes.find("\r\n", start);
    lines.push_back(bytes.substr(start, end - start));
    start = end + 2;
  }
  return lines;
}

// The whole stream of some epochs through a hub, as a link would deliver it.
struct decoded_t {
  test_queue_t queue;
  recording_console_t console;
  offline_links_t links;
  connection_t hub{queue, console, links};
  explicit decoded_t(const std::string& stream) {
    replay_chunks(std::vector<std::uint8_t>(stream.begin(), stream.end()), 512, hub);
  }
};

TEST(sim_engine, speaks_as_a_receiver_does) {
  sim_config_t config;
  config.seed = 7;
  sim_engine_t sim(config);
  std::string stream;
  for (int epoch = 0; epoch < 30; ++epoch) stream += sim.next_epoch();
  std::size_t tags[6] = {};
  const char* names[6] = {"$GPGGA", "$GPGLL", "$GPRMC", "$GPVTG", "$GPGSA", "$GPGSV"};
  for (const auto& line : lines_of(stream)) {
    EXPECT_LE(count_characters(line), 80u) << line;
    EXPECT_TRUE(scan_sentence(line, {}).checksum_ok) << line;
    for (int i = 0; i < 6; ++i) tags[i] += line.rfind(names[i], 0) == 0;
  }
  for (int i = 0; i < 5; ++i) EXPECT_EQ(tags[i], 30u) << names[i];
  EXPECT_EQ(tags[5], 90u);

  decoded_t d(stream);
  EXPECT_EQ(d.hub.msg_good + 1, sim.counts().sentences) << "the first valid sentence acknowledges";
  EXPECT_EQ(d.hub.gsv.satellite_arr->size(), 12u);
  EXPECT_EQ(d.hub.gsa.PRN_arr->size(), 10u);
  EXPECT_EQ(d.hub.gga.fix_text(), "GPS");
  EXPECT_GT(d.hub.gga.map_path.list().size(), 3u) << "the receiver moves";
}

TEST(sim_engine, the_same_seed_gives_the_same_stream) {
  sim_config_t config;
  config.seed = 3;
  config.bad_checksum_rate = 0.2;
  config.garbage_rate = 0.2;
  sim_engine_t a(config);
  sim_engine_t b(config);
  config.seed = 4;
  sim_engine_t c(config);
  std::string sa, sb, sc;
  for (int epoch = 0; epoch < 20; ++epoch) {
    sa += a.next_epoch();
    sb += b.next_epoch();
    sc += c.next_epoch();
  }
  EXPECT_EQ(sa, sb);
  EXPECT_NE(sa, sc);
}

TEST(sim_engine, injected_faults_show_in_the_counters) {
  sim_config_t config;
  config.bad_checksum_rate = 0.1;
  config.garbage_rate = 0.1;
  sim_engine_t sim(config);
  std::string stream;
  for (int epoch = 0; epoch < 100; ++epoch) stream += sim.next_epoch();
  const auto& counts = sim.counts();
  ASSERT_GT(counts.bad_checksums, 0u);
  ASSERT_GT(counts.garbage_lines, 0u);
  decoded_t d(stream);
  // Junk lines never start with "$", so they are not candidates; every sentence is one.
  EXPECT_EQ(d.hub.msg_count + d.hub.msg_ack_count, counts.sentences);
  const auto first_valid_counts = d.hub.msg_good + 1;
  EXPECT_EQ(first_valid_counts, counts.sentences - counts.bad_checksums);
}

TEST(sim_engine, southern_and_western_loops_keep_their_hemispheres) {
  sim_config_t config;
  config.lat = -33.8568;
  config.lon = -151.2155;
  sim_engine_t sim(config);
  std::string stream;
  for (int epoch = 0; epoch < 10; ++epoch) stream += sim.next_epoch();
  decoded_t d(stream);
  EXPECT_EQ(d.hub.gga.lat_dir, "S");
  EXPECT_EQ(d.hub.gga.lon_dir, "W");
  EXPECT_NEAR(d.hub.gga.lat, 33.8568, 0.01);
  EXPECT_LT(d.hub.gga.map_path.list()[0].latitude, 0.0);
  EXPECT_LT(d.hub.gga.map_path.list()[0].longitude, 0.0);
}

TEST(sim_engine, ubx_frames_reach_the_decoders) {
  sim_config_t config;
  config.ubx = true;
  config.lat = -34.9;
  config.lon = 138.6;
  sim_engine_t sim(config);
  std::string stream;
  for (int epoch = 0; epoch < 5; ++epoch) stream += sim.next_epoch();
  decoded_t d(stream);
  EXPECT_TRUE(d.hub.binary);
  EXPECT_EQ(sim.counts().frames, 10u);
  EXPECT_NEAR(d.hub.gga.lat, -34.9, 0.01);
  EXPECT_EQ(d.hub.gga.fix_text(), "3D fix");
  EXPECT_EQ(d.hub.gsv.satellites_in_view, 10);
  ASSERT_EQ(d.hub.arr_rx->size(), 1u);
  EXPECT_EQ((*d.hub.arr_rx)[0].rfind("cls 1  id 7      PVT", 0), 0u) << "the last record of the stream";
}

}  // namespace

#include "sim/sim_engine.h"

#include <gtest/gtest.h>

#include <map>
#include <string>
#include <tuple>
#include <vector>

#include "link/connection.h"
#include "link/offline_links.h"
#include "link/replay.h"
#include "nmea/sentence.h"
#include "sim/sim_sky.h"
#include "support/recording_console.h"
#include "support/test_queue.h"

namespace {

std::string epochs(sim_engine_t& sim, int count) {
  std::string stream;
  for (int epoch = 0; epoch < count; ++epoch) stream += sim.next_epoch();
  return stream;
}

// How often each tag ("$GPGGA") occurs in the stream, each line checked for length and checksum.
std::map<std::string, int> checked_tags(const std::string& stream) {
  std::map<std::string, int> tags;
  for (std::size_t start = 0, end; start < stream.size(); start = end + 2) {
    end = stream.find("\r\n", start);
    const auto line = stream.substr(start, end - start);
    const auto scan = scan_sentence(line, {});
    EXPECT_TRUE(scan.characters <= 80 && scan.checksum_ok) << line;
    ++tags[line.substr(0, 6)];
  }
  return tags;
}

// The whole stream of some epochs through a hub, as a link would deliver it.
struct decoded_t {
  test_queue_t queue;
  recording_console_t console;
  offline_links_t links;
  connection_t hub{queue, console, links};
  explicit decoded_t(const std::string& stream, std::size_t chunk = 512) {
    replay_chunks(std::vector<std::uint8_t>(stream.begin(), stream.end()), chunk, hub.tcp_events());
  }
};

TEST(sim_engine, speaks_as_a_receiver_does) {
  sim_engine_t sim({.seed = 7});
  const auto stream = epochs(sim, 30);
  const auto tags = checked_tags(stream);
  EXPECT_EQ(tags, (std::map<std::string, int>{
                      {"$GPGGA", 30}, {"$GPGLL", 30}, {"$GPRMC", 30}, {"$GPVTG", 30}, {"$GPGSA", 30}, {"$GPGSV", 90}}));
  decoded_t d(stream);
  EXPECT_EQ(d.hub.msg_good + 1, sim.counts().sentences) << "the first valid sentence acknowledges";
  EXPECT_EQ(std::tuple(d.hub.gsv.satellite_arr->size(), d.hub.gsa.PRN_arr->size(), d.hub.gga.fix_text()),
            std::tuple(12u, 10u, "GPS"));
  EXPECT_GT(d.hub.gga.map_path.list().size(), 3u) << "the receiver moves";
}

TEST(sim_engine, the_same_seed_gives_the_same_stream_and_faults_show_in_the_counters) {
  sim_config_t config{.seed = 3, .bad_checksum_rate = 0.1, .garbage_rate = 0.1};
  sim_engine_t a(config), b(config);
  const auto stream = epochs(a, 100);
  EXPECT_EQ(stream, epochs(b, 100));
  config.seed = 4;
  sim_engine_t c(config);
  EXPECT_NE(stream, epochs(c, 100));
  const auto& counts = a.counts();
  ASSERT_TRUE(counts.bad_checksums > 0 && counts.garbage_lines > 0);
  decoded_t d(stream);
  // Junk lines never start with "$", so they are not candidates; every sentence is one.
  EXPECT_EQ(d.hub.msg_count + d.hub.msg_ack_count, counts.sentences);
  EXPECT_EQ(d.hub.msg_good + 1, counts.sentences - counts.bad_checksums);
}

TEST(sim_engine, frames_carry_the_faults_too) {
  sim_engine_t sim({.seed = 3, .ubx = true, .bad_checksum_rate = 0.1, .garbage_rate = 0.1});
  decoded_t d(epochs(sim, 100), 1);  // byte by byte: each good frame counts once
  const auto& counts = sim.counts();
  ASSERT_TRUE(counts.bad_checksums > 0 && counts.garbage_lines > 0);
  EXPECT_EQ(d.hub.msg_good, counts.frames - counts.bad_checksums) << "junk between frames loses none of them";
}

// Every sentence a receiver may send, every system with its second band on some satellites, and
// the same sky from the frames; the six decoders' counters see the records they did before.
TEST(sim_engine, a_multi_gnss_receiver_in_sentences_and_in_frames) {
  const auto systems = *parse_gnss_list("gps,glo,gal,bds");
  sim_engine_t text_sim({.gnss = systems});
  const auto stream = epochs(text_sim, 3);
  const auto tags = checked_tags(stream);
  EXPECT_EQ(tags, (std::map<std::string, int>{{"$GAGSV", 9},
                                              {"$GBGSV", 9},
                                              {"$GLGSV", 9},
                                              {"$GNGGA", 3},
                                              {"$GNGLL", 3},
                                              {"$GNGSA", 12},
                                              {"$GNRMC", 3},
                                              {"$GNVTG", 3},
                                              {"$GPGSV", 12}}));
  const decoded_t text(stream);
  const auto counts = text.hub.sky.counts();
  const auto count = [&](gnss_system_t s) { return counts[index_of(s)]; };
  EXPECT_EQ(std::tuple(count(gnss_system_t::gps), count(gnss_system_t::glonass), count(gnss_system_t::galileo),
                       count(gnss_system_t::beidou), count(gnss_system_t::qzss)),
            std::tuple(sky_count_t{10, 9, 14}, sky_count_t{8, 7, 11}, sky_count_t{8, 7, 11}, sky_count_t{8, 6, 11},
                       sky_count_t{}));
  EXPECT_EQ(text.hub.gga.sat_count_i, 9 + 7 + 7 + 6) << "the used satellites of every system";

  sim_engine_t ubx_sim({.ubx = true, .gnss = systems});
  const decoded_t binary(epochs(ubx_sim, 3), 1);
  EXPECT_EQ(binary.hub.sky.counts(), counts);
  EXPECT_EQ(std::tuple(ubx_sim.counts().frames, binary.hub.msg_good), std::tuple(15u, 6u));
  EXPECT_EQ(binary.hub.sky.dop->hdop, 0.81);
}

TEST(sim_engine, southern_and_western_loops_as_sentences_and_as_records) {
  sim_config_t config{.lat = -33.8568, .lon = -151.2155};
  sim_engine_t sim(config);
  decoded_t text(epochs(sim, 10));
  EXPECT_EQ(std::tuple(text.hub.gga.lat_dir, text.hub.gga.lon_dir), std::tuple("S", "W"));
  EXPECT_NEAR(text.hub.gga.lat, 33.8568, 0.01);
  EXPECT_TRUE(text.hub.gga.map_path.list()[0].latitude < 0 && text.hub.gga.map_path.list()[0].longitude < 0);

  config.ubx = true;
  sim_engine_t ubx(config);
  decoded_t binary(epochs(ubx, 5));
  EXPECT_EQ(std::tuple(binary.hub.binary(), ubx.counts().frames, binary.hub.gga.fix_text(),
                       binary.hub.gsv.satellites_in_view.get()),
            std::tuple(true, 10u, "3D fix", 10));
  EXPECT_NEAR(binary.hub.gga.lat, -33.8568, 0.01);
  EXPECT_NEAR(binary.hub.gga.lon, -151.2155, 0.01);
  ASSERT_EQ(binary.hub.arr_rx->size(), 1u);
  EXPECT_EQ((*binary.hub.arr_rx)[0].rfind("cls 1  id 7      PVT", 0), 0u) << "the last record of the stream";
}

}  // namespace

namespace {

// The receiver's solution while corrections arrive in epochs 1 to 6 and after they stop: the GGA
// quality in sentences, the carrier solution of NAV-PVT in frames; without --rtk the same stream
// as ever.
TEST(sim_engine, rtk_follows_the_corrections) {
  const std::string expected = "111555444444444441";
  for (const bool ubx : {false, true}) {
    sim_engine_t sim({.seed = 5, .ubx = ubx, .rtk = true}), plain({.seed = 5, .ubx = ubx});
    std::string qualities;
    for (std::size_t t = 0; t < expected.size(); ++t) {
      const auto epoch = sim.next_epoch();
      decoded_t d(epoch);
      if (ubx) {
        const auto carrier = d.hub.pvt_flags() >> 6;
        qualities += carrier == 2 ? '4' : carrier == 1 ? '5' : '1';
      } else {
        qualities += std::to_string(d.hub.gga.fix_i);
      }
      if (t >= 1 && t <= 6) sim.corrections_arrived();
      if (qualities.back() == '1')
        EXPECT_EQ(epoch, plain.next_epoch()) << t;
      else
        plain.next_epoch();
    }
    EXPECT_EQ(qualities, expected) << (ubx ? "frames" : "sentences");
  }
}

}  // namespace

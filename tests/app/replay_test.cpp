#include "link/replay.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "app/snapshot_json.h"
#include "link/connection.h"
#include "nmea/sentence.h"
#include "support/fake_links.h"
#include "support/recording_console.h"
#include "support/test_queue.h"

namespace {

namespace fs = std::filesystem;

// A hub on fake transports with a fixed-time console, for replays.
struct replay_hub_t {
  explicit replay_hub_t(std::span<const std::uint8_t> capture, std::size_t chunk) {
    hub.show_all = true;
    replay_chunks(capture, chunk, hub.tcp_events());
  }
  test_queue_t queue;
  recording_console_t console;
  fake_links_t links;
  connection_t hub{queue, console, links};
};

// However a text capture is cut into chunks, the hub and every decoder end in the same state; a
// replay connects nothing and prints nothing.
TEST(replay, a_text_capture_gives_the_same_state_in_chunks_of_any_size) {
  const fs::path folder(KORVID_LOGS_DIR);
  if (!fs::is_directory(folder)) GTEST_SKIP() << "no receiver captures at " << folder;
  for (const char* name : {"bu353-glonass.log", "gps-360.log", "neo-m8n.log", "telit-he910.log", "ublox-lea-5h.log"}) {
    std::ifstream in(folder / name, std::ios::binary);
    const std::vector<std::uint8_t> bytes{std::istreambuf_iterator<char>(in), {}};
    ASSERT_FALSE(bytes.empty()) << name;
    const replay_hub_t whole(bytes, replay_default_chunk);
    EXPECT_GT(whole.hub.msg_good, 0u) << name;
    EXPECT_FALSE(whole.hub.binary()) << name;
    EXPECT_EQ(whole.hub.status_tcp.get(), "offline") << name;
    EXPECT_TRUE(whole.console.lines.empty()) << name;
    for (const std::size_t chunk : {std::size_t{1}, std::size_t{7}, std::size_t{65536}})
      EXPECT_EQ(snapshot_json(replay_hub_t(bytes, chunk).hub), snapshot_json(whole.hub)) << name << " chunk " << chunk;
  }
}

TEST(snapshot_json, prints_the_hub_section) {
  const std::string line = "$GPGGA,123519,4807.038,N,01131.000,E,1,08,0.9,545.4,M,46.9,M,,*47\r\n";
  const replay_hub_t r({reinterpret_cast<const std::uint8_t*>(line.data()), line.size()}, replay_default_chunk);
  const auto json = snapshot_json(r.hub);
  EXPECT_EQ(json.rfind(R"({"hub":{"status_tcp":"offline","status_ble":"offline","msg_count":0,"msg_good":0,)"
                       R"("msg_ack":true,"msg_ack_count":1,"binary":false,"show_all":true,"crc_error_text":"",)"
                       R"("arr_rx":["$GPGGA,123519,4807.038,N,01131.000,E,1,08,0.9,545.4,M,46.9,M,,*47"]})",
                       0),
            0u)
      << json;
}

TEST(snapshot_json, prints_the_sky_last_with_systems_and_signals_in_words) {
  const std::string lines = with_checksum("$GNGSA,A,3,05,,,,,,,,,,,,1.85,1.02,1.54,1") + "\r\n" +
                            with_checksum("$GAGSV,1,1,01,05,45,123,38,1") + "\r\n";
  const replay_hub_t r({reinterpret_cast<const std::uint8_t*>(lines.data()), lines.size()}, replay_default_chunk);
  const auto json = snapshot_json(r.hub);
  const std::string sky =
      R"(,"sky":{"in_view":2,"used":1,"signals":1,"systems":[{"system":"GPS","in_view":1,"used":1,"signals":0},)"
      R"({"system":"Galileo","in_view":1,"used":0,"signals":1}],"dop":{"gdop":null,"pdop":1.85,"tdop":null,)"
      R"("vdop":1.54,"hdop":1.02,"ndop":null,"edop":null},"satellites":[{"system":"GPS","number":5,"placed":false,)"
      R"("elevation":0,"azimuth":0,"used":true,"health":"unknown","quality":0,"residual_m":0,"signals":[]},)"
      R"({"system":"Galileo","number":5,"placed":true,"elevation":45,"azimuth":123,"used":false,)"
      R"("health":"unknown","quality":0,"residual_m":0,"signals":[{"signal":"E5a","cn0":38,"used":false}]}]}})";
  ASSERT_GT(json.size(), sky.size());
  EXPECT_EQ(json.substr(json.size() - sky.size()), sky);
}

}  // namespace

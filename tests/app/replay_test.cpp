#include "link/replay.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "app/snapshot_json.h"
#include "link/connection.h"
#include "support/fake_links.h"
#include "support/link_feed.h"
#include "support/recording_console.h"
#include "support/test_queue.h"

namespace {

namespace fs = std::filesystem;

std::vector<std::uint8_t> read_file(const fs::path& path) {
  std::ifstream in(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

// The counters a capture should give, worked out line by line without the hub's code: candidates
// start with "$"; valid ones have 10 to 80 characters and a matching two-digit checksum.
struct expected_counts_t {
  std::uint64_t msg_count = 0, msg_good = 0, msg_ack_count = 0;
  bool msg_ack = false;
};

bool valid_sentence(const std::string& line) {
  std::size_t chars = 0;
  for (unsigned char c : line) chars += (c & 0xC0) != 0x80;
  if (chars < 10 || chars > 80) return false;
  const auto star = line.find('*');
  if (star == std::string::npos || line.rfind('*') != star || line.size() - star != 3) return false;
  unsigned sum = 0;
  for (std::size_t i = 1; i < star; ++i) sum ^= static_cast<unsigned char>(line[i]);
  char* end = nullptr;
  const std::string digits = line.substr(star + 1);
  if (!std::isxdigit(static_cast<unsigned char>(digits[0])) || !std::isxdigit(static_cast<unsigned char>(digits[1])))
    return false;
  return std::strtoul(digits.c_str(), &end, 16) == sum;
}

expected_counts_t count_capture(const std::vector<std::uint8_t>& bytes) {
  expected_counts_t e;
  std::string line;
  for (const auto b : bytes) {
    if (b == '\r') continue;
    if (b != '\n') {
      line.push_back(static_cast<char>(b));
      continue;
    }
    if (!line.empty() && line[0] == '$') {
      if (e.msg_ack) {
        ++e.msg_count;
      } else if (++e.msg_ack_count > 10) {
        e.msg_ack = true;
      }
      if (valid_sentence(line)) {
        if (e.msg_ack) ++e.msg_good;
        e.msg_ack = true;
      }
    }
    line.clear();
  }
  return e;
}

fs::path logs_folder() {
  const char* env = std::getenv("KORVID_LOGS");
  return env ? fs::path(env) : fs::path(KORVID_LOGS_DIR);
}

TEST(replay, text_captures_give_the_counters_of_an_independent_count) {
  const auto folder = logs_folder();
  if (folder.empty() || !fs::is_directory(folder)) GTEST_SKIP() << "no receiver captures at " << folder;
  int replayed = 0;
  for (const char* name : {"bu353-glonass.log", "gps-360.log", "neo-m8n.log", "telit-he910.log", "ublox-lea-5h.log"}) {
    const auto bytes = read_file(folder / name);
    ASSERT_FALSE(bytes.empty()) << name;
    const auto expected = count_capture(bytes);
    for (const std::size_t chunk : {std::size_t{1}, std::size_t{7}, replay_default_chunk, std::size_t{65536}}) {
      test_queue_t queue;
      recording_console_t console;
      fake_links_t links;
      connection_t hub(queue, console, links);
      replay_chunks(bytes, chunk, hub.tcp_events());
      EXPECT_EQ(hub.msg_count, expected.msg_count) << name << " chunk " << chunk;
      EXPECT_EQ(hub.msg_good, expected.msg_good) << name << " chunk " << chunk;
      EXPECT_EQ(hub.msg_ack_count, expected.msg_ack_count) << name;
      EXPECT_EQ(hub.msg_ack, expected.msg_ack) << name;
      EXPECT_FALSE(hub.binary()) << name;
      EXPECT_EQ(hub.status_tcp.get(), "offline") << "a replay connects nothing";
      EXPECT_TRUE(console.lines.empty()) << name;
    }
    ++replayed;
  }
  EXPECT_EQ(replayed, 5);
}

TEST(replay, real_captures_keep_the_decoders_within_their_bounds) {
  const auto folder = logs_folder();
  if (folder.empty() || !fs::is_directory(folder)) GTEST_SKIP() << "no receiver captures at " << folder;
  for (const auto& entry : fs::directory_iterator(folder)) {
    if (entry.path().extension() != ".log") continue;
    const auto name = entry.path().filename().string();
    test_queue_t queue;
    recording_console_t console;
    fake_links_t links;
    connection_t hub(queue, console, links);
    hub.show_all = true;
    replay_chunks(read_file(entry.path()), replay_default_chunk, hub.tcp_events());
    EXPECT_LE(hub.arr_rx->size(), 30u) << name;
    for (const auto* annotations : {&hub.gga.map_annotations, &hub.gll.map_annotations, &hub.rmc.map_annotations})
      EXPECT_LE(annotations->list().size(), annotations_t::limit) << name;
    EXPECT_LE(hub.gga.map_path.list().size(), map_path_t::limit) << name;
    EXPECT_LE(hub.gga.map_path.history().size(), map_path_t::history_length) << name;
    if (!hub.binary()) {
      for (const double lat : {hub.gga.lat.get(), hub.gll.lat.get(), hub.rmc.lat.get()}) {
        EXPECT_GE(lat, 0.0) << name;
        EXPECT_LE(lat, 90.0) << name;
      }
      for (const double lon : {hub.gga.lon.get(), hub.gll.lon.get(), hub.rmc.lon.get()}) {
        EXPECT_GE(lon, 0.0) << name;
        EXPECT_LE(lon, 180.0) << name;
      }
      EXPECT_GT(hub.gga.map_path.list().size(), 0u) << name << " has fixes";
    }
    for (const auto& [prn, satellite] : *hub.gsv.satellite_arr) {
      EXPECT_LT(prn, 100) << name;
      EXPECT_EQ(satellite->prn, prn) << name;
      EXPECT_LE(satellite->elevation, 90) << name;
      EXPECT_LE(satellite->azimuth, 360) << name;
    }
    for (const auto& [prn, when] : *hub.gsa.PRN_arr) EXPECT_LT(prn, 100) << name;
  }
}

TEST(replay, an_unfinished_last_line_is_dropped) {
  test_queue_t queue;
  recording_console_t console;
  fake_links_t links;
  connection_t hub(queue, console, links);
  const std::string gga = "$GPGGA,123519,4807.038,N,01131.000,E,1,08,0.9,545.4,M,46.9,M,,*47";
  const std::string capture = gga + "\r\n" + gga;
  replay_chunks(std::vector<std::uint8_t>(capture.begin(), capture.end()), 5, hub.tcp_events());
  EXPECT_EQ(hub.arr_rx->size(), 1u);
}

TEST(snapshot_json, prints_the_hub_section) {
  test_queue_t queue;
  recording_console_t console;
  fake_links_t links;
  connection_t hub(queue, console, links);
  feed_line(hub.tcp_events(), "$GPGGA,123519,4807.038,N,01131.000,E,1,08,0.9,545.4,M,46.9,M,,*47");
  const auto json = snapshot_json(hub);
  EXPECT_EQ(json.rfind(R"({"hub":{"status_tcp":"offline","status_ble":"offline","msg_count":0,"msg_good":0,)"
                       R"("msg_ack":true,"msg_ack_count":1,"binary":false,"show_all":false,"crc_error_text":"",)"
                       R"("arr_rx":["$GPGGA,123519,4807.038,N,01131.000,E,1,08,0.9,545.4,M,46.9,M,,*47"]})", 0),
            0u)
      << json;
}

}  // namespace

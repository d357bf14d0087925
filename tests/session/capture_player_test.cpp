#include "session/capture_player.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "nmea/sentence.h"
#include "session/epoch_scanner.h"
#include "support/recording_status_events.h"
#include "support/test_queue.h"

namespace {

namespace fs = std::filesystem;
using bytes_t = std::vector<std::uint8_t>;

std::string line(std::string_view sentence) {
  return with_checksum(sentence) + "\r\n";
}

// Four epochs a second apart, each started by a different timed sentence; the second carries two.
const std::vector<std::string> text_epochs{
    line("$GPGGA,120000.00,4807.038,N,01131.000,E,1,08,0.9,545.4,M,46.9,M,,") +
        line("$GPGSA,A,3,04,05,,,,,,,,,,,2.5,1.3,2.1"),
    line("$GPRMC,120001.00,A,4807.038,N,01131.000,E,022.4,084.4,230394,003.1,W") +
        line("$GPGGA,120001.00,4807.038,N,01131.000,E,1,08,0.9,545.4,M,46.9,M,,"),
    line("$GPGLL,4807.038,N,01131.000,E,120002.00,A"), line("$GPZDA,120003.00,23,11,2026,00,00")};

// A UBX frame with its checksum.
std::string frame(std::uint8_t cls, std::uint8_t id, bytes_t payload) {
  std::string out{'\xB5',
                  '\x62',
                  static_cast<char>(cls),
                  static_cast<char>(id),
                  static_cast<char>(payload.size() & 0xFFU),
                  static_cast<char>(payload.size() >> 8U)};
  out.append(payload.begin(), payload.end());
  std::uint8_t a = 0, b = 0;
  for (std::size_t i = 2; i < out.size(); ++i) {
    a = static_cast<std::uint8_t>(a + static_cast<std::uint8_t>(out[i]));
    b = static_cast<std::uint8_t>(b + a);
  }
  return out + static_cast<char>(a) + static_cast<char>(b);
}

std::string nav(std::uint8_t id, std::uint32_t itow_ms) {
  bytes_t payload(id == 0x07 ? 92 : 28, 0x0A);  // LF bytes inside frames must not look like line starts
  for (unsigned i = 0; i < 4; ++i) payload[i] = static_cast<std::uint8_t>(itow_ms >> (8U * i));
  return frame(0x01, id, payload);
}

std::string joined(const std::vector<std::string>& parts) {
  std::string all;
  for (const auto& p : parts) all += p;
  return all;
}

std::vector<epoch_mark_t> scan(std::string_view capture, std::size_t piece) {
  epoch_scanner_t scanner;
  scanner.restart(0);
  std::vector<epoch_mark_t> marks;
  for (std::size_t at = 0; at < capture.size(); at += piece) {
    const auto part = capture.substr(at, piece);
    scanner.feed({reinterpret_cast<const std::uint8_t*>(part.data()), part.size()}, marks);
  }
  return marks;
}

TEST(epoch_scanner, finds_each_epoch_start_in_any_piece_size) {
  const auto text = joined(text_epochs);
  const auto e1 = text_epochs[0].size(), e2 = e1 + text_epochs[1].size(), e3 = e2 + text_epochs[2].size();
  const std::string bad_checksum = "$GPGGA,130000.00,4807.038,N,01131.000,E,1,08,0.9,545.4,M,46.9,M,,*00\n";
  const auto ubx = nav(0x07, 5000) + nav(0x02, 5000) + "junk" + nav(0x07, 5100) + frame(0x0A, 0x04, bytes_t(92, 1)) +
                   nav(0x02, 604799900);
  auto broken = nav(0x07, 6000);
  broken.back() ^= 1;
  struct case_t {
    std::string name, capture;
    std::vector<epoch_mark_t> marks;
  };
  const std::vector<case_t> cases{
      {"sentences", text, {{0, 43200, day_s}, {e1, 43201, day_s}, {e2, 43202, day_s}, {e3, 43203, day_s}}},
      {"bad checksum", bad_checksum + text_epochs[2], {{bad_checksum.size(), 43202, day_s}}},
      {"bad hex digit", bad_checksum.substr(0, bad_checksum.size() - 2) + "G\n", {}},
      {"bad times", line("$GPGGA,12x519,,,,,,,,,,,,,") + line("$GPGGA,123519.x,,,,,,,,,,,,,"), {}},
      {"frames", ubx, {{0, 5, week_s}, {140, 5.1, week_s}, {340, 604799.9, week_s}}},
      {"broken frame", broken + nav(0x02, 7000), {{100, 7, week_s}}}};
  for (const auto& c : cases)
    for (const std::size_t piece : {std::size_t{1}, std::size_t{7}, c.capture.size()})
      EXPECT_EQ(scan(c.capture, piece), c.marks) << c.name << " in pieces of " << piece;
}

TEST(epoch_scanner, resumes_at_a_sentence_or_a_whole_frame) {
  const auto pvt = nav(0x07, 1000);
  struct case_t {
    std::string bytes;
    bool at_line_start;
    std::size_t expected;
  };
  auto bad_ck_b = pvt;
  bad_ck_b.back() ^= 1;
  const std::vector<case_t> cases{{"$GPGGA", true, 0},
                                  {bad_ck_b + "\n$", false, bad_ck_b.size() + 1},
                                  {"GGA,1*00\n$GPRMC", false, 9},
                                  {"$GPGGA", false, 6},
                                  {"12\n34\n$", false, 6},
                                  {pvt.substr(3) + pvt, false, pvt.size() - 3},
                                  {pvt.substr(0, 50), true, 50},
                                  {"x" + pvt, false, 1}};
  for (const auto& c : cases)
    EXPECT_EQ(resume_point({reinterpret_cast<const std::uint8_t*>(c.bytes.data()), c.bytes.size()}, c.at_line_start),
              c.expected)
        << c.bytes;
}

class capture_player_test : public ::testing::Test {
protected:
  void TearDown() override { fs::remove(path); }

  void open(const std::string& capture) {
    std::ofstream(path, std::ios::binary) << capture;
    ASSERT_TRUE(player.open(path));
  }
  std::string last_status() const {
    for (auto it = link.record.events.rbegin(); it != link.record.events.rend(); ++it)
      if (it->starts_with("status ")) return it->substr(7);
    return {};
  }

  fs::path path = fs::temp_directory_path() / ("korvid-capture-" + std::to_string(::getpid()) + ".nmea");
  test_queue_t queue;
  recording_status_events_t link;
  int resets = 0;
  capture_player_t player{queue, link, [this] { ++resets; }};
};

// Each epoch's bytes arrive together when its time comes, at 1x and then at 10x; pause stops them.
TEST_F(capture_player_test, delivers_epochs_at_their_time) {
  open(joined(text_epochs));
  EXPECT_EQ(link.record.events.front(), "up file " + path.filename().string());
  EXPECT_EQ(last_status(), "file " + path.filename().string() + " paused");
  player.play();
  queue.run_pending();
  EXPECT_EQ(link.record.received, text_epochs[0]);
  EXPECT_EQ(last_status(), "file " + path.filename().string() + " 1x 12:00:00");
  queue.advance(0.99);
  EXPECT_EQ(link.record.received, text_epochs[0]);
  queue.advance(0.01);
  EXPECT_EQ(link.record.received, text_epochs[0] + text_epochs[1]);
  player.set_speed(10);
  EXPECT_EQ(last_status(), "file " + path.filename().string() + " 10x 12:00:01");
  queue.advance(0.09);
  EXPECT_EQ(player.offset(), text_epochs[0].size() + text_epochs[1].size());
  queue.advance(0.01);
  EXPECT_EQ(player.time_text(), "12:00:02");
  player.pause();
  EXPECT_EQ(last_status(), "file " + path.filename().string() + " paused");
  queue.advance(10);
  EXPECT_EQ(link.record.received, text_epochs[0] + text_epochs[1] + text_epochs[2]);
  player.play();
  player.step();
  EXPECT_FALSE(player.playing());
  EXPECT_EQ(link.record.received, joined(text_epochs));
  EXPECT_TRUE(player.ended());
  EXPECT_EQ(last_status(), "file " + path.filename().string() + " end");
  player.close();
  EXPECT_FALSE(player.is_open());
  EXPECT_FALSE(player.open(path.string() + ".missing"));
  EXPECT_FALSE(player.open(path.parent_path().string()));
}

// When each epoch arrives: across midnight the clock runs on; a jump back or far ahead plays at once.
TEST_F(capture_player_test, paces_by_the_gaps_between_epochs) {
  struct case_t {
    std::vector<std::string> times;
    double speed;
    std::vector<double> due_s;  // after the first epoch, which plays at once
  };
  const std::vector<case_t> cases{{{"123519", "123520", "123522.5"}, 1, {1, 3.5}},
                                  {{"235959", "000000", "000001"}, 2, {0.5, 1}},
                                  {{"120000", "110000", "110001"}, 1, {0, 1}},
                                  {{"120000", "120200", "120201"}, 0.5, {0, 2}}};
  for (const auto& c : cases) {
    std::string capture;
    std::vector<std::size_t> starts;
    for (const auto& time : c.times) {
      starts.push_back(capture.size());
      capture += line("$GPZDA," + time + ",23,11,2026,00,00");
    }
    open(capture);
    player.set_speed(c.speed);
    player.play();
    queue.run_pending();
    const double start = queue.now_s();
    for (std::size_t i = 0; i < c.due_s.size(); ++i) {
      if (c.due_s[i] > 0) {
        queue.advance(start + c.due_s[i] - 0.001 - queue.now_s());
        EXPECT_EQ(player.offset(), starts[i + 1]) << c.times[i + 1] << " came early";
      }
      queue.advance(start + c.due_s[i] - queue.now_s());
      EXPECT_GT(player.offset(), starts[i + 1]) << c.times[i + 1] << " is late";
    }
  }
}

TEST_F(capture_player_test, plays_as_fast_as_possible_in_batches) {
  std::string capture;
  for (int i = 0; i < 20000; ++i) capture += text_epochs[i % 4];
  open(capture);
  player.set_speed(capture_player_t::max_speed);
  player.play();
  const int turns = queue.run_pending();
  EXPECT_EQ(link.record.received, capture);
  EXPECT_GT(turns, static_cast<int>(capture.size() / capture_player_t::batch));
  EXPECT_EQ(queue.now_s(), 0.0);
}

// A seek resets what was decoded and goes on from the next sentence or frame start.
TEST_F(capture_player_test, seeks_to_a_line_or_frame_start) {
  const auto text = joined(text_epochs);
  std::string ubx;
  for (std::uint32_t t = 0; t < 5; ++t) ubx += nav(0x07, t * 1000) + nav(0x02, t * 1000);
  struct case_t {
    std::string capture;
    std::uint64_t offset, expected;
  };
  const std::vector<case_t> cases{{text, 0, 0},
                                  {text, 5, text.find('\n') + 1},
                                  {text, text_epochs[0].size(), text_epochs[0].size()},
                                  {text, text.size() + 10, text.size()},
                                  {ubx, 150, 236},
                                  {ubx, 400, 408}};
  for (const auto& c : cases) {
    open(c.capture);
    player.seek(c.offset);
    EXPECT_EQ(player.offset(), c.expected) << c.offset;
  }
  EXPECT_EQ(resets, static_cast<int>(cases.size()));
  EXPECT_EQ(std::count_if(link.record.events.begin(), link.record.events.end(),
                          [](const std::string& e) { return e.starts_with("up file "); }),
            static_cast<long>(2 * cases.size()));
  open(ubx);
  EXPECT_EQ(player.time_at(150), "00:00:01");
  player.seek(150);
  player.step();
  EXPECT_EQ(link.record.received.substr(link.record.received.size() - 36), ubx.substr(236, 36));
}

}  // namespace

#include "session/recorder.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "support/test_queue.h"

namespace {

namespace fs = std::filesystem;

// A console whose wall clock the test sets, so rotation by the hour can be driven.
class clock_console_t final : public console_t {
public:
  void print(std::string_view line) override { lines.emplace_back(line); }
  std::time_t utc_now() const override { return now; }
  std::time_t now = 1795473600;  // 2026-11-23 22:40:00 UTC
  std::vector<std::string> lines;
};

std::string read_file(const fs::path& path) {
  std::ifstream in(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), {}};
}

void give(recorder_t& recorder, std::string_view bytes) {
  recorder.received({reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size()});
}

class recorder_test : public ::testing::Test {
protected:
  void SetUp() override {
    dir = fs::temp_directory_path() / ("korvid-recorder-" + std::to_string(::getpid()));
    fs::create_directories(dir);
  }
  void TearDown() override { fs::remove_all(dir); }

  fs::path dir;
  test_queue_t queue;
  clock_console_t console;
};

TEST(record_rotation, parses_sizes_and_hours) {
  struct case_t {
    std::string_view text;
    std::optional<record_rotation_t> expected;
  };
  const std::vector<case_t> cases{{"100M", record_rotation_t{100ULL << 20U, 0}},
                                  {"512K", record_rotation_t{512ULL << 10U, 0}},
                                  {"2G", record_rotation_t{2ULL << 30U, 0}},
                                  {"1h", record_rotation_t{0, 3600}},
                                  {"24h", record_rotation_t{0, 86400}},
                                  {"0M", std::nullopt},
                                  {"M", std::nullopt},
                                  {"10", std::nullopt},
                                  {"10m", std::nullopt},
                                  {"-1h", std::nullopt},
                                  {"1.5h", std::nullopt},
                                  {"99999999999999999999G", std::nullopt},
                                  {"17179869184G", std::nullopt},
                                  {"8785h", std::nullopt}};
  for (const auto& c : cases) EXPECT_EQ(parse_record_rotation(c.text), c.expected) << c.text;
}

TEST(record_rotation, puts_the_start_time_before_the_extension) {
  const std::vector<std::pair<std::string_view, std::string_view>> cases{
      {"/tmp/drive.nmea", "/tmp/drive-20261123T224000Z.nmea"},
      {"drive", "drive-20261123T224000Z"},
      {"/tmp/v1.2/drive", "/tmp/v1.2/drive-20261123T224000Z"},
      {"/tmp/.hidden", "/tmp/.hidden-20261123T224000Z"},
      {"a.tar.ubx", "a.tar-20261123T224000Z.ubx"}};
  for (const auto& [path, name] : cases) EXPECT_EQ(rotated_file_name(path, 1795473600), name) << path;
  EXPECT_EQ(rotated_file_name("d.ubx", 1795473600, 2), "d-20261123T224000Z-2.ubx");
}

// Bytes reach the file exactly as received, at the latest a second after they came.
TEST_F(recorder_test, writes_every_chunk_as_received_within_a_second) {
  recorder_t recorder(queue, console);
  const auto path = dir / "r.nmea";
  ASSERT_TRUE(recorder.start(path));
  const std::string chunks[] = {"$GPGGA,1", std::string("\0\xb5\x62\r\n", 5), "tail"};
  for (const auto& chunk : chunks) give(recorder, chunk);
  EXPECT_EQ(read_file(path), "");
  EXPECT_EQ(recorder.size(), 17U);
  queue.advance(recorder_t::flush_interval_s);
  EXPECT_EQ(read_file(path), chunks[0] + chunks[1] + chunks[2]);
  give(recorder, "more");
  queue.advance(recorder_t::flush_interval_s);
  EXPECT_EQ(read_file(path).size(), 21U);
  recorder.stop();
  queue.advance(recorder_t::flush_interval_s);
  EXPECT_FALSE(recorder.recording());
  EXPECT_EQ(console.lines.back(), "2026-11-23 22:40:00 +0000  recording stopped: 21 bytes in " + path.string());
}

TEST_F(recorder_test, flushes_early_when_much_is_held) {
  recorder_t recorder(queue, console);
  ASSERT_TRUE(recorder.start(dir / "big"));
  give(recorder, std::string(recorder_t::buffer_limit, 'x'));
  EXPECT_EQ(fs::file_size(dir / "big"), recorder_t::buffer_limit);
}

TEST_F(recorder_test, rotates_by_size_without_splitting_a_chunk) {
  recorder_t recorder(queue, console);
  ASSERT_TRUE(recorder.start(dir / "s.nmea", record_rotation_t{100, 0}));
  give(recorder, std::string(60, 'a'));
  give(recorder, std::string(40, 'b'));
  console.now += 5;
  give(recorder, std::string(1, 'c'));
  give(recorder, std::string(300, 'd'));
  recorder.stop();
  EXPECT_EQ(read_file(dir / "s-20261123T224000Z.nmea"), std::string(60, 'a') + std::string(40, 'b'));
  EXPECT_EQ(read_file(dir / "s-20261123T224005Z.nmea"), "c");
  EXPECT_EQ(read_file(dir / "s-20261123T224005Z-2.nmea"), std::string(300, 'd'));
}

TEST_F(recorder_test, rotates_on_the_hour) {
  recorder_t recorder(queue, console);
  ASSERT_TRUE(recorder.start(dir / "h.ubx", record_rotation_t{0, 3600}));
  give(recorder, "a");
  console.now += 19 * 60 + 59;  // 22:59:59
  give(recorder, "b");
  console.now += 1;
  give(recorder, "c");
  recorder.stop();
  EXPECT_EQ(read_file(dir / "h-20261123T224000Z.ubx"), "ab");
  EXPECT_EQ(read_file(dir / "h-20261123T230000Z.ubx"), "c");
}

// Each failure stops the recording with a line saying why and keeps what was written.
TEST_F(recorder_test, stops_and_says_why_when_the_file_cannot_be_written) {
  {
    recorder_t recorder(queue, console);
    ASSERT_TRUE(recorder.start("/dev/full"));
    give(recorder, "$GPGGA\n");
    queue.advance(recorder_t::flush_interval_s);
    EXPECT_FALSE(recorder.recording());
    EXPECT_EQ(console.lines.back(), "2026-11-23 22:40:00 +0000  recording stopped: /dev/full: No space left on device");
  }
  {
    recorder_t recorder(queue, console);
    EXPECT_FALSE(recorder.start(dir / "missing" / "r.nmea"));
    EXPECT_FALSE(recorder.recording());
    EXPECT_EQ(console.lines.back(), "2026-11-23 22:40:00 +0000  cannot record to " + (dir / "missing/r.nmea").string() +
                                        ": No such file or directory");
  }
  {
    recorder_t recorder(queue, console);
    const auto path = dir / "gone.nmea";
    ASSERT_TRUE(recorder.start(path));
    give(recorder, "kept");
    queue.advance(recorder_t::flush_interval_s);
    fs::remove(path);
    give(recorder, "lost");
    queue.advance(recorder_t::flush_interval_s);
    EXPECT_FALSE(recorder.recording());
    EXPECT_EQ(console.lines.back(),
              "2026-11-23 22:40:00 +0000  recording stopped: " + path.string() + ": the file was removed");
  }
  EXPECT_EQ(queue.delayed_count(), 0U);
}

}  // namespace

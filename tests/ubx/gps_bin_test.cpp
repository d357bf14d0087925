#include "ubx/gps_bin.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <tuple>
#include <utility>
#include <variant>

#include "support/records.h"

namespace {

using bytes_t = std::vector<std::uint8_t>;
using R = gps_bin_return_t;

// Each receiver call as it came: which receiver, and the whole record it was given.
using call_t = std::pair<char, std::variant<gps_posllh_t, gps_pvt_t>>;

struct recorder_t final : gps_protocol_bin_t {
  recorder_t(std::vector<call_t>& calls, char name) : calls(calls), name(name) {}
  void update_posllh(const gps_posllh_t& r) override { calls.push_back({name, r}); }
  void update_pvt(const gps_pvt_t& r) override { calls.push_back({name, r}); }
  std::vector<call_t>& calls;
  char name;
};

using sky_call_t = std::variant<gps_dop_t, gps_sat_t, gps_sig_t>;

struct sky_recorder_t final : gps_protocol_sky_t {
  void update_dop(const gps_dop_t& r) override { calls.emplace_back(r); }
  void update_sat(const gps_sat_t& r) override { calls.emplace_back(r); }
  void update_sig(const gps_sig_t& r) override { calls.emplace_back(r); }
  std::vector<sky_call_t> calls;
};

bytes_t operator+(bytes_t a, const bytes_t& b) {
  a.insert(a.end(), b.begin(), b.end());
  return a;
}

gps_posllh_t valid_posllh() {
  return {ubx_class_nav, gps_posllh_t::message_id, gps_posllh_t::payload_length, 0, -1225000000, 481234567};
}

class gps_bin_test : public ::testing::Test {
protected:
  std::vector<call_t> log;
  recorder_t first{log, 'a'};
  recorder_t second{log, 'b'};
  gps_bin_t bin{{&first, &second}};
  const bytes_t pvt = frame_of(image_of(valid_pvt()));
  const bytes_t posllh = frame_of(image_of(valid_posllh()));
};

TEST_F(gps_bin_test, one_byte_per_call) {
  EXPECT_EQ(bin.decode({}), R::need_more_data);
  for (std::size_t i = 0; i + 1 < pvt.size(); ++i) ASSERT_EQ(bin.decode(std::span(&pvt[i], 1)), R::need_more_data) << i;
  EXPECT_EQ(bin.decode(std::span(&pvt.back(), 1)), R::ok);
  EXPECT_EQ(log, (std::vector<call_t>{{'a', valid_pvt()}, {'b', valid_pvt()}}));
}

// Text around and between frames is skipped. A byte that breaks the sync is dropped: the frame it
// stood before is lost, the next one is found. The frames reach both receivers, in order.
TEST_F(gps_bin_test, frames_are_found_among_other_bytes_and_reach_the_receivers_in_order) {
  const std::string text = "$GPGGA,123519,4807.038,N,01131.000,E,1,08,0.9,545.4,M,46.9,M,,*47\r\n";
  const bytes_t line(text.begin(), text.end());
  EXPECT_EQ(bin.decode(line + posllh + line + bytes_t{0xB5} + posllh + pvt), R::ok);
  EXPECT_EQ(std::tuple(bin.type, bin.decoded_type), std::tuple(gps_bin_format_t::pvt, gps_bin_format_t::pvt));
  EXPECT_EQ(
      log, (std::vector<call_t>{{'a', valid_posllh()}, {'b', valid_posllh()}, {'a', valid_pvt()}, {'b', valid_pvt()}}));
}

TEST_F(gps_bin_test, the_last_event_of_a_chunk_is_its_result) {
  EXPECT_EQ(bin.decode(posllh + bytes_t{0xB5, 0x62, 0x01, 0x03}), R::unsupported_type) << "another message begins";
  EXPECT_EQ(log.size(), 2u) << "the frame before still reached the receivers";
  EXPECT_EQ(bin.decoded_type, gps_bin_format_t::posllh) << "the record the log shows";
  EXPECT_EQ(bin.decode(pvt + bytes_t{0xB5, 0x62, 0x01, 0x02}), R::ok) << "a frame in progress is no event";
  EXPECT_EQ(std::tuple(bin.type, bin.decoded_type), std::tuple(gps_bin_format_t::posllh, gps_bin_format_t::pvt))
      << "the frame in progress; the record whose decoding gave the result";
}

TEST_F(gps_bin_test, a_wrong_ck_a_fails_at_once_and_ck_b_is_hunted_through) {
  auto bad = posllh;
  bad[bad.size() - 2] ^= 0xFF;
  EXPECT_EQ(bin.decode(bad), R::chk_invalid);
  bad.pop_back();
  EXPECT_EQ(bin.decode(bad + pvt), R::ok) << "a frame right after a wrong CK_A is not taken for its CK_B";
  EXPECT_EQ(log, (std::vector<call_t>{{'a', valid_pvt()}, {'b', valid_pvt()}}));
  auto bad_b = pvt;
  bad_b.back() ^= 0x01;
  EXPECT_EQ(bin.decode(bad_b), R::chk_invalid);
  EXPECT_EQ(log.size(), 2u);
}

TEST_F(gps_bin_test, length_plausibility_and_type_are_checked_after_the_checksum) {
  auto short_length = valid_pvt();
  short_length.length = 84;
  EXPECT_EQ(bin.decode(frame_of(image_of(short_length))), R::invalid_length);
  EXPECT_EQ(bin.pvt.length, 84) << "the rejected image is kept";
  auto implausible = valid_posllh();
  implausible.lat = 900000001;
  EXPECT_EQ(bin.decode(frame_of(image_of(implausible))), R::invalid_data);
  EXPECT_EQ(std::tuple(log.size(), bin.decoded_type), std::tuple(0u, gps_bin_format_t::none));
  // Frames of other messages are skipped, their bodies hunted through for the next frame.
  const auto unsupported = frame_of(bytes_t{0x01, 0x03, 4, 0, 0, 0, 0, 0});
  EXPECT_EQ(bin.decode(unsupported), R::unsupported_type);
  EXPECT_EQ(bin.decode(unsupported + pvt), R::ok);
  EXPECT_EQ(bin.decode(frame_of(bytes_t{0x02, 0x07, 4, 0, 0, 0, 0, 0})), R::unsupported_type) << "another class";
}

class sky_frames_test : public gps_bin_test {
protected:
  sky_recorder_t sky;
  gps_bin_t bin{{&first}, {&sky}};
  const gps_sat_t sat = list_record<gps_sat_t>({{0, 5, 38, 45, 123, -12, 0x1F}, {6, 1, 30, -91, 0, 3, 0x17}});
  const gps_sig_t sig = list_record<gps_sig_t>({{2, 11, 1, 0, 4, 44, 7, 0, 0, 0x29, 0}});
  const gps_dop_t dop{
      ubx_class_nav, gps_dop_t::message_id, gps_dop_t::payload_length, 7, 156, 145, 77, 127, 91, 61, 68};
};

// To the chunk's result and the log a sky record is what any other message was: unsupported from
// its class and id on, whether it is then decoded or dropped.
TEST_F(sky_frames_test, reach_the_sky_receivers_alone_and_leave_the_result_and_log_as_before) {
  const bytes_t sat_frame = frame_of(image_of(sat)), sig_frame = frame_of(image_of(sig));
  const bytes_t frames = sat_frame + sig_frame + frame_of(image_of(dop));
  EXPECT_EQ(bin.decode(pvt + frames), R::unsupported_type);
  EXPECT_EQ(std::tuple(log, bin.decoded_type),
            std::tuple(std::vector<call_t>{{'a', valid_pvt()}}, gps_bin_format_t::pvt));
  EXPECT_EQ(sky.calls, (std::vector<sky_call_t>{sat, sig, dop}));
  std::vector<std::size_t> unsupported_at;
  for (std::size_t i = 0; i < frames.size(); ++i) {
    const auto r = bin.decode(std::span(&frames[i], 1));
    if (r != R::need_more_data) unsupported_at.push_back(r == R::unsupported_type ? i : 9999);
  }
  EXPECT_EQ(unsupported_at,
            (std::vector<std::size_t>{3, sat_frame.size() + 3, sat_frame.size() + sig_frame.size() + 3}));
  EXPECT_EQ(sky.calls.size(), 6u) << "byte by byte as in one chunk";
}

TEST_F(sky_frames_test, bad_lengths_counts_versions_and_checksums_are_dropped) {
  auto bad_checksum = frame_of(image_of(sig));
  bad_checksum.back() ^= 1;
  auto miscounted = sat;
  miscounted.count = 3;
  auto old_version = sat;
  old_version.version = 0;
  auto short_dop = dop;
  short_dop.length = 17;
  auto torn = image_of(sat);  // a length of no whole number of entries: the frame ends at its header
  torn[2] = 8 + 12 + 5;
  EXPECT_EQ(bin.decode(bad_checksum + frame_of(image_of(miscounted)) + frame_of(image_of(old_version)) +
                       frame_of(image_of(short_dop)) + frame_of(torn) + pvt),
            R::ok);
  EXPECT_TRUE(sky.calls.empty());
  EXPECT_EQ(log.size(), 1u);
  auto too_many = image_of(sig);
  too_many[2] = 0x08, too_many[3] = 0x10;  // 256 signals: one more than a count can say
  EXPECT_EQ(bin.decode(frame_of(too_many) + pvt), R::ok);
  EXPECT_TRUE(sky.calls.empty());
}

TEST_F(sky_frames_test, the_satellites_of_a_real_capture) {
  const auto path = std::filesystem::path(KORVID_LOGS_DIR) / "ublox-neo-m8n.log";
  std::ifstream in(path, std::ios::binary);
  if (!in) GTEST_SKIP() << "no receiver capture at " << path;
  const bytes_t capture{std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
  bin.decode(capture);
  ASSERT_EQ(std::tuple(sky.calls.size(), log.size()), std::tuple(5u, 24u));
  const auto& first_sat = std::get<gps_sat_t>(sky.calls.front());
  EXPECT_EQ(std::tuple(first_sat.count, first_sat.entries.size()), std::tuple(28, 28u));
}

}  // namespace

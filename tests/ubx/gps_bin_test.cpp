#include "ubx/gps_bin.h"

#include <gtest/gtest.h>

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

}  // namespace

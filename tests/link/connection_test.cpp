#include "link/connection.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <cstring>
#include <string>
#include <vector>

#include "support/fake_links.h"
#include "support/records.h"
#include "support/recording_console.h"
#include "support/test_queue.h"

namespace {

const std::string gga = "$GPGGA,123519,4807.038,N,01131.000,E,1,08,0.9,545.4,M,46.9,M,,*47";
const std::string rmc = "$GPRMC,123519,A,4807.038,N,01131.000,E,022.4,084.4,230394,003.1,W*6A";

class hub_test : public ::testing::Test {
protected:
  test_queue_t queue;
  recording_console_t console;
  fake_links_t links;
  connection_t hub{queue, console, links};

  std::string with_checksum(const std::string& body) {
    unsigned sum = 0;
    for (char c : body.substr(1)) sum ^= static_cast<unsigned char>(c);
    char digits[4];
    std::snprintf(digits, sizeof digits, "%02X", sum);
    return body + "*" + digits;
  }
};

TEST_F(hub_test, gga_is_logged_other_sentences_only_with_show_all) {
  hub.receive_line(gga);
  hub.receive_line(rmc);
  ASSERT_EQ(hub.arr_rx->size(), 1u);
  EXPECT_EQ((*hub.arr_rx)[0], gga);
  hub.show_all = true;
  hub.receive_line(rmc);
  EXPECT_EQ(hub.arr_rx->back(), rmc);
}

TEST_F(hub_test, drops_what_is_not_a_valid_sentence_after_counting_candidates) {
  const struct {
    std::string line;
    bool counted;
  } dropped[] = {
      {"", false},
      {"GPGGA,1*00", false},
      {"!AIVDM,1*00", false},
      {"$GPGGA*56", true},                                     // 9 characters
      {gga.substr(0, gga.size() - 2) + "48", true},
      {gga.substr(0, gga.size() - 1), true},
      {gga + "0", true},
  };
  for (const auto& c : dropped) {
    const auto before = hub.msg_ack_count;
    hub.receive_line(c.line);
    EXPECT_EQ(hub.msg_ack_count, before + (c.counted ? 1 : 0)) << c.line;
  }
  EXPECT_TRUE(hub.arr_rx->empty());
  EXPECT_FALSE(hub.msg_ack);
}

TEST_F(hub_test, line_limits_are_10_and_80_characters) {
  // 10 characters with a valid checksum reach the decoders; 81 do not.
  const auto ten = with_checksum("$GPAB,");
  ASSERT_EQ(ten.size(), 9u);
  const auto ten_chars = with_checksum("$GPABC,");
  ASSERT_EQ(ten_chars.size(), 10u);
  auto line80 = with_checksum("$GPGGA," + std::string(80 - 10, '1'));
  ASSERT_EQ(line80.size(), 80u);
  auto line81 = with_checksum("$GPGGA," + std::string(81 - 10, '1'));
  ASSERT_EQ(line81.size(), 81u);

  hub.receive_line(ten);
  EXPECT_FALSE(hub.msg_ack) << "9 characters are too short";
  hub.receive_line(line81);
  EXPECT_FALSE(hub.msg_ack) << "81 characters are too long";
  EXPECT_EQ(hub.msg_ack_count, 2u);
  hub.receive_line(ten_chars);
  EXPECT_TRUE(hub.msg_ack) << "10 characters are enough";
  hub.receive_line(line80);
  EXPECT_EQ(hub.msg_good, 1u);
  EXPECT_EQ(hub.arr_rx->back(), line80);
}

TEST_F(hub_test, line_limits_count_characters_not_bytes) {
  // 78 characters of which one is two bytes long: 80 characters, 81 bytes.
  auto line = with_checksum("$GPGGA," + std::string(69, '1') + "\xC3\xA9");
  ASSERT_EQ(line.size(), 81u);
  hub.receive_line(line);
  EXPECT_TRUE(hub.msg_ack);
}

TEST_F(hub_test, ten_bad_lines_leave_the_stream_unacknowledged_the_eleventh_acknowledges) {
  const auto bad = gga.substr(0, gga.size() - 2) + "00";
  for (int i = 0; i < 10; ++i) hub.receive_line(bad);
  EXPECT_FALSE(hub.msg_ack);
  EXPECT_EQ(hub.msg_count, 0u);
  EXPECT_EQ(hub.msg_ack_count, 10u);
  hub.receive_line(bad);
  EXPECT_TRUE(hub.msg_ack);
  EXPECT_EQ(hub.msg_count, 0u);
  hub.receive_line(bad);
  EXPECT_EQ(hub.msg_count, 1u);
  EXPECT_EQ(hub.msg_good, 0u);
}

TEST_F(hub_test, the_first_valid_sentence_acknowledges_without_being_counted_good) {
  hub.receive_line(gga);
  EXPECT_TRUE(hub.msg_ack);
  EXPECT_EQ(hub.msg_ack_count, 1u);
  EXPECT_EQ(hub.msg_count, 0u);
  EXPECT_EQ(hub.msg_good, 0u);
  hub.receive_line(gga);
  EXPECT_EQ(hub.msg_count, 1u);
  EXPECT_EQ(hub.msg_good, 1u);
}

TEST_F(hub_test, good_may_exceed_count_when_the_eleventh_candidate_is_valid) {
  const auto bad = gga.substr(0, gga.size() - 2) + "00";
  for (int i = 0; i < 10; ++i) hub.receive_line(bad);
  hub.receive_line(gga);  // its candidate count acknowledges; then it counts as good
  EXPECT_EQ(hub.msg_count, 0u);
  EXPECT_EQ(hub.msg_good, 1u);
  EXPECT_EQ(hub.crc_error_text(), "");
}

TEST_F(hub_test, log_keeps_30_entries_hidden_and_40_shown) {
  for (int i = 0; i < 31; ++i) hub.receive_line(gga);
  EXPECT_EQ(hub.arr_rx->size(), 30u);
  hub.set_log_shown(true);
  for (int i = 0; i < 20; ++i) hub.receive_line(gga);
  EXPECT_EQ(hub.arr_rx->size(), 40u);
  hub.set_log_shown(false);
  EXPECT_EQ(hub.arr_rx->size(), 40u) << "trimmed only at the next append";
  hub.receive_line(gga);
  EXPECT_EQ(hub.arr_rx->size(), 30u);
}

TEST_F(hub_test, crc_error_text) {
  const struct {
    std::uint64_t count, good;
    bool show;
    const char* text;
  } cases[] = {
      {200, 194, true, "3%  "}, {200, 194, false, ""}, {200, 200, true, ""}, {0, 0, true, ""},
      {3, 1, true, "67%  "},    {1000, 999, true, "0%  "}, {5, 6, true, ""},  {1, 0, true, "100%  "},
  };
  for (const auto& c : cases) {
    hub.msg_count = c.count;
    hub.msg_good = c.good;
    hub.show_crc = c.show;
    EXPECT_EQ(hub.crc_error_text(), c.text) << c.count << "/" << c.good;
  }
}

TEST_F(hub_test, reset_clears_log_and_counters_but_not_the_links) {
  hub.connect_tcp("127.0.0.1", 10110);
  hub.tcp_connected("127.0.0.1", 10110);
  for (int i = 0; i < 5; ++i) hub.receive_line(gga);
  hub.reset();
  EXPECT_TRUE(hub.arr_rx->empty());
  EXPECT_EQ(hub.msg_count + hub.msg_good + hub.msg_ack_count, 0u);
  EXPECT_FALSE(hub.msg_ack);
  EXPECT_EQ(hub.status_tcp.get(), "127.0.0.1:10110");
  EXPECT_EQ(links.tcp->stops, 0);
  EXPECT_EQ(console.lines.back(), "reset");
}

TEST_F(hub_test, status_texts_and_colours_follow_the_links) {
  hub.connect_tcp("127.0.0.1", 81);
  EXPECT_EQ(hub.status_tcp.get(), "Connect 127.0.0.1:81");
  EXPECT_EQ(hub.sta_fg_tcp.get(), colour_t::green);
  EXPECT_EQ(console.lines.back(), "2026-01-01 12:00:00 +0000  Connect 127.0.0.1:81");
  hub.tcp_connected("127.0.0.1", 81);
  EXPECT_EQ(hub.status_tcp.get(), "127.0.0.1:81");
  EXPECT_EQ(hub.sta_fg_tcp.get(), colour_t::secondary);

  hub.connect_ble("Thingy:91 UART");
  EXPECT_EQ(hub.status_ble.get(), "BLE scanning...");
  EXPECT_EQ(hub.sta_fg_ble.get(), colour_t::green);
  EXPECT_EQ(links.ble->name_connect, "Thingy:91 UART");
  EXPECT_TRUE(links.ble->is_enabled);
  hub.ble_connected("Thingy:91 UART");
  EXPECT_EQ(hub.status_ble.get(), "Thingy:91 UART");
  EXPECT_EQ(hub.sta_fg_ble.get(), colour_t::secondary);
  hub.ble_disconnected("Thingy:91 UART");
  EXPECT_EQ(hub.status_ble.get(), "BLE scanning...");
  EXPECT_EQ(hub.sta_fg_ble.get(), colour_t::red);
  EXPECT_EQ(console.lines.back(), "2026-01-01 12:00:00 +0000  disconnected from Thingy:91 UART");

  hub.disconnect();
  EXPECT_EQ(hub.status_tcp.get(), "offline");
  EXPECT_EQ(hub.status_ble.get(), "offline");
  EXPECT_EQ(hub.sta_fg_tcp.get(), colour_t::accent);
  EXPECT_EQ(hub.sta_fg_ble.get(), colour_t::accent);
  EXPECT_EQ(links.tcp->stops, 1);
  EXPECT_EQ(links.ble->stops, 1);
}

TEST_F(hub_test, link_up_clears_log_and_counters) {
  for (int i = 0; i < 3; ++i) hub.receive_line(gga);
  hub.ble_connected("x");
  EXPECT_TRUE(hub.arr_rx->empty());
  EXPECT_FALSE(hub.msg_ack);
  EXPECT_EQ(hub.msg_good, 0u);
}

TEST_F(hub_test, connect_while_connected_only_prints) {
  hub.connect_tcp("127.0.0.1", 81);
  links.tcp->is_valid = true;
  hub.connect_tcp("127.0.0.1", 81);
  EXPECT_EQ(console.lines.back(), "already connected");
  EXPECT_EQ(links.tcp->connects.size(), 1u);
  EXPECT_EQ(hub.status_tcp.get(), "Connect 127.0.0.1:81");
}

TEST_F(hub_test, a_refused_connection_is_shown_in_red_and_retried_every_4_s_until_disconnect) {
  hub.connect_tcp("127.0.0.1", 9);
  hub.tcp_error("127.0.0.1", 9, ECONNREFUSED);
  EXPECT_EQ(hub.status_tcp.get(), std::strerror(ECONNREFUSED));
  EXPECT_EQ(hub.sta_fg_tcp.get(), colour_t::red);
  EXPECT_EQ(console.lines.back(), "2026-01-01 12:00:00 +0000  connect 127.0.0.1:9  " +
                                      std::to_string(ECONNREFUSED) + " " + std::strerror(ECONNREFUSED));
  queue.advance(3.9);
  EXPECT_EQ(links.tcp->connects.size(), 1u);
  queue.advance(0.1);
  EXPECT_EQ(links.tcp->connects.size(), 2u);
  EXPECT_EQ(hub.status_tcp.get(), "Connect 127.0.0.1:9");

  for (int attempt = 3; attempt <= 5; ++attempt) {
    hub.tcp_error("127.0.0.1", 9, ECONNREFUSED);
    queue.advance(4.0);
    EXPECT_EQ(links.tcp->connects.size(), static_cast<std::size_t>(attempt));
  }
  hub.tcp_error("127.0.0.1", 9, ECONNREFUSED);
  hub.disconnect();
  queue.advance(10.0);
  EXPECT_EQ(links.tcp->connects.size(), 5u);
  EXPECT_EQ(queue.delayed_count(), 0u);
}

TEST_F(hub_test, no_retry_once_the_link_came_up) {
  hub.connect_tcp("127.0.0.1", 9);
  hub.tcp_error("127.0.0.1", 9, ECONNRESET);
  links.tcp->is_valid = true;
  queue.advance(4.0);
  EXPECT_EQ(links.tcp->connects.size(), 1u);
}

TEST_F(hub_test, bridge_forwards_only_to_a_link_that_is_up) {
  const std::vector<std::uint8_t> bytes = {'$', 'A', '\n'};
  hub.tcp_bridge(bytes);
  hub.ble_bridge(bytes);
  EXPECT_EQ(links.ble, nullptr) << "a link never created is not created to drop bytes";
  EXPECT_EQ(links.tcp, nullptr);
  hub.ble();
  hub.tcp_client();
  hub.tcp_bridge(bytes);
  hub.ble_bridge(bytes);
  EXPECT_TRUE(links.ble->written.empty());
  EXPECT_TRUE(links.tcp->sent.empty());
  links.ble->ready = true;
  links.tcp->is_valid = true;
  hub.tcp_bridge(bytes);
  hub.ble_bridge(bytes);
  EXPECT_EQ(links.ble->written, std::vector<std::vector<std::uint8_t>>{bytes});
  EXPECT_EQ(links.tcp->sent, std::vector<std::vector<std::uint8_t>>{bytes});
}

TEST_F(hub_test, tcp_lines_switch_back_to_text_and_go_line_by_line) {
  hub.binary = true;
  const std::string lines[] = {gga, "junk", gga};
  hub.tcp_lines(lines);
  EXPECT_FALSE(hub.binary);
  EXPECT_EQ(hub.arr_rx->size(), 2u);
}

TEST_F(hub_test, re_emits_its_decoders_notices) {
  int notices = 0;
  auto sub = hub.subscribe([&] { ++notices; });
  // Not logged: every notice comes from the RMC decoder.
  hub.receive_line(with_checksum("$GNRMC,123519.00,A,4807.03800,N,01131.00000,E,0.022,84.4,230394,,,A"));
  EXPECT_EQ(notices, 3) << "lat, lon and speed_knots are published";
}

TEST_F(hub_test, a_decoded_record_replaces_the_log_and_errors_follow_it) {
  for (int i = 0; i < 3; ++i) hub.receive_line(gga);
  const auto frame = frame_of(image_of(valid_pvt()));
  hub.tcp_binary(frame);
  EXPECT_TRUE(hub.binary);
  ASSERT_EQ(hub.arr_rx->size(), 1u);
  EXPECT_EQ((*hub.arr_rx)[0].substr(0, 40), "cls 1  id 7      PVT  len 92            ");
  EXPECT_EQ(hub.gga.fix_text(), "3D fix") << "the record reached the decoders";
  EXPECT_EQ(hub.msg_good, 3u);

  auto bad = frame;
  bad.back() ^= 0xFF;
  hub.receive_arr(bad);
  ASSERT_EQ(hub.arr_rx->size(), 2u);
  EXPECT_EQ((*hub.arr_rx)[1], "[2026-01-01 12:00:00 +0000  binary packet: checksum invalid]");
  EXPECT_EQ(hub.msg_count, 4u) << "counted, not good";
  EXPECT_EQ(hub.msg_good, 3u);
}

TEST_F(hub_test, binary_chunks_without_a_frame_end_count_nothing) {
  image_writer_t other;
  other.u8(0x01).u8(0x03);
  hub.receive_arr(frame_of(other.bytes));
  const auto frame = frame_of(image_of(valid_pvt()));
  hub.receive_arr(std::span(frame).first(50));
  EXPECT_EQ(hub.msg_ack_count, 0u);
  EXPECT_TRUE(hub.arr_rx->empty());
  hub.receive_arr(std::span(frame).subspan(50));
  EXPECT_TRUE(hub.msg_ack) << "the first good record acknowledges the stream";
  EXPECT_EQ(hub.msg_good, 1u);
  EXPECT_EQ(hub.msg_count, 1u);
}

}  // namespace

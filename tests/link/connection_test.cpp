#include "link/connection.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <cstring>
#include <map>
#include <string>
#include <tuple>
#include <vector>

#include "link/serial_link.h"
#include "support/fake_links.h"
#include "support/link_feed.h"
#include "support/recording_console.h"
#include "support/records.h"
#include "support/sentences.h"
#include "support/test_queue.h"

namespace {

using bytes_t = std::vector<std::uint8_t>;

const std::string gga = "$GPGGA,123519,4807.038,N,01131.000,E,1,08,0.9,545.4,M,46.9,M,,*47";
const std::string rmc = "$GPRMC,123519,A,4807.038,N,01131.000,E,022.4,084.4,230394,003.1,W*6A";
const std::string bad_gga = gga.substr(0, gga.size() - 2) + "00";

// The counters as one text: the candidates before acknowledgement, "ack" once the stream is
// acknowledged, then the counted and the good messages ("11 ack 1 0").
std::string counts(const connection_t& hub) {
  return std::to_string(hub.msg_ack_count) + (hub.msg_ack ? " ack " : " - ") + std::to_string(hub.msg_count) + " " +
         std::to_string(hub.msg_good);
}

class hub_test : public ::testing::Test {
protected:
  void line(const std::string& text, int times = 1) {
    for (int i = 0; i < times; ++i) feed_line(hub.tcp_events(), text);
  }

  test_queue_t queue;
  recording_console_t console;
  fake_links_t links;
  connection_t hub{queue, console, links};
};

TEST_F(hub_test, logs_gga_and_everything_else_only_with_show_all) {
  const struct {
    std::string line;
    bool show_all, logged;
  } cases[] = {
      {gga, false, true},
      {with_checksum("$GNGGA,123519,4807.038,N,01131.000,E,1,08,0.9,545.4,M,46.9,M,,"), false, true},
      {with_checksum("$GPTXT,see $GPGGA"), false, true},  // the tag anywhere in the line
      {with_checksum("$GPTXT,see $GPGG"), false, false},
      {with_checksum("$GPTXT,GPGGA,$GPGGX"), false, false},
      {rmc, false, false},
      {rmc, true, true},
      {bad_gga, true, false},
  };
  for (const auto& c : cases) {
    hub.show_all = c.show_all;
    const auto before = hub.arr_rx->size();
    line(c.line);
    ASSERT_EQ(hub.arr_rx->size(), before + (c.logged ? 1 : 0)) << c.line;
    if (c.logged) {
      EXPECT_EQ(hub.arr_rx->back(), c.line);
    }
  }
}

TEST_F(hub_test, drops_what_is_not_a_valid_sentence_after_counting_candidates) {
  const auto ten = with_checksum("$GPABC,");
  const auto line80 = with_checksum("$GPGGA," + std::string(70, '1'));
  const auto line81 = with_checksum("$GPGGA," + std::string(71, '1'));
  // 80 characters of which one is two bytes long: 81 bytes.
  const auto utf8_80 = with_checksum("$GPGGA," + std::string(69, '1') + "\xC3\xA9");
  ASSERT_EQ(ten.size(), 10u);
  ASSERT_EQ(line80.size(), 80u);
  ASSERT_EQ(utf8_80.size(), 81u);
  const std::pair<std::string, std::string> cases[] = {
      {"GPGGA,1*00", "0 - 0 0"}, {"!AIVDM,1*00", "0 - 0 0"}, {with_checksum("$GPAB,"), "1 - 0 0"},  // 9 characters
      {ten, "1 ack 0 0"},        {line80, "1 ack 0 0"},      {utf8_80, "1 ack 0 0"},
      {line81, "1 - 0 0"},       {bad_gga, "1 - 0 0"},       {gga.substr(0, gga.size() - 1), "1 - 0 0"},
      {gga + "0", "1 - 0 0"},
  };
  for (const auto& [line, expected] : cases) {
    connection_t fresh(queue, console, links);
    feed_line(fresh.tcp_events(), line);
    EXPECT_EQ(counts(fresh), expected) << line;
  }
}

// Each run starts a fresh hub and sends good ('g') and bad ('b') sentences in order: the first
// valid sentence or the eleventh candidate acknowledges the stream, and only then counting starts.
TEST_F(hub_test, candidates_acknowledge_the_stream_then_messages_are_counted) {
  const std::pair<std::string, std::string> cases[] = {
      {"g", "1 ack 0 0"},
      {"gg", "1 ack 1 1"},
      {"gbg", "1 ack 2 1"},
      {"bbbbbbbbbb", "10 - 0 0"},
      {"bbbbbbbbbbb", "11 ack 0 0"},
      {"bbbbbbbbbbbb", "11 ack 1 0"},
      {"bbbbbbbbbbg", "11 ack 0 1"},
      {"bbbbbbbbbbbg", "11 ack 1 1"},
  };
  for (const auto& [run, expected] : cases) {
    connection_t fresh(queue, console, links);
    for (const char kind : run) feed_line(fresh.tcp_events(), kind == 'g' ? gga : bad_gga);
    EXPECT_EQ(counts(fresh), expected) << run;
  }
}

TEST_F(hub_test, log_keeps_30_entries_hidden_and_40_shown) {
  line(gga, 31);
  EXPECT_EQ(hub.arr_rx->size(), 30u);
  hub.set_log_shown(true);
  line(gga, 20);
  EXPECT_EQ(hub.arr_rx->size(), 40u);
  hub.set_log_shown(false);
  EXPECT_EQ(hub.arr_rx->size(), 40u) << "trimmed only at the next append";
  line(gga);
  EXPECT_EQ(hub.arr_rx->size(), 30u);
}

TEST_F(hub_test, crc_error_text) {
  const struct {
    std::uint64_t count, good;
    const char* text;
  } cases[] = {
      {200, 194, "3%  "},  {200, 200, ""}, {0, 0, ""},       {3, 1, "67%  "},
      {1000, 999, "0%  "}, {5, 6, ""},     {1, 0, "100%  "},
  };
  for (const auto& c : cases) {
    hub.msg_count = c.count;
    hub.msg_good = c.good;
    EXPECT_EQ(hub.crc_error_text(), c.text) << c.count << "/" << c.good;
  }
}

TEST_F(hub_test, reset_clears_log_counters_and_decoders_but_not_the_links) {
  const std::string no_fix(hub.gga.fix_text());
  hub.connect_tcp("127.0.0.1", 10110);
  hub.tcp_events().link_up("127.0.0.1:10110");
  line(gga, 5);
  line(with_checksum("$GLGSV,1,1,01,65,40,090,35"));
  ASSERT_TRUE(hub.gga.fix_text() != no_fix && !hub.sky.satellites->empty());
  hub.reset();
  EXPECT_TRUE(hub.arr_rx->empty() && hub.sky.satellites->empty());
  EXPECT_EQ(counts(hub), "0 - 0 0");
  EXPECT_EQ(hub.gga.fix_text(), no_fix) << "every decoder is reset";
  EXPECT_EQ(hub.status_tcp.get(), "127.0.0.1:10110");
  EXPECT_EQ(links.tcp->stops, 0);
  EXPECT_EQ(console.lines.back(), "reset");
}

TEST_F(hub_test, status_texts_and_colours_follow_the_links) {
  hub.connect_tcp("127.0.0.1", 81);
  EXPECT_EQ(hub.status_tcp.get(), "Connect 127.0.0.1:81");
  EXPECT_EQ(hub.sta_fg_tcp.get(), colour_t::green);
  EXPECT_EQ(console.lines.back(), "2026-01-01 12:00:00 +0000  Connect 127.0.0.1:81");
  hub.tcp_events().link_up("127.0.0.1:81");
  EXPECT_EQ(hub.status_tcp.get(), "127.0.0.1:81");
  EXPECT_EQ(hub.sta_fg_tcp.get(), colour_t::secondary);
  EXPECT_EQ(console.lines.back(), "2026-01-01 12:00:00 +0000  connected to 127.0.0.1:81");

  hub.connect_ble("Thingy:91 UART");
  EXPECT_EQ(hub.status_ble.get(), "BLE scanning...");
  EXPECT_EQ(hub.sta_fg_ble.get(), colour_t::green);
  EXPECT_EQ(links.ble->name_connect, "Thingy:91 UART");
  EXPECT_TRUE(hub.ble_enabled());
  hub.ble_events().link_up("Thingy:91 UART");
  EXPECT_EQ(hub.status_ble.get(), "Thingy:91 UART");
  EXPECT_EQ(hub.sta_fg_ble.get(), colour_t::secondary);
  hub.ble_events().link_down("Thingy:91 UART", 0);
  EXPECT_EQ(hub.status_ble.get(), "BLE scanning...");
  EXPECT_EQ(hub.sta_fg_ble.get(), colour_t::red);
  EXPECT_EQ(console.lines.back(), "2026-01-01 12:00:00 +0000  disconnected from Thingy:91 UART");
  EXPECT_EQ(hub.status_tcp.get(), "127.0.0.1:81") << "the other link is untouched";
  EXPECT_EQ(queue.delayed_count(), 0u) << "Bluetooth rescans by itself";

  hub.disconnect();
  EXPECT_EQ(console.lines.back(), "2026-01-01 12:00:00 +0000  Disconnecting");
  EXPECT_EQ(hub.status_tcp.get(), "offline");
  EXPECT_EQ(hub.status_ble.get(), "offline");
  EXPECT_EQ(hub.sta_fg_tcp.get(), colour_t::accent);
  EXPECT_EQ(hub.sta_fg_ble.get(), colour_t::accent);
  EXPECT_EQ(links.tcp->stops, 1);
  EXPECT_EQ(links.ble->stops, 1);
  EXPECT_FALSE(hub.tcp_enabled() || hub.ble_enabled());
}

TEST_F(hub_test, a_link_coming_up_clears_the_log_and_counters_and_starts_as_text) {
  line(gga, 3);
  hub.tcp_events().link_bytes(bytes_t{0xB5, 0x62, 0x01});
  ASSERT_TRUE(hub.binary());
  hub.ble_events().link_up("x");
  EXPECT_TRUE(hub.arr_rx->empty());
  EXPECT_EQ(counts(hub), "0 - 0 0");
  line(gga);
  EXPECT_EQ(hub.msg_ack_count, 0u) << "the TCP link stays binary until it comes up again";
  hub.tcp_events().link_up("127.0.0.1:81");
  line(gga);
  EXPECT_FALSE(hub.binary());
  EXPECT_EQ(hub.arr_rx->back(), gga);
}

TEST_F(hub_test, connect_while_connected_only_prints) {
  hub.connect_tcp("127.0.0.1", 81);
  links.tcp->is_valid = true;
  hub.connect_tcp("127.0.0.1", 82);
  EXPECT_EQ(console.lines.back(), "already connected");
  EXPECT_EQ(links.tcp->connects, std::vector<std::string>{"127.0.0.1:81"});
}

TEST_F(hub_test, a_refused_connection_is_shown_in_red_and_retried_every_4_s_until_disconnect) {
  hub.connect_tcp("127.0.0.1", 9);
  hub.tcp_events().link_down("127.0.0.1:9", ECONNREFUSED);
  EXPECT_EQ(std::pair(hub.status_tcp.get(), hub.sta_fg_tcp.get()),
            std::pair(std::string(std::strerror(ECONNREFUSED)), colour_t::red));
  queue.advance(3.9);
  EXPECT_EQ(links.tcp->connects.size(), 1u);
  queue.advance(0.1);
  EXPECT_EQ(links.tcp->connects, (std::vector<std::string>{"127.0.0.1:9", "127.0.0.1:9"}));
  EXPECT_EQ(hub.status_tcp.get(), "Connect 127.0.0.1:9");
  hub.tcp_events().link_down("127.0.0.1:9", ECONNREFUSED);
  hub.disconnect();
  queue.advance(10.0);
  EXPECT_EQ(std::pair(links.tcp->connects.size(), queue.delayed_count()), std::pair(std::size_t{2}, std::size_t{0}));

  hub.connect_tcp("127.0.0.1", 9);
  hub.tcp_events().link_down("127.0.0.1:9", ECONNRESET);
  links.tcp->is_valid = true;
  queue.advance(4.0);
  EXPECT_EQ(links.tcp->connects.size(), 3u) << "no retry once the link came up";
}

TEST_F(hub_test, a_newer_connect_ends_the_retries_of_the_request_before) {
  hub.connect_tcp("127.0.0.1", 9);
  hub.tcp_events().link_down("127.0.0.1:9", ECONNREFUSED);
  queue.advance(2.0);
  hub.connect_tcp("10.0.0.1", 81);  // a slow host: no report within the old retry's 4 s
  queue.advance(2.0);
  EXPECT_EQ(links.tcp->connects, (std::vector<std::string>{"127.0.0.1:9", "10.0.0.1:81"}));
  EXPECT_EQ(hub.status_tcp.get(), "Connect 10.0.0.1:81");
  hub.tcp_events().link_down("10.0.0.1:81", ETIMEDOUT);
  queue.advance(4.0);
  EXPECT_EQ(links.tcp->connects, (std::vector<std::string>{"127.0.0.1:9", "10.0.0.1:81", "10.0.0.1:81"}));
}

TEST_F(hub_test, a_source_link_is_shown_retried_and_bridged_like_tcp) {
  const auto port = parse_source_url("serial:///dev/ttyACM0").address.value();
  hub.connect_source(port);
  EXPECT_EQ(std::pair(hub.status_source.get(), hub.sta_fg_source.get()),
            std::pair(std::string("Connect serial:///dev/ttyACM0"), colour_t::green));
  hub.source_events().link_status("detecting baud rate (38400)...");
  EXPECT_EQ(hub.status_source.get(), "detecting baud rate (38400)...");
  hub.source_events().link_down("/dev/ttyACM0", EACCES);
  EXPECT_EQ(std::pair(hub.status_source.get(), hub.sta_fg_source.get()),
            std::pair(serial_error_text(EACCES), colour_t::red));
  EXPECT_EQ(console.lines.back().substr(25), "  connect /dev/ttyACM0  13 " + serial_error_text(EACCES));
  queue.advance(4.0);
  EXPECT_EQ(links.source->opens, 2);
  hub.source_events().link_down("/dev/ttyACM0", ENODEV);
  hub.disconnect();
  queue.advance(8.0);
  EXPECT_EQ(std::pair(links.source->opens, hub.status_source.get()), std::pair(2, std::string("offline")));

  hub.connect_source(port);
  links.source->is_valid = true;
  hub.source_events().link_up("/dev/ttyACM0 at 38400 baud");
  EXPECT_EQ(std::pair(hub.status_source.get(), hub.sta_fg_source.get()),
            std::pair(std::string("/dev/ttyACM0 at 38400 baud"), colour_t::secondary));
  EXPECT_TRUE(hub.source_side_up());
  hub.tcp_client().connect("127.0.0.1", 2101);
  links.tcp->is_valid = true;
  const bytes_t fix = {'$', 'A', '\n'}, correction = {0xD3, 0x00};
  hub.source_events().link_bytes(fix);
  hub.tcp_events().link_bytes(correction);
  EXPECT_EQ(std::pair(links.tcp->sent, links.source->sent),
            std::pair(std::vector<bytes_t>{fix}, std::vector<bytes_t>{correction}));

  links.sources = false;
  hub.connect_source(parse_source_url("udp://:10110").address.value());
  EXPECT_EQ(std::pair(hub.status_source.get(), hub.sta_fg_source.get()),
            std::pair(std::string("not available"), colour_t::red));
}

TEST_F(hub_test, a_retry_still_pending_when_the_hub_goes_does_nothing) {
  auto gone = std::make_unique<connection_t>(queue, console, links);
  gone->connect_tcp("127.0.0.1", 9);
  gone->tcp_events().link_down("127.0.0.1:9", ECONNREFUSED);
  gone.reset();
  const auto said = console.lines.size();
  queue.advance(4.0);
  EXPECT_EQ(console.lines.size(), said) << "no connect attempt";
}

TEST_F(hub_test, bridge_forwards_raw_bytes_only_to_a_link_that_is_up) {
  const bytes_t text = {'$', 'A', '\r', '\n'};
  const bytes_t binary = {0xB5, 0x62, 0x01};
  auto both_ways = [&](const bytes_t& bytes) {
    hub.tcp_events().link_bytes(bytes);
    hub.ble_events().link_bytes(bytes);
  };
  both_ways(text);
  EXPECT_EQ(links.ble, nullptr) << "a link never created is not created to drop bytes";
  EXPECT_EQ(links.tcp, nullptr);
  hub.ble();
  hub.tcp_client();
  both_ways(text);
  EXPECT_TRUE(links.ble->written.empty());
  EXPECT_TRUE(links.tcp->sent.empty());
  links.ble->ready = true;
  links.tcp->is_valid = true;
  both_ways(text);
  hub.tcp_events().link_bytes(binary);
  EXPECT_EQ(links.ble->written, (std::vector<bytes_t>{text, binary}));
  EXPECT_EQ(links.tcp->sent, (std::vector<bytes_t>{text})) << "a link's own bytes never go back to it";
}

TEST_F(hub_test, taps_see_every_chunk_and_commands_go_to_the_receiver_not_the_bridge_peer) {
  struct tap_t final : receive_tap_t {
    void received(std::span<const std::uint8_t> bytes) override { seen.emplace_back(bytes.begin(), bytes.end()); }
    std::vector<bytes_t> seen;
  } tap;
  const bytes_t text = {'$', 'A', '\n'}, binary = {0xB5, 0x62}, command = {'$', 'C'};
  hub.add_tap(tap);
  hub.tcp_events().link_bytes(text);
  hub.ble_events().link_bytes(binary);
  hub.remove_tap(tap);
  hub.tcp_events().link_bytes(text);
  EXPECT_EQ(tap.seen, (std::vector<bytes_t>{text, binary}));

  EXPECT_FALSE(hub.send_to_receiver(command)) << "no link wanted";
  hub.connect_tcp("127.0.0.1", 10110);
  links.tcp->is_valid = true;
  EXPECT_TRUE(hub.send_to_receiver(command));
  hub.connect_ble("receiver");
  links.ble->ready = true;
  EXPECT_TRUE(hub.send_to_receiver(command));
  hub.connect_source(parse_source_url("serial:///dev/ttyACM0").address.value());
  links.source->is_valid = true;
  EXPECT_TRUE(hub.send_to_receiver(command));
  EXPECT_EQ(std::tuple(links.tcp->sent.size(), links.ble->written.size(), links.source->sent.size()),
            std::tuple(1U, 1U, 1U));
}

TEST_F(hub_test, re_emits_its_decoders_notices) {
  const struct {
    std::string line;
    int notices;
  } cases[] = {
      // lat, lon and speed_knots are published; the RMC sentence is not logged.
      {with_checksum("$GNRMC,123519.00,A,4807.03800,N,01131.00000,E,0.022,84.4,230394,,,A"), 3},
      {with_checksum("$GPVTG,054.7,T,034.4,M,005.5,N,010.2,K,A"), 4},  // both tracks, both speeds
  };
  for (const auto& c : cases) {
    int notices = 0;
    auto sub = hub.subscribe([&] { ++notices; });
    line(c.line);
    EXPECT_EQ(notices, c.notices) << c.line;
  }
}

TEST_F(hub_test, a_decoded_record_replaces_the_log_and_errors_follow_it) {
  line(gga, 3);
  const auto frame = frame_of(image_of(valid_pvt()));
  hub.tcp_events().link_bytes(frame);
  EXPECT_TRUE(hub.binary());
  ASSERT_EQ(hub.arr_rx->size(), 1u);
  EXPECT_EQ((*hub.arr_rx)[0].substr(0, 40), "cls 1  id 7      PVT  len 92            ");
  EXPECT_EQ(hub.gga.fix_text(), "3D fix") << "the record reached the decoders";
  EXPECT_EQ(counts(hub), "1 ack 3 3") << "a record counts as a good message";

  auto bad = frame;
  bad.back() ^= 0xFF;
  hub.tcp_events().link_bytes(bad);
  ASSERT_EQ(hub.arr_rx->size(), 2u);
  EXPECT_EQ((*hub.arr_rx)[1], "[2026-01-01 12:00:00 +0000  binary packet: checksum invalid]");
  EXPECT_EQ(counts(hub), "1 ack 4 3") << "counted, not good";
}

TEST_F(hub_test, binary_chunks_without_a_frame_end_count_nothing) {
  image_writer_t other;
  other.u8(0x01).u8(0x03);
  hub.tcp_events().link_bytes(frame_of(other.bytes));
  const auto frame = frame_of(image_of(valid_pvt()));
  hub.tcp_events().link_bytes(std::span(frame).first(50));
  EXPECT_EQ(counts(hub), "0 - 0 0");
  EXPECT_TRUE(hub.arr_rx->empty());
  hub.tcp_events().link_bytes(std::span(frame).subspan(50));
  EXPECT_EQ(counts(hub), "0 ack 1 1") << "the first good record acknowledges the stream";
}

// Each run feeds a fresh hub binary chunks of 1024 ('n') or 1023 ('m') bytes that are not UTF-8, a
// NAV-PVT frame ('p'), that frame and another kind's header in one chunk ('P'), an unfinished line
// ('t') or a lone 0xFF ('f'). 2048 bytes without a record return the link to text, with no
// unfinished line; a lone 0xFF goes the binary way but leaves text mode and the count alone.
TEST_F(hub_test, binary_noise_without_a_record_returns_the_link_to_text) {
  const auto frame = frame_of(image_of(valid_pvt()));
  auto then_other = frame;
  then_other.insert(then_other.end(), {0xB5, 0x62, 0x05, 0x01});
  const std::map<char, bytes_t> chunks = {{'n', bytes_t(1024, 0xFE)}, {'m', bytes_t(1023, 0xFE)}, {'p', frame},
                                          {'P', then_other},          {'t', {'$', 'G', 'P'}},     {'f', {0xFF}}};
  const std::pair<std::string, std::vector<std::string>> cases[] = {
      {"nm", {}},  {"tnn", {"2048"}}, {"mmm", {"3069"}}, {"nnnn", {"2048", "2048"}},
      {"npn", {}}, {"nPn", {}},       {"pnn", {"2048"}}, {"nn" + std::string(2048, 'f'), {"2048"}},
  };
  for (const auto& [run, counts_said] : cases) {
    connection_t fresh(queue, console, links);
    console.lines.clear();
    for (const char step : run) fresh.tcp_events().link_bytes(chunks.at(step));
    std::vector<std::string> said;
    for (const auto& count : counts_said)
      said.push_back("2026-01-01 12:00:00 +0000  back to text after " + count + " bytes without a UBX record");
    EXPECT_EQ(console.lines, said) << run;
    feed_line(fresh.tcp_events(), gga);
    EXPECT_EQ(!fresh.arr_rx->empty() && fresh.arr_rx->back() == gga, !said.empty()) << run << ": text decoded";
  }
}

}  // namespace

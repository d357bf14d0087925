#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "command/answer_tracker.h"
#include "command/config_keys.h"
#include "command/hex_text.h"
#include "command/typed_command.h"
#include "command/ubx_scanner.h"
#include "support/test_queue.h"

namespace {

std::string sent_hex(std::string_view typed) {
  const auto parsed = parse_typed_command(typed);
  return parsed.command ? hex_text(parsed.command->bytes) : "error: " + parsed.error;
}

// Whole frames as a receiver's manual works them out, checksum included.
TEST(TypedCommand, BuildsTheBytesOfWorkedExamples) {
  const struct {
    const char* typed;
    const char* bytes;
  } cases[] = {
      {"ubx:0a,04", "B5 62 0A 04 00 00 0E 34"},
      {"ubx:06,08,c80001000100", "B5 62 06 08 06 00 C8 00 01 00 01 00 DE 6A"},
      {"rate:200", "B5 62 06 08 06 00 C8 00 01 00 01 00 DE 6A"},
      {"hex:b5620a0400000e34", "B5 62 0A 04 00 00 0E 34"},
      {"msg:01,07,1", "B5 62 06 01 03 00 01 07 01 13 51"},
      // CFG-VALSET to RAM, one per value type: L, U1, E1, U2, U4.
      {"set:CFG-SIGNAL-GLO_ENA=0", "B5 62 06 8A 09 00 00 01 00 00 25 00 31 10 00 00 9D"},
      {"set:cfg-msgout-ubx_nav_pvt_uart1=1", "B5 62 06 8A 09 00 00 01 00 00 07 00 91 20 01 53 48"},
      {"set:CFG-NAVSPG-DYNMODEL=4", "B5 62 06 8A 09 00 00 01 00 00 21 00 11 20 04 F0 4D"},
      {"set:CFG-RATE-MEAS=200", "B5 62 06 8A 0A 00 00 01 00 00 01 00 21 30 C8 00 B5 81"},
      {"set:CFG-UART1-BAUDRATE=115200", "B5 62 06 8A 0C 00 00 01 00 00 01 00 52 40 00 C2 01 00 F3 A5"},
      {"set:0x30210001=200", "B5 62 06 8A 0A 00 00 01 00 00 01 00 21 30 C8 00 B5 81"},
      {"get:CFG-RATE-MEAS", "B5 62 06 8B 08 00 00 00 00 00 01 00 21 30 EB 07"},
      {"del:CFG-RATE-MEAS", "B5 62 06 8C 08 00 00 06 00 00 01 00 21 30 F2 3C"},
  };
  for (const auto& c : cases) EXPECT_EQ(sent_hex(c.typed), c.bytes) << c.typed;
}

TEST(TypedCommand, AddsTheChecksumToASentenceThatLacksIt) {
  const auto typed = parse_typed_command("$PUBX,41,1,0003,0003,115200,0");
  ASSERT_TRUE(typed.command);
  EXPECT_EQ(typed.command->text, "$PUBX,41,1,0003,0003,115200,0*1C");
  EXPECT_EQ(std::string(typed.command->bytes.begin(), typed.command->bytes.end()), typed.command->text + "\r\n");
  EXPECT_EQ(parse_typed_command("$PUBX,00*33").command->text, "$PUBX,00*33");
}

TEST(TypedCommand, WaitsForTheAnswerItsMessageCallsFor) {
  const struct {
    const char* typed;
    answer_kind_t answer;
    const char* text;
  } cases[] = {
      {"set:CFG-RATE-MEAS=100,CFG-RATE-NAV=1", answer_kind_t::ack, "CFG-VALSET CFG-RATE-MEAS=100, CFG-RATE-NAV=1"},
      {"ubx:0A,04", answer_kind_t::poll, "MON-VER"},
      {"hex:B5620A0400000E34", answer_kind_t::poll, "hex B5 62 0A 04 00 00 0E 34"},
      {"ubx:02,41,0100", answer_kind_t::none, "UBX 02 41 01 00"},
      {"hex:0d0a", answer_kind_t::none, "hex 0D 0A"},
      {"$GPQ,GGA", answer_kind_t::none, "$GPQ,GGA*2B"},
  };
  for (const auto& c : cases) {
    const auto typed = parse_typed_command(c.typed);
    ASSERT_TRUE(typed.command) << c.typed << ": " << typed.error;
    EXPECT_EQ(typed.command->answer, c.answer) << c.typed;
    EXPECT_EQ(typed.command->text, c.text) << c.typed;
  }
}

TEST(TypedCommand, NamesWhatIsWrong) {
  const struct {
    const char* typed;
    const char* error;
  } cases[] = {
      {"PUBX,41", "unknown command 'PUBX,41': give $SENTENCE, ubx:, hex:, set:, get:, del:, rate: or msg:"},
      {"ubx:6", "ubx: needs CLASS,ID[,PAYLOAD] in hex, such as ubx:06,08,c80001000100"},
      {"ubx:106,08", "ubx: class and id are two hex digits each, not '106,08'"},
      {"ubx:06,08,c8000", "ubx: the payload is pairs of hex digits, not 'c8000'"},
      {"hex:", "hex: needs pairs of hex digits, such as hex:B5620A0400000E34"},
      {"set:CFG-RATE-FAST=1", "set: unknown key 'CFG-RATE-FAST'"},
      {"set:0x00210001=1", "set: unknown key '0x00210001'"},
      {"set:0x3021000G=1", "set: unknown key '0x3021000G'"},
      {"set:CFG-RATE-MEAS", "set: CFG-RATE-MEAS needs =VALUE"},
      {"set:CFG-RATE-MEAS=65536", "set: CFG-RATE-MEAS takes a whole number from 0 to 65535, not '65536'"},
      {"set:CFG-SIGNAL-GPS_ENA=2", "set: CFG-SIGNAL-GPS_ENA takes a whole number from 0 to 1, not '2'"},
      {"set:", "set: needs KEY=VALUE, such as set:CFG-RATE-MEAS=200"},
      {"get:", "get: needs a key, such as get:CFG-RATE-MEAS"},
      {"rate:0", "rate: needs the measurement period in ms and optionally the navigation ratio, such as rate:200,1"},
      {"msg:01,07", "msg: needs CLASS,ID in hex and a rate, such as msg:01,07,1"},
  };
  for (const auto& c : cases) EXPECT_EQ(sent_hex(c.typed), std::string("error: ") + c.error) << c.typed;
}

TEST(ConfigKeys, EveryNameFindsItsKeyAndEveryTypeMatchesTheKeySize) {
  for (const auto& key : config_keys()) {
    EXPECT_EQ(find_config_key(key.name), &key);
    EXPECT_EQ(find_config_key(key.id), &key);
    const std::size_t size = key.type == key_type_t::u2 ? 2 : key.type == key_type_t::u4 ? 4 : 1;
    EXPECT_EQ(key_value_size(key.id), size) << key.name;
    EXPECT_EQ(key.type == key_type_t::l, (key.id >> 28) == 1) << key.name;
  }
}

TEST(ConfigKeys, ReadsTheItemsOfAValgetAnswerAndRefusesATruncatedOne) {
  const std::vector<std::uint8_t> answer{1, 0, 0, 0, 0x01, 0x00, 0x21, 0x30, 0xC8, 0x00, 0x25, 0x00, 0x31, 0x10, 0x01};
  const auto items = items_of(answer);
  ASSERT_TRUE(items);
  EXPECT_EQ(items_text(*items), "CFG-RATE-MEAS=200, CFG-SIGNAL-GLO_ENA=1");
  EXPECT_FALSE(items_of(std::span(answer).first(answer.size() - 1)));
  EXPECT_FALSE(items_of(std::span(answer).first(3)));
  EXPECT_EQ(keys_of(ubx_cfg_valset, answer), (std::vector<std::uint32_t>{0x30210001, 0x10310025}));
  auto with_stray = answer;
  with_stray.insert(with_stray.end(), {0x01, 0x00});  // half a key
  EXPECT_FALSE(items_of(with_stray));
  const std::vector<std::uint8_t> poll{0, 0, 0, 0, 0x01, 0x00, 0x21, 0x30, 0x25, 0x00, 0x31, 0x10};
  EXPECT_EQ(keys_of(ubx_cfg_valget, poll), (std::vector<std::uint32_t>{0x30210001, 0x10310025}));
  EXPECT_FALSE(keys_of(ubx_cfg_valget, std::span(poll).first(poll.size() - 1)));
  // Sizes by the key's size bits: 8 bytes for 5, none for 0, 6 and 7.
  EXPECT_EQ(key_value_size(0x50000001), 8u);
  for (const std::uint32_t id : {0x00000001u, 0x60000001u, 0x70000001u}) EXPECT_EQ(key_value_size(id), 0u) << id;
}

TEST(MonVer, RoundTripsTheIdentityAndRefusesAPartialExtension) {
  const receiver_identity_t identity{"ROM SPG 5.10 (7b202e)", "000A0000", {"MOD=NEO-M9N", "PROTVER=32.01"}};
  auto payload = mon_ver_payload(identity);
  EXPECT_EQ(payload.size(), 100u);
  EXPECT_EQ(decode_mon_ver(payload), identity);
  EXPECT_EQ(identity_text(identity), "ROM SPG 5.10 (7b202e), 000A0000, MOD=NEO-M9N, PROTVER=32.01");
  payload.pop_back();
  EXPECT_FALSE(decode_mon_ver(payload));
}

// Frames among text, split anywhere, one with a bad checksum.
TEST(UbxScanner, FindsEveryGoodFrameWhereverTheChunksEnd) {
  std::vector<std::uint8_t> stream;
  const auto append = [&](const std::vector<std::uint8_t>& bytes) {
    stream.insert(stream.end(), bytes.begin(), bytes.end());
  };
  const std::string text = "$GPGGA,1*00\r\n\xB5";
  append({text.begin(), text.end()});
  append(ubx_frame(ubx_ack_ack, std::vector<std::uint8_t>{0x06, 0x8A}));
  auto bad = ubx_frame(ubx_ack_nak, std::vector<std::uint8_t>{0x06, 0x8A});
  bad.back() ^= 1;
  append(bad);
  append(ubx_frame(ubx_mon_ver, mon_ver_payload({"SIM", "1", {}})));
  for (const std::size_t chunk : {std::size_t{1}, std::size_t{7}, stream.size()}) {
    std::vector<std::string> seen;
    ubx_scanner_t scanner([&](ubx_id_t m, std::span<const std::uint8_t> p) {
      seen.push_back(ubx_name(m) + " " + std::to_string(p.size()));
    });
    for (std::size_t at = 0; at < stream.size(); at += chunk)
      scanner.feed(std::span(stream).subspan(at, std::min(chunk, stream.size() - at)));
    EXPECT_EQ(seen, (std::vector<std::string>{"ACK-ACK 2", "MON-VER 40"})) << chunk;
  }
}

struct tracker_fixture_t {
  test_queue_t queue;
  std::vector<std::string> reports;
  answer_tracker_t tracker{queue, [this](const answer_t& a) {
                             reports.push_back(a.command + ": " + std::string(answer_state_text(a.state)) +
                                               (a.detail.empty() ? "" : " (" + a.detail + ")"));
                           }};
  void expect(std::string_view typed) { tracker.expect(*parse_typed_command(typed).command); }
  void frame(ubx_id_t m, const std::vector<std::uint8_t>& payload) { tracker.frame(m, payload); }
};

TEST(AnswerTracker, MatchesEachAnswerToTheOldestCommandWaitingForIt) {
  tracker_fixture_t f;
  f.expect("set:CFG-RATE-MEAS=200");
  f.expect("set:0x10990001=1");
  f.expect("get:CFG-RATE-MEAS");
  f.expect("ubx:0a,04");
  f.expect("$PUBX,00");
  EXPECT_EQ(f.tracker.waiting(), 4u);
  f.frame(ubx_ack_ack, {0x06, 0x01});  // an acknowledgement of nothing sent here
  f.frame(ubx_ack_ack, {0x06, 0x8A});
  f.frame(ubx_ack_nak, {0x06, 0x8A});
  f.frame(ubx_cfg_valget, {1, 0, 0, 0, 0x01, 0x00, 0x21, 0x30, 0xC8, 0x00});
  f.frame(ubx_ack_ack, {0x06, 0x8B});
  f.frame(ubx_mon_ver, mon_ver_payload({"SIM 1.0", "0001", {"MOD=KORVID-SIM"}}));
  EXPECT_EQ(f.reports, (std::vector<std::string>{
                           "CFG-VALSET CFG-RATE-MEAS=200: accepted",
                           "CFG-VALSET 0x10990001=1: refused",
                           "CFG-VALGET CFG-RATE-MEAS: accepted (CFG-RATE-MEAS=200)",
                           "MON-VER: answered (SIM 1.0, 0001, MOD=KORVID-SIM)",
                       }));
  EXPECT_EQ(f.tracker.waiting(), 0u);
}

TEST(AnswerTracker, SaysNoAnswerAfterTwoSecondsAndIgnoresALateOne) {
  tracker_fixture_t f;
  f.expect("rate:100");
  f.queue.advance(answer_tracker_t::answer_wait_s - 0.01);
  EXPECT_TRUE(f.reports.empty());
  f.queue.advance(0.02);
  f.frame(ubx_ack_ack, {0x06, 0x08});
  EXPECT_EQ(f.reports, (std::vector<std::string>{"CFG-RATE 100 ms, 1: no answer"}));
}

}  // namespace

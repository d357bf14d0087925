#include "app/cli_options.h"

#include <gtest/gtest.h>

#include <vector>

// The expected options name only what differs from the defaults.
#pragma GCC diagnostic ignored "-Wmissing-field-initializers"

namespace {

TEST(cli_options, reads_what_it_is_asked_to_do) {
  const std::pair<std::vector<std::string_view>, cli_options_t> cases[] = {
      {{"--replay", "a.log", "--chunk", "16", "--json", "--show-all"},
       {.replay_file = "a.log", .chunk = 16, .json = true, .show_all = true}},
      {{"--replay", "a.log"}, {.replay_file = "a.log", .chunk = 2047}},
      {{"--replay", "a", "--chunk", "1"}, {.replay_file = "a", .chunk = 1}},
      {{"--replay", "a", "--chunk", "65536"}, {.replay_file = "a", .chunk = 65536}},
      {{"--connect", "tcp://127.0.0.1:10110", "--duration", "2147483", "--interval", "0.5"},
       {.host = "127.0.0.1", .port = 10110, .duration_s = 2147483, .interval_s = 0.5, .chunk = 2047}},
      {{"--connect", "saved", "--settings", "/tmp/k.ini"},
       {.connect_saved = true, .settings_file = "/tmp/k.ini", .chunk = 2047}},
      // The host as the settings read it: "010" is ten, and an IPv6 address keeps its brackets.
      {{"--connect", "tcp://127.0.0.010:81"}, {.host = "127.0.0.10", .port = 81, .chunk = 2047}},
      {{"--connect", "tcp://[0::1]:81"}, {.host = "[::1]", .port = 81, .chunk = 2047}},
      {{"--connect", "tcp://gps-1.lan:81"}, {.host = "gps-1.lan", .port = 81, .chunk = 2047}},
      {{"--bridge", "--connect", "ble://Thingy:91 UART", "--connect", "tcp://127.0.0.1:10110"},
       {.host = "127.0.0.1", .ble_name = "Thingy:91 UART", .bridge = true, .port = 10110, .chunk = 2047}},
      {{"--bridge", "--connect", "serial:///dev/ttyACM0", "--connect", "tcp://127.0.0.1:2101"},
       {.host = "127.0.0.1",
        .source = source_address_t{.path = "/dev/ttyACM0"},
        .bridge = true,
        .port = 2101,
        .chunk = 2047}},
      {{"--connect", "tcp://127.0.0.1:81", "--corrections", "ntrip://u:p@127.0.0.1/M", "--gga"},
       {.host = "127.0.0.1",
        .port = 81,
        .chunk = 2047,
        .corrections = ntrip_address_t{.user = "u", .password = "p", .host = "127.0.0.1", .mountpoint = "M"},
        .gga = true}},
      {{"--sourcetable", "ntrip://caster.example.org:2102"},
       {.chunk = 2047, .sourcetable = ntrip_address_t{.host = "caster.example.org", .port = 2102}}},
      {{"--connect", "tcp://127.0.0.1:1", "--record", "r.nmea", "--record-rotate", "1h"},
       {.host = "127.0.0.1", .port = 1, .chunk = 2047, .record_file = "r.nmea", .record_rotate = {0, 3600}}},
      {{"--replay", "a", "--speed", "0.5"}, {.replay_file = "a", .chunk = 2047, .speed = 0.5}},
      {{"--replay", "a", "--speed", "max"}, {.replay_file = "a", .chunk = 2047, .speed = 0.0}},
      {{"--connect", "tcp://127.0.0.1:81", "--send", "rate:200", "--send", "$PUBX,00", "--read-only", "--serve", ":0",
        "--allow-client-writes"},
       {.host = "127.0.0.1",
        .port = 81,
        .chunk = 2047,
        .sends = {"rate:200", "$PUBX,00"},
        .read_only = true,
        .serve = true,
        .allow_client_writes = true}},
  };
  for (const auto& [args, options] : cases) {
    const auto r = parse_cli(args);
    ASSERT_TRUE(r.options) << r.error;
    EXPECT_EQ(*r.options, options) << args[0] << " " << args[1];
  }
}

TEST(cli_options, names_what_is_wrong) {
  const std::pair<std::vector<std::string_view>, const char*> cases[] = {
      {{"--bogus"}, "unknown option '--bogus'"},
      {{"--replay"}, "--replay needs a file name"},
      {{"--replay", "a", "--chunk"}, "--chunk needs"},
      {{"--replay", "a", "--chunk", "0"}, "1 to 65536, not '0'"},
      {{"--replay", "a", "--chunk", "65537"}, "not '65537'"},
      {{"--replay", "a", "--chunk", "-1"}, "not '-1'"},
      {{"--replay", "a", "--chunk", "x"}, "not 'x'"},
      {{}, "nothing to do"},
      {{"--connect"}, "--connect needs"},
      {{"--connect", "tcp://127.0.0.1"}, "takes tcp://HOST:PORT, not 'tcp://127.0.0.1'"},
      {{"--connect", "udp://127.0.0.1:81"}, "--connect takes udp://:PORT"},
      {{"--connect", "ftp://127.0.0.1:81"}, "takes tcp://HOST:PORT, not"},
      {{"--connect", "tcp://127.0.0.1:0"}, "PORT from 1 to 65535, not '0' in 'tcp://127.0.0.1:0'"},
      {{"--connect", "tcp://127.0.0.1:+81"}, "not '+81'"},
      {{"--connect", "tcp://0.0.0.0:81"}, "HOST that is a dotted quad with its first and last numbers 1 to 254"},
      {{"--connect", "tcp://0x7f.0.0.1:81"}, "not '0x7f.0.0.1'"},
      {{"--connect", "tcp://::1:81"}, "IPv6 address in brackets, not '::1'"},
      {{"--connect", "tcp://127.0.0.1:81", "--replay", "a"}, "either --replay or --connect"},
      {{"--connect", "tcp://127.0.0.1:81", "--duration", "0"}, "--duration must be a positive number"},
      {{"--connect", "tcp://127.0.0.1:81", "--interval", "x"}, "--interval must be"},
      {{"--connect", "tcp://127.0.0.1:81", "--duration", "2147484"}, "seconds up to 2147483, not '2147484'"},
      {{"--connect", "saved", "--settings"}, "--settings needs a file name"},
      {{"--bridge", "--connect", "tcp://127.0.0.1:1"}, "--bridge goes with one tcp:// and one ble://"},
      {{"--bridge", "--connect", "udp://:1", "--connect", "ble://x"}, "--bridge goes with"},
      {{"--connect", "ble://x", "--connect", "tcp://127.0.0.1:1"}, "--bridge goes with"},
      {{"--connect", "ble://"}, "needs the peripheral's name"},
      {{"--connect", "saved", "--connect", "ble://x"}, "--connect saved stands alone"},
      {{"--corrections", "ntrip://127.0.0.1"}, "--corrections takes ntrip://[USER[:PASS]@]HOST[:PORT]/MOUNT"},
      {{"--connect", "tcp://127.0.0.1:81", "--gga"}, "--gga goes with --corrections"},
      {{"--sourcetable", "ntrip://h", "--corrections", "ntrip://h/M"}, "--sourcetable stands alone"},
      {{"--connect", "saved", "--record-rotate", "1h"}, "--record-rotate goes with --record"},
      {{"--connect", "saved", "--record", "r", "--record-rotate", "1d"}, "not '1d'"},
      {{"--replay", "a", "--speed", "0"}, "above 0 up to 1000 or max, not '0'"},
      {{"--replay", "a", "--speed", "1001"}, "not '1001'"},
      {{"--replay", "-", "--speed", "2"}, "--speed goes with --replay FILE"},
      {{"--connect", "saved", "--speed", "2"}, "--speed goes with --replay FILE"},
      {{"--connect", "tcp://127.0.0.1:81", "--send", "set:CFG-RATE=1"}, "--send set: unknown key 'CFG-RATE'"},
      {{"--connect", "tcp://127.0.0.1:81", "--serve", "10110"}, "--serve takes :PORT"},
      {{"--connect", "tcp://127.0.0.1:81", "--allow-client-writes"}, "--allow-client-writes needs --serve"},
      {{"--replay", "a", "--send", "$PUBX,00"}, "--send and --serve need a --connect"},
  };
  for (const auto& [args, says] : cases) {
    const auto r = parse_cli(args);
    EXPECT_FALSE(r.options);
    EXPECT_NE(r.error.find(says), std::string::npos) << r.error;
  }
  EXPECT_TRUE(parse_cli(std::vector<std::string_view>{"--help"}).options->help);
}

}  // namespace

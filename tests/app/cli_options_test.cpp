#include "app/cli_options.h"

#include <gtest/gtest.h>

#include <vector>

namespace {

cli_parse_t parse(std::vector<std::string_view> args) { return parse_cli(args); }

TEST(cli_options, reads_a_replay_with_its_options) {
  const auto r = parse({"--replay", "a.log", "--chunk", "16", "--json", "--show-all"});
  ASSERT_TRUE(r.options) << r.error;
  EXPECT_EQ(r.options->replay_file, "a.log");
  EXPECT_EQ(r.options->chunk, 16u);
  EXPECT_TRUE(r.options->json);
  EXPECT_TRUE(r.options->show_all);
  EXPECT_EQ(parse({"--replay", "a.log"}).options->chunk, 2047u);
}

TEST(cli_options, reads_a_connection_with_its_options) {
  const auto r = parse({"--connect", "tcp://127.0.0.1:10110", "--duration", "2.5", "--interval", "0.5", "--json"});
  ASSERT_TRUE(r.options) << r.error;
  EXPECT_EQ(r.options->host, "127.0.0.1");
  EXPECT_EQ(r.options->port, 10110);
  EXPECT_EQ(r.options->duration_s, 2.5);
  EXPECT_EQ(r.options->interval_s, 0.5);
}

TEST(cli_options, connects_as_saved_with_a_settings_file) {
  const auto r = parse({"--connect", "saved", "--settings", "/tmp/k.ini"});
  ASSERT_TRUE(r.options) << r.error;
  EXPECT_TRUE(r.options->connect_saved);
  EXPECT_EQ(r.options->settings_file, "/tmp/k.ini");
  EXPECT_FALSE(parse({"--settings"}).options);
}

TEST(cli_options, a_ble_connection_and_the_bridge) {
  const auto ble = parse({"--connect", "ble://Thingy:91 UART"});
  ASSERT_TRUE(ble.options) << ble.error;
  EXPECT_EQ(ble.options->ble_name, "Thingy:91 UART");
  const auto relay = parse({"--bridge", "--connect", "ble://Thingy:91 UART", "--connect", "tcp://127.0.0.1:10110"});
  ASSERT_TRUE(relay.options) << relay.error;
  EXPECT_TRUE(relay.options->bridge);
  EXPECT_EQ(relay.options->port, 10110);
  for (const auto& args : std::vector<std::vector<std::string_view>>{
           {"--bridge", "--connect", "tcp://127.0.0.1:1"},
           {"--connect", "ble://x", "--connect", "tcp://127.0.0.1:1"},
           {"--connect", "ble://"},
           {"--connect", "saved", "--connect", "ble://x"}})
    EXPECT_FALSE(parse(args).options) << args.size();
}

TEST(cli_options, dotted_quads_only) {
  for (const char* host : {"127.0.0.1", "0.0.0.0", "255.255.255.255", "10.1.2.3"}) EXPECT_TRUE(is_dotted_quad(host)) << host;
  for (const char* host : {"", "localhost", "1.2.3", "1.2.3.4.5", "1..2.3", "256.1.1.1", "1.2.3.-4", "+1.2.3.4",
                           "1.2.3.4 ", "0x7f.0.0.1", "1234.1.1.1"})
    EXPECT_FALSE(is_dotted_quad(host)) << host;
}

TEST(cli_options, names_what_is_wrong) {
  const struct {
    std::vector<std::string_view> args;
    const char* says;
  } cases[] = {
      {{"--bogus"}, "unknown option '--bogus'"},
      {{"--replay"}, "--replay needs a file name"},
      {{"--replay", "a", "--chunk"}, "--chunk needs"},
      {{"--replay", "a", "--chunk", "0"}, "1 to 65536, not '0'"},
      {{"--replay", "a", "--chunk", "65537"}, "not '65537'"},
      {{"--replay", "a", "--chunk", "-1"}, "not '-1'"},
      {{"--replay", "a", "--chunk", "x"}, "not 'x'"},
      {{}, "nothing to do"},
      {{"--connect"}, "--connect needs"},
      {{"--connect", "tcp://localhost:10110"}, "not 'tcp://localhost:10110'"},
      {{"--connect", "tcp://127.0.0.1"}, "not 'tcp://127.0.0.1'"},
      {{"--connect", "tcp://127.0.0.1:0"}, "port 1 to 65535"},
      {{"--connect", "tcp://127.0.0.1:65536"}, "not"},
      {{"--connect", "tcp://256.0.0.1:81"}, "not"},
      {{"--connect", "tcp://1.2.3:81"}, "not"},
      {{"--connect", "udp://127.0.0.1:81"}, "not"},
      {{"--connect", "tcp://127.0.0.1:81", "--replay", "a"}, "either --replay or --connect"},
      {{"--connect", "tcp://127.0.0.1:81", "--duration", "0"}, "--duration must be a positive number"},
      {{"--connect", "tcp://127.0.0.1:81", "--interval", "x"}, "--interval must be"},
  };
  for (const auto& c : cases) {
    const auto r = parse(c.args);
    EXPECT_FALSE(r.options);
    EXPECT_NE(r.error.find(c.says), std::string::npos) << r.error;
  }
  EXPECT_TRUE(parse({"--replay", "a", "--chunk", "65536"}).options);
  EXPECT_TRUE(parse({"--help"}).options->help);
}

}  // namespace

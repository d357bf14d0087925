#include "app/sim_options.h"

#include <gtest/gtest.h>

#include <vector>

#include "sim/sim_sky.h"

namespace {

sim_parse_t parse(std::vector<std::string_view> args) {
  return parse_sim(args);
}

TEST(sim_options, reads_the_receiver_and_the_server) {
  const auto r = parse({"--port",  "0",
                        "--rate",  "10",
                        "--lat",   "-33.8568",
                        "--lon",   "151.2153",
                        "--speed", "6",
                        "--seed",  "18446744073709551615",
                        "--ubx",   "--gnss",
                        "gal,gps", "--bad-checksum-rate",
                        "0.1",     "--garbage-rate",
                        "1",       "--drop-after",
                        "5",       "--duration",
                        "20"});
  ASSERT_TRUE(r.options) << r.error;
  const auto& o = *r.options;
  EXPECT_EQ(o.server.port, 0);
  EXPECT_EQ(o.server.period_s, 0.1);
  EXPECT_EQ(o.receiver.epoch_s, 0.1);
  EXPECT_EQ(o.receiver.lat, -33.8568);
  EXPECT_EQ(o.receiver.lon, 151.2153);
  EXPECT_EQ(o.receiver.speed_mps, 6.0);
  EXPECT_EQ(o.receiver.seed, UINT64_MAX);
  EXPECT_TRUE(o.receiver.ubx);
  EXPECT_EQ(o.receiver.gnss, bit_of(gnss_system_t::gps) | bit_of(gnss_system_t::galileo));
  EXPECT_EQ(o.receiver.bad_checksum_rate, 0.1);
  EXPECT_EQ(o.receiver.garbage_rate, 1.0);
  EXPECT_EQ(o.server.drop_after_s, 5.0);
  EXPECT_EQ(o.server.duration_s, 20.0);
  EXPECT_EQ(parse({"--replay", "a.log"}).options->replay_file, "a.log");
  EXPECT_EQ(parse({}).options->server.port, 10110);
  const auto pty = parse({"--pty", "--baud", "38400"}).options;
  EXPECT_EQ(std::pair(pty->pty, pty->baud), std::pair(true, 38400u));
  const auto udp = parse({"--udp", "[::1]:10110"}).options;
  EXPECT_EQ(std::pair(udp->udp_host, udp->udp_port), std::pair(std::string("::1"), std::uint16_t{10110}));
}

TEST(sim_options, help_ends_the_reading_and_the_first_bad_option_is_named) {
  EXPECT_TRUE(parse({"--help", "--bogus"}).options->help);
  EXPECT_TRUE(parse({"-h"}).options->help);
  const struct {
    std::vector<std::string_view> args;
    const char* says;
  } cases[] = {
      {{"--bogus", "--help"}, "unknown option '--bogus'"},
      {{"--port", "65536"}, "--port takes a port number 0 to 65535"},
      {{"--port", "1.5"}, "--port takes"},
      {{"--port"}, "--port takes"},
      {{"--rate", "0.009"}, "--rate takes a number of epochs per second, 0.01 to 1000"},
      {{"--rate", "1000.1"}, "--rate takes"},
      {{"--lat", "89.95"}, "--lat takes degrees, -89.9 to 89.9"},
      {{"--lat", "-89.95"}, "--lat takes"},
      {{"--lat", "nan"}, "--lat takes"},
      {{"--lon", "180.1"}, "--lon takes degrees, -180 to 180"},
      {{"--lon", "-180.1"}, "--lon takes"},
      {{"--speed", "100.1"}, "--speed takes metres per second, 0 to 100"},
      {{"--speed", "-0.1"}, "--speed takes"},
      {{"--seed", "-1"}, "--seed takes a whole number"},
      {{"--seed", "18446744073709551616"}, "--seed takes"},
      {{"--bad-checksum-rate", "1.1"}, "--bad-checksum-rate takes a share from 0 to 1"},
      {{"--garbage-rate", "-0.1"}, "--garbage-rate takes a share from 0 to 1"},
      {{"--drop-after", "0"}, "--drop-after takes a positive number of seconds"},
      {{"--duration", "0.001"}, "--duration takes a positive number of seconds"},
      {{"--replay"}, "--replay needs a file name"},
      {{"--pty", "--baud", "12345"}, "--baud takes one of 4800, 9600"},
      {{"--baud", "9600"}, "--baud needs --pty"},
      {{"--pty", "--udp", "127.0.0.1:5"}, "--pty and --udp exclude each other"},
      {{"--udp", "127.0.0.1"}, "--udp takes HOST:PORT"},
      {{"--udp", ":5"}, "--udp takes"},
      {{"--udp", "127.0.0.1:0"}, "--udp takes"},
      {{"--gnss", "gps,galileo"}, "--gnss takes a list of gps, glo, gal, bds and qzss"},
      {{"--gnss", "gps,"}, "--gnss takes"},
      {{"--gnss"}, "--gnss takes"},
  };
  for (const auto& c : cases) {
    const auto r = parse(c.args);
    EXPECT_FALSE(r.options) << c.says;
    EXPECT_EQ(r.error.find(c.says), 0u) << r.error;
  }
  for (const auto& edge : std::vector<std::vector<std::string_view>>{{"--port", "65535"},
                                                                     {"--rate", "0.01"},
                                                                     {"--rate", "1000"},
                                                                     {"--lat", "89.9"},
                                                                     {"--lat", "-89.9"},
                                                                     {"--lon", "-180"},
                                                                     {"--speed", "0"},
                                                                     {"--bad-checksum-rate", "0"},
                                                                     {"--drop-after", "0.01"}})
    EXPECT_TRUE(parse(edge).options) << edge[0] << " " << edge[1];
}

}  // namespace

#include "app/window_options.h"

#include <gtest/gtest.h>

#include <string>
#include <tuple>
#include <vector>

namespace {

TEST(window_options, reads_what_the_window_is_asked_to_do) {
  const auto p =
      parse_window(std::vector<std::string_view>{"--demo", "--ubx", "--screenshot", "/tmp/a.png", "--after", "2.5",
                                                 "--size", "520x900", "--sheet", "sky", "--dark", "--gnss", "bds"});
  ASSERT_TRUE(p.options) << p.error;
  const auto& o = *p.options;
  EXPECT_EQ(std::tie(o.demo, o.ubx, o.screenshot, o.after_s, o.width, o.height, o.sheets, o.dark, o.help, o.gnss),
            std::tuple(true, true, std::string("/tmp/a.png"), 2.5, 520, 900, std::vector{sheet_id_t::sky}, true, false,
                       std::uint8_t{1u << 3}));
  const auto c = parse_window(std::vector<std::string_view>{"--corrections", "ntrip://127.0.0.1/MNT"});
  ASSERT_TRUE(c.options) << c.error;
  EXPECT_EQ(c.options->corrections->mountpoint, "MNT");
  EXPECT_EQ(parse_window(std::vector<std::string_view>{"--dark", "drive.ubx"}).options->capture, "drive.ubx");
}

TEST(window_options, a_bad_argument_names_the_problem) {
  const std::pair<std::vector<std::string_view>, const char*> cases[] = {
      {{"--size", "100x100"}, "--size needs WIDTHxHEIGHT, each 200 to 8192"},
      {{"--size", "800"}, "--size needs WIDTHxHEIGHT, each 200 to 8192"},
      {{"--after", "-1"}, "--after needs seconds from 0 to 3600"},
      {{"--after", "nan"}, "--after needs seconds from 0 to 3600"},
      {{"--screenshot"}, "--screenshot needs a file name"},
      {{"--sheet", "map"}, "--sheet needs log, details, settings, sky or console"},
      {{"--demo", "--gnss", "gps,sbas"}, "--gnss needs a list of gps, glo, gal, bds and qzss"},
      {{"--gnss", "gps"}, "--gnss goes with --demo"},
      {{"--ubx"}, "--ubx goes with --demo"},
      {{"--connect"}, "unknown argument '--connect'"},
      {{"--corrections"}, "--corrections needs an ntrip:// address"},
      {{"--corrections", "ntrip://h"},
       "--corrections takes ntrip://[USER[:PASS]@]HOST[:PORT]/MOUNT with a mountpoint, not 'ntrip://h'"},
      {{"a.nmea", "b.nmea"}, "unknown argument 'b.nmea'"},
      {{"--demo", "a.nmea"}, "a capture plays without --demo"},
  };
  for (const auto& [args, error] : cases) {
    const auto p = parse_window(args);
    EXPECT_FALSE(p.options) << error;
    EXPECT_EQ(p.error, error);
  }
}

}  // namespace

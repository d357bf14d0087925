#include "session/track_store.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <tuple>
#include <vector>

#include "link/connection.h"
#include "link/offline_links.h"
#include "nmea/sentence.h"
#include "support/link_feed.h"
#include "support/recording_console.h"
#include "support/records.h"
#include "support/test_queue.h"

namespace {

struct hub_t {
  test_queue_t queue;
  recording_console_t console;
  offline_links_t links;
  connection_t hub{queue, console, links};

  // One epoch in one chunk: GGA with the quality, GSA with the fix type, RMC with the date.
  void epoch(const std::string& time, const std::string& lat, int quality = 1, int gsa_fix = 3) {
    std::string chunk = with_checksum("$GPGGA," + time + "," + lat + ",S,01131.000,W," + std::to_string(quality) +
                                      ",08,0.9,545.4,M,46.9,M,,") +
                        "\r\n";
    chunk += with_checksum("$GPGSA,A," + std::to_string(gsa_fix) + ",04,05,,,,,,,,,,,2.5,1.3,2.1") + "\r\n";
    chunk += with_checksum("$GPRMC," + time + ",A," + lat + ",S,01131.000,W,022.4,084.4,231126,003.1,W,A") + "\r\n";
    feed(hub.tcp_events(), chunk);
  }
};

TEST(track_store, keeps_each_epochs_fix_with_its_time) {
  hub_t h;
  track_store_t track(h.hub);
  h.hub.add_tap(track);
  h.epoch("235959.5", "4807.038");
  h.epoch("235959.5", "4807.038");  // the same epoch again: no new point
  h.epoch("000000.25", "4807.040", 2);
  h.epoch("000000.250", "4807.042", 1, 2);
  track.sample();
  track.sample();
  h.hub.remove_tap(track);
  const double day = 1795392000;  // 2026-11-23 00:00:00 UTC
  const std::vector<track_point_t> expected{
      {-48.1173, -11.516666666666667, day + 86399.5, 545.4, 0.9, 8, fix_kind_t::three_d},
      {-(48 + 7.04 / 60), -11.516666666666667, day + 0.25, 545.4, 0.9, 8, fix_kind_t::dgps},
      {-(48 + 7.042 / 60), -11.516666666666667, day + 0.25, 545.4, 0.9, 8, fix_kind_t::two_d}};
  ASSERT_EQ(track.points().size(), expected.size());
  for (std::size_t i = 0; i < expected.size(); ++i) {
    const auto& p = track.points()[i];
    EXPECT_NEAR(p.lat, expected[i].lat, 1e-9) << i;
    EXPECT_NEAR(p.lon, expected[i].lon, 1e-9) << i;
    EXPECT_EQ(p.fix, expected[i].fix) << i;
    EXPECT_DOUBLE_EQ(p.utc_s, expected[i].utc_s) << i;
    EXPECT_EQ(std::tie(p.ele_m, p.hdop, p.sat), std::tie(expected[i].ele_m, expected[i].hdop, expected[i].sat)) << i;
  }
}

TEST(track_store, drops_the_oldest_beyond_its_capacity_and_counts_them) {
  hub_t h;
  track_store_t track(h.hub, 2);
  for (const char* time : {"120000", "120001", "120002", "120003"}) {
    h.epoch(time, "4807.038");
    track.sample();
  }
  ASSERT_EQ(track.points().size(), 2U);
  EXPECT_EQ(track.dropped(), 2U);
  EXPECT_DOUBLE_EQ(std::fmod(track.points().front().utc_s, 86400.0), 43202.0);
  track.clear();
  EXPECT_TRUE(track.points().empty());
  EXPECT_EQ(track.dropped(), 0U);
}

TEST(track_store, reads_the_fix_type_of_a_record) {
  hub_t h;
  track_store_t track(h.hub);
  const std::vector<std::pair<std::uint8_t, fix_kind_t>> cases{
      {2, fix_kind_t::two_d}, {3, fix_kind_t::three_d}, {4, fix_kind_t::three_d}, {5, fix_kind_t::unknown}};
  auto record = valid_pvt();
  for (const auto& [type, kind] : cases) {
    record.fixType = type;
    ++record.sec;
    h.hub.gga.update_pvt(record);
    track.sample();
    EXPECT_EQ(track.points().back().fix, kind) << int{type};
  }
}

TEST(track_store, names_each_fix_kind_as_gpx_does) {
  const std::vector<std::pair<fix_kind_t, std::string_view>> cases{{fix_kind_t::unknown, ""},
                                                                   {fix_kind_t::two_d, "2d"},
                                                                   {fix_kind_t::three_d, "3d"},
                                                                   {fix_kind_t::dgps, "dgps"},
                                                                   {fix_kind_t::pps, "pps"}};
  for (const auto& [kind, text] : cases) EXPECT_EQ(fix_kind_text(kind), text);
}

}  // namespace

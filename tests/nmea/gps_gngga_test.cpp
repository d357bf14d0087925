#include "nmea/gps_gngga.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>
#include <string>

#include "support/records.h"
#include "support/sentences.h"

namespace {

constexpr double pi = std::numbers::pi;
const std::string good = "$GNGGA,123519.00,4807.03800,N,01131.00000,E,1,08,0.9,545.4,M,46.9,M,,*77";

// The good sentence with field i replaced.
std::string with_field(int i, const std::string& value) {
  std::vector<std::string_view> f;
  split_fields(good, f);
  std::string out;
  for (int k = 0; k < static_cast<int>(f.size()); ++k) out += (k ? "," : "") + (k == i ? value : std::string(f[k]));
  return out;
}

TEST(gga, decodes_the_worked_example) {
  gps_gngga_t gga;
  int notices = 0;
  auto sub = gga.subscribe([&] { ++notices; });
  feed(gga, good);
  EXPECT_EQ(gga.time, (time_hms_t{12, 35, 19, 0}));
  EXPECT_DOUBLE_EQ(gga.lat, 48.1173);
  EXPECT_DOUBLE_EQ(gga.lon, 11.0 + 31.0 / 60.0);
  EXPECT_EQ(gga.lat_dir, "N");
  EXPECT_EQ(gga.lon_dir, "E");
  EXPECT_EQ(gga.fix_i, 1);
  EXPECT_EQ(gga.fix_text(), "GPS");
  EXPECT_EQ(gga.sat_count_i, 8);
  EXPECT_EQ(gga.hdop_d, 0.9);
  EXPECT_EQ(gga.alt_d, 545.4);
  EXPECT_EQ(gga.mean_sea_level_d, 46.9);
  EXPECT_FALSE(gga.pvt_mode);
  EXPECT_EQ(notices, 2) << "lat and lon are the published fields";
  ASSERT_EQ(gga.map_annotations.list().size(), 1u);
  EXPECT_EQ(gga.map_annotations.list()[0]->title, "12:35:19");
  EXPECT_EQ(gga.map_path.list().size(), 1u);
  EXPECT_GT(gga.magnitude_history[0], 5e6) << "the first fix is measured from (0, 0)";
  EXPECT_EQ(gga.magnitude_history[1], 0.0);
}

TEST(gga, a_failed_check_keeps_what_earlier_steps_stored) {
  const struct {
    const char* name;
    int field;
    std::string value;
    bool alt_changed;
  } only_time_changes[] = {
      {"fix quality 9", 6, "9", false},        {"fix quality empty", 6, "", false},
      {"fix quality -1", 6, "-1", false},      {"37 satellites", 7, "37", false},
      {"HDOP without point", 8, "1", false},   {"HDOP 100.0", 8, "100.0", false},
      {"HDOP empty", 8, "", false},            {"altitude unit F", 10, "F", false},
      {"altitude without point", 9, "545", false}, {"geoid unit F", 12, "F", true},
      {"latitude unreadable", 2, "48x7.038", true}, {"latitude above 90", 2, "9107.0380", true},
      {"longitude 3-digit latitude", 4, "1131.000", true},
  };
  for (const auto& c : only_time_changes) {
    gps_gngga_t gga;
    gga.alt_d = -1.0;
    feed(gga, with_field(c.field, c.value));
    EXPECT_EQ(gga.time, (time_hms_t{12, 35, 19, 0})) << c.name;
    EXPECT_EQ(gga.fix_i, 0) << c.name;
    EXPECT_EQ(gga.hdop_d, 0.0) << c.name;
    EXPECT_EQ(gga.lat, 0.0) << c.name;
    EXPECT_EQ(gga.alt_d, c.alt_changed ? 545.4 : -1.0) << c.name;
    EXPECT_TRUE(gga.map_path.list().empty()) << c.name;
  }
}

TEST(gga, fields_that_read_as_absent_keep_their_value) {
  gps_gngga_t gga;
  gga.alt_d = 7.0;
  feed(gga, with_field(10, ""));  // no unit: the altitude pair is skipped
  EXPECT_EQ(gga.alt_d, 7.0);
  EXPECT_EQ(gga.lat, 48.1173);
  feed(gga, with_field(7, ""));
  EXPECT_EQ(gga.sat_count_i, 0) << "an empty satellite count is 0";
  gga.lat_dir = "S";
  feed(gga, with_field(3, "X"));
  EXPECT_EQ(gga.lat_dir, "S") << "an unknown letter keeps the previous one";
}

TEST(gga, a_sentence_without_position_keeps_fix_state_only) {
  gps_gngga_t gga;
  feed(gga, good);
  const auto history = gga.direction_history;
  feed(gga, "$GPGGA,123520.00,,,,,0,00,99.99,,,,,,*61");
  EXPECT_EQ(gga.time, (time_hms_t{12, 35, 20, 0}));
  EXPECT_EQ(gga.fix_text(), "invalid");
  EXPECT_EQ(gga.sat_count_i, 0);
  EXPECT_EQ(gga.hdop_d, 99.99);
  EXPECT_EQ(gga.lat, 48.1173);
  EXPECT_EQ(gga.direction_history, history);
  EXPECT_EQ(gga.map_path.list().size(), 1u);
}

TEST(gga, ignores_other_tags_and_field_counts) {
  for (const std::string& line : {std::string("$GLGGA") + good.substr(6), good + ",x,y", with_field(13, "").substr(0, 60)}) {
    gps_gngga_t gga;
    feed(gga, line);
    EXPECT_EQ(gga.time, time_hms_t{}) << line;
  }
  gps_gngga_t gga;
  feed(gga, "$GPGGA" + good.substr(6));
  EXPECT_EQ(gga.lat, 48.1173);
}

TEST(gga, motion_is_signed_by_the_letters_with_ieee_zeros) {
  const struct {
    const char* first;
    const char* second;
    double bearing;
    double distance;
  } cases[] = {
      {"4807.038,N,01131.000,E", "4807.038,N,01131.000,E", pi / 2, 0.0},
      {"4807.038,N,01131.000,W", "4807.038,N,01131.000,W", -pi / 2, 0.0},
      {"4807.038,S,01131.000,E", "4807.098,S,01131.000,E", pi, 0.06 / 60 * meters_per_lat},
      {"4807.038,N,01131.000,E", "4807.098,N,01131.000,E", 0.0, 0.06 / 60 * meters_per_lat},
  };
  for (const auto& c : cases) {
    gps_gngga_t gga;
    feed(gga, std::string("$GPGGA,120000,") + c.first + ",1,08,0.9,1.0,M,1.0,M,,*00");
    feed(gga, std::string("$GPGGA,120001,") + c.second + ",1,08,0.9,1.0,M,1.0,M,,*00");
    EXPECT_NEAR(gga.direction_history[0], c.bearing, 1e-9) << c.second;
    EXPECT_NEAR(gga.magnitude_history[0], c.distance, 1e-6) << c.second;
  }
}

TEST(gga, southern_and_western_fixes_are_placed_with_their_sign) {
  gps_gngga_t gga;
  feed(gga, "$GPGGA,120000,3351.4080,S,15112.9300,W,1,08,0.9,1.0,M,1.0,M,,*00");
  EXPECT_NEAR(gga.lat, 33.8568, 1e-9) << "published as a magnitude";
  EXPECT_EQ(gga.lat_dir, "S");
  const auto marker = gga.map_annotations.list()[0]->coordinate;
  EXPECT_NEAR(marker.latitude, -33.8568, 1e-9);
  EXPECT_NEAR(marker.longitude, -151.2155, 1e-9);
  EXPECT_NEAR(gga.map_path.list()[0].latitude, -33.8568, 1e-9);
  EXPECT_NEAR(gga.map_path.list()[0].longitude, -151.2155, 1e-9);
  const auto dot = gga.time_annotation();
  EXPECT_EQ(dot->title, "12:00:00");
  EXPECT_NEAR(dot->coordinate.latitude, -33.8568, 1e-9) << "the map's position dot lies in the south too";
  EXPECT_NE(dot, gga.map_annotations.list()[0]) << "a new marker each time";
}

TEST(gga, no_marker_from_an_hdop_of_99) {
  gps_gngga_t gga;
  feed(gga, with_field(8, "99.5"));
  EXPECT_EQ(gga.lat, 48.1173);
  EXPECT_TRUE(gga.map_annotations.list().empty());
  EXPECT_EQ(gga.map_path.list().size(), 1u);
}

TEST(gga, histories_shift_and_stay_ten_long) {
  gps_gngga_t gga;
  for (int i = 0; i < 12; ++i) feed(gga, good);
  EXPECT_EQ(gga.magnitude_history.size(), 10u);
  EXPECT_EQ(gga.magnitude_history[9], 0.0) << "the first, large step has left the history";
  gga.reset();
  EXPECT_EQ(gga.lat, 0.0);
  EXPECT_EQ(gga.magnitude_history, motion_history_t{});
  EXPECT_TRUE(gga.map_path.list().empty());
  EXPECT_EQ(gga.lat_dir, "N");
}

TEST(gga, nav_pvt_records) {
  gps_gngga_t gga;
  auto r = pvt_record();
  r.fixType = 9;
  gga.update_pvt(r);
  EXPECT_FALSE(gga.pvt_mode) << "an unknown fix type is ignored";

  r = pvt_record();
  r.fixType = 3;
  r.pDOP = 250;
  r.numSV = 11;
  r.hour = 7;
  r.height = 12345;
  r.hMSL = -500;
  gga.update_pvt(r);
  EXPECT_TRUE(gga.pvt_mode);
  EXPECT_EQ(gga.fix_text(), "3D fix");
  EXPECT_EQ(gga.hdop_d, 2.5);
  EXPECT_EQ(gga.sat_count_i, 11);
  EXPECT_EQ(gga.time, (time_hms_t{7, 0, 0, 0}));
  EXPECT_EQ(gga.alt_d, 12.345);
  EXPECT_EQ(gga.mean_sea_level_d, -0.5);
  EXPECT_EQ(gga.direction_history, motion_history_t{}) << "headMot 0 pushes nothing";
  EXPECT_EQ(gga.lat, 0.0) << "lat 0: no position";

  r.headMot = 9000000;
  r.lat = -338568000;
  r.lon = 1512155000;
  r.pDOP = 9999;
  gga.update_pvt(r);
  EXPECT_NEAR(gga.direction_history[0], pi / 2, 1e-12);
  EXPECT_DOUBLE_EQ(gga.lat, -33.8568) << "records are signed";
  EXPECT_TRUE(gga.map_annotations.list().empty()) << "pDOP 9999: no marker";
  EXPECT_EQ(gga.map_path.list().size(), 1u);
  EXPECT_DOUBLE_EQ(gga.map_path.list()[0].latitude, -33.8568);
}

TEST(gga, nav_posllh_records) {
  gps_gngga_t gga;
  auto r = posllh_record();
  r.iTOW = 3 * 86'400'000u + 13 * 3'600'000u + 5 * 60'000u + 7'250u;
  r.height = 1000;
  r.hMSL = 2000;
  gga.update_posllh(r);
  EXPECT_EQ(gga.time, (time_hms_t{13, 5, 7, 250}));
  EXPECT_EQ(gga.alt_d, 1.0);
  EXPECT_EQ(gga.mean_sea_level_d, 2.0);
  EXPECT_TRUE(gga.map_path.list().empty()) << "lat 0: no position, no marker, no track";

  r.lat = 481173000;
  r.lon = 115166666;
  gga.update_posllh(r);
  EXPECT_DOUBLE_EQ(gga.lat, 48.1173);
  EXPECT_EQ(gga.map_annotations.list().size(), 1u);
  EXPECT_EQ(gga.map_path.list().size(), 1u);
  EXPECT_FALSE(gga.pvt_mode);
}

}  // namespace

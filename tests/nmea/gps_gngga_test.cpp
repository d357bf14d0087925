#include "nmea/gps_gngga.h"

#include <gtest/gtest.h>

#include <numbers>
#include <string>
#include <tuple>

#include "support/records.h"
#include "support/sentences.h"

namespace {

using namespace std::literals;
constexpr double pi = std::numbers::pi;
constexpr time_hms_t fix_time{12, 35, 19, 0};
const std::string good = "$GNGGA,123519.00,4807.03800,N,01131.00000,E,1,08,0.9,545.4,M,46.9,M,,*77";

// The good sentence with field i replaced.
std::string with_field(std::size_t i, const std::string& value) {
  std::array<std::string_view, 20> f;
  const auto n = scan_sentence(good, f).field_count;
  std::string out;
  for (std::size_t k = 0; k < n; ++k) out += (k ? "," : "") + (k == i ? value : std::string(f[k]));
  return out;
}

// The fix state, compared whole: time, position, letters, fix, satellites, HDOP, heights, table,
// the fix text, and how many markers and track points there are.
auto state(const gps_gngga_t& g) {
  return std::tuple(g.time, g.lat.get(), g.lon.get(), g.lat_dir, g.lon_dir, g.fix_i, g.sat_count_i, g.hdop_d, g.alt_d,
                    g.mean_sea_level_d, g.pvt_mode, g.fix_text(), g.map_annotations.list().size(),
                    g.map_path.list().size());
}

TEST(gga, decodes_the_worked_example_and_marks_fixes_below_an_hdop_of_99) {
  for (const auto& [hdop, marked] : {std::pair{"0.9", 1u}, {"98.99", 1u}, {"99.0", 0u}, {"99.5", 0u}}) {
    gps_gngga_t gga;
    int notices = 0;
    auto sub = gga.subscribe([&] { ++notices; });
    feed(gga, with_field(8, hdop));
    EXPECT_EQ(state(gga), std::tuple(fix_time, 48.1173, 11 + 31 / 60.0, "N"sv, "E"sv, 1, 8, std::stod(hdop), 545.4,
                                     46.9, false, "GPS"sv, marked, 1u));
    EXPECT_EQ(notices, 2) << "lat and lon are the published fields";
    EXPECT_TRUE(gga.magnitude_history[0] > 5e6 && gga.magnitude_history[1] == 0.0) << "measured from (0, 0)";
    if (!marked) continue;
    EXPECT_EQ(gga.map_annotations.list()[0]->title, "12:35:19");
  }
}

TEST(gga, takes_14_to_16_fields_of_its_two_tags_and_its_bounds) {
  const std::string cut = good.substr(0, good.rfind(','));
  const auto taken = [](const std::string& line) {
    gps_gngga_t gga;
    feed(gga, line);
    return gga.time.hh == 12;
  };
  for (const auto& line : {good, cut + "*77", good + ",x", "$GPGGA" + good.substr(6)}) EXPECT_TRUE(taken(line)) << line;
  for (const auto& line : {cut.substr(0, cut.rfind(',')) + "*77", good + ",x,y", "$GLGGA" + good.substr(6)})
    EXPECT_FALSE(taken(line)) << line;
  gps_gngga_t gga;
  feed(gga, "$GNGGA,123519.00,9000.0000,N,18000.0000,E,8,36,99.99,545.4,M,46.9,M,,*77");
  EXPECT_EQ(std::tuple(gga.fix_text(), gga.sat_count_i, gga.hdop_d, gga.lat.get(), gga.lon.get()),
            std::tuple("Simulation mode"sv, 36, 99.99, 90.0, 180.0));
  feed(gga, "$GNGGA,123519.00,-9-4.86e3,N,-99-4.86e3,E,8,36,99.99,545.4,M,46.9,M,,*77");
  EXPECT_EQ(std::tuple(gga.lat.get(), gga.lon.get()), std::tuple(-90.0, -180.0));
}

// A failed check keeps what earlier steps stored; fields that read as absent keep their value: an
// altitude without a unit or unreadable with one, an empty satellite count (0), an unknown letter.
// Without both coordinates a sentence sets the fix state only: no position, no track point.
TEST(gga, each_field_is_checked_in_turn) {
  // fix, satellites, HDOP, latitude, its letter, altitude, track points
  using partial_t = std::tuple<int, int, double, double, std::string_view, double, std::size_t>;
  const partial_t before_alt{0, 0, 0.0, 0.0, "S", -1.0, 0}, after_alt{0, 0, 0.0, 0.0, "S", 545.4, 0},
      alt_kept{1, 8, 0.9, 48.1173, "N", -1.0, 1}, no_sats{1, 0, 0.9, 48.1173, "N", 545.4, 1},
      letter_kept{1, 8, 0.9, 48.1173, "S", 545.4, 1}, no_position{1, 8, 0.9, 0.0, "S", 545.4, 0},
      invalid_fix{0, 8, 0.9, 48.1173, "N", 545.4, 1};
  const std::tuple<int, std::string, partial_t> cases[] = {
      {6, "9", before_alt},         {6, "", before_alt},          {6, "-1", before_alt},
      {7, "37", before_alt},        {7, "-1", before_alt},        {8, "1", before_alt},
      {8, "100.0", before_alt},     {8, "-0.5", before_alt},      {8, "", before_alt},
      {10, "F", before_alt},        {9, "545", before_alt},       {12, "F", after_alt},
      {2, "48x7.038", after_alt},   {2, "9107.0380", after_alt},  {2, "-9-9.e999", after_alt},
      {4, "18107.0380", after_alt}, {4, "-99-9.e999", after_alt}, {4, "1131.000", after_alt},
      {10, "", alt_kept},           {9, "x.5", alt_kept},         {7, "", no_sats},
      {3, "X", letter_kept},        {2, "", no_position},         {4, "", no_position},
      {6, "0", invalid_fix}};
  for (const auto& [field, value, expected] : cases) {
    gps_gngga_t gga;
    gga.alt_d = -1.0;
    gga.lat_dir = "S";
    feed(gga, with_field(field, value));
    EXPECT_EQ(gga.time, fix_time);
    EXPECT_EQ(
        partial_t(gga.fix_i, gga.sat_count_i, gga.hdop_d, gga.lat, gga.lat_dir, gga.alt_d, gga.map_path.list().size()),
        expected)
        << field << ": " << value;
  }
}

TEST(gga, motion_is_signed_by_the_letters_with_ieee_zeros) {
  const std::tuple<const char*, const char*, double, double> cases[] = {
      {"4807.038,N,01131.000,E", "4807.038,N,01131.000,E", pi / 2, 0.0},
      {"4807.038,N,01131.000,W", "4807.038,N,01131.000,W", -pi / 2, 0.0},
      {"4807.038,S,01131.000,E", "4807.098,S,01131.000,E", pi, 0.06 / 60 * meters_per_lat},
      {"4807.038,N,01131.000,E", "4807.098,N,01131.000,E", 0.0, 0.06 / 60 * meters_per_lat},
      {"4807.038,N,01131.000,E", "4807.098,N,01131.060,E", 0.7870773829016747, 157.16584063686295}};
  for (const auto& [first, second, bearing, distance] : cases) {
    gps_gngga_t gga;
    feed(gga, std::string("$GPGGA,120000,") + first + ",1,08,0.9,1.0,M,1.0,M,,*00");
    feed(gga, std::string("$GPGGA,120001,") + second + ",1,08,0.9,1.0,M,1.0,M,,*00");
    EXPECT_NEAR(gga.direction_history[0], bearing, 1e-9) << second;
    EXPECT_NEAR(gga.magnitude_history[0], distance, 1e-6) << second;
  }
}

TEST(gga, southern_fixes_are_placed_signed_and_reset_clears_all_a_fix_left) {
  gps_gngga_t gga;
  for (int i = 0; i < 12; ++i) feed(gga, "$GPGGA,120000,3351.4080,S,15112.9300,W,4,08,0.9,1.0,M,1.0,M,,*00");
  EXPECT_EQ(gga.magnitude_history[9], 0.0) << "the first, large step has left the history";
  EXPECT_NEAR(gga.lat, 33.8568, 1e-9) << "published as a magnitude";
  EXPECT_EQ(std::tuple(gga.lat_dir, gga.lon_dir), std::tuple("S"sv, "W"sv));
  const auto marker = gga.map_annotations.list()[0]->coordinate;
  EXPECT_NEAR(marker.latitude, -33.8568, 1e-9);
  EXPECT_NEAR(marker.longitude, -151.2155, 1e-9);
  EXPECT_EQ(gga.map_path.list()[0], marker);
  const auto dot = gga.time_annotation();
  EXPECT_EQ(std::tuple(dot->title, dot->coordinate), std::tuple("12:00:00"s, marker)) << "the position dot too";
  EXPECT_NE(dot, gga.map_annotations.list()[0]) << "a new marker each time";
  auto r = valid_pvt();
  r.headMot = 100;
  gga.update_pvt(r);
  gga.reset();
  EXPECT_EQ(state(gga),
            std::tuple(time_hms_t{}, 0.0, 0.0, "N"sv, "E"sv, 0, 0, 0.0, 0.0, 0.0, true, "no fix"sv, 0u, 0u));
  EXPECT_EQ(std::tuple(gga.direction_history, gga.magnitude_history),
            std::tuple(motion_history_t{}, motion_history_t{}));
  EXPECT_TRUE(gga.map_path.history().empty());
  EXPECT_EQ(gga.time_annotation()->coordinate, geo_coordinate_t{});
}

TEST(gga, nav_pvt_and_nav_posllh_records_and_back_to_sentences) {
  gps_gngga_t gga;
  auto r = pvt_record();
  r.fixType = 6;
  gga.update_pvt(r);
  EXPECT_FALSE(gga.pvt_mode) << "an unknown fix type is ignored";

  // class, id, length, iTOW, date, time, valid, tAcc, nano, fixType, flags, flags2, numSV, lon, lat, height, hMSL
  r = {1, 7, 92, 0, 0, 0, 0, 7, 8, 9, 0, 0, 0, 5, 0, 0, 11, 0, 0, 12345, -500};
  r.pDOP = 250;
  gga.update_pvt(r);
  EXPECT_EQ(state(gga), std::tuple(time_hms_t{7, 8, 9, 0}, 0.0, 0.0, "N"sv, "E"sv, 5, 11, 2.5, 12.345, -0.5, true,
                                   "time only fix"sv, 0u, 0u))
      << "lat 0: no position";
  EXPECT_EQ(gga.direction_history, motion_history_t{}) << "headMot 0 pushes nothing";

  r.headMot = 9000000;
  r.lat = -338568000;
  r.lon = 1;
  r.pDOP = 9999;
  gga.update_pvt(r);
  EXPECT_NEAR(gga.direction_history[0], pi / 2, 1e-12);
  EXPECT_EQ(std::tuple(gga.lat.get(), gga.lon.get(), gga.map_annotations.list().size()), std::tuple(-33.8568, 1e-7, 0u))
      << "records are signed; pDOP 9999: no marker";
  r.pDOP = 9998;
  r.lon = -1;
  gga.update_pvt(r);
  EXPECT_EQ(std::tuple(gga.map_annotations.list().size(), gga.map_path.list()[0]),
            std::tuple(1u, geo_coordinate_t{-33.8568, -1e-7}));

  feed(gga, with_field(6, "5"));
  EXPECT_EQ(std::tuple(gga.pvt_mode, gga.fix_text()), std::tuple(false, "Float RTK"sv)) << "back to the GGA table";
  for (const std::int64_t outside : {9, -1}) {
    gga.fix_i = outside;
    EXPECT_EQ(gga.fix_text(), "invalid");
  }

  gga.reset();
  gga.pvt_mode = true;
  const std::uint32_t wednesday_13_05_07_250 = 3 * 86'400'000u + 13 * 3'600'000u + 5 * 60'000u + 7'250u;
  gps_posllh_t p{1, 2, 28, wednesday_13_05_07_250, 0, 481173000, 1000, 2000};  // lon 0
  gga.update_posllh(p);
  EXPECT_EQ(state(gga), std::tuple(time_hms_t{13, 5, 7, 250}, 0.0, 0.0, "N"sv, "E"sv, 0, 0, 0.0, 1.0, 2.0, false,
                                   "invalid"sv, 0u, 0u))
      << "lon 0: no position";
  p.lon = 115166666;
  gga.update_posllh(p);
  EXPECT_DOUBLE_EQ(gga.lat, 48.1173);
  EXPECT_EQ(std::tuple(gga.map_annotations.list().size(), gga.map_path.list().size(), gga.map_path.list()[0]),
            std::tuple(1u, 1u, geo_coordinate_t{48.1173, 11.5166666}));
  EXPECT_EQ(gga.time_annotation()->coordinate, gga.map_path.list()[0]);
  EXPECT_GT(gga.magnitude_history[0], 5e6) << "measured from the last position";
}

}  // namespace

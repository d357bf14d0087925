#include <gtest/gtest.h>

#include <string>

#include "nmea/gps_gngll.h"
#include "nmea/gps_gnrmc.h"
#include "nmea/gps_gnvtg.h"
#include "support/records.h"
#include "support/sentences.h"

namespace {

// Feeds the line and counts the change notices it sends.
int notices_of(observable_t& decoder, gps_protocol_t& protocol, const std::string& line) {
  int notices = 0;
  auto sub = decoder.subscribe([&] { ++notices; });
  feed(protocol, line);
  return notices;
}

const std::string gll_good = "$GNGLL,4807.03800,N,01131.00000,E,123519.00,A,A*78";

TEST(gll, decodes_and_marks_whatever_the_status) {
  for (const char* status : {"A", "V"}) {
    gps_gngll_t gll;
    gll.data_status = "X";
    EXPECT_EQ(notices_of(gll, gll, "$GPGLL,4807.03800,N,01131.00000,E,123519.00," + std::string(status) + ",A*78"), 2);
    EXPECT_EQ(gll.time, (time_hms_t{12, 35, 19, 0}));
    EXPECT_DOUBLE_EQ(gll.lat, 48.1173);
    EXPECT_EQ(gll.data_status, status);
    ASSERT_EQ(gll.map_annotations.list().size(), 1u);
    EXPECT_EQ(gll.map_annotations.list()[0]->title, "12:35:19");
  }
}

TEST(gll, a_bad_status_field_count_or_tag_changes_little_or_nothing) {
  const struct {
    std::string line;
    bool time_set;
  } cases[] = {
      {"$GNGLL,4807.03800,N,01131.00000,E,123519.00,X,A*78", true},
      {"$GNGLL,4807.03800,N,01131.00000,E,123519.00,,A*78", true},
      {"$GNGLL,4807.03800,N,01131.00000,E,123519.00,AA,A*78", true},
      {"$GNGLL,9107.03800,N,01131.00000,E,123519.00,V,A*78", true},
      {gll_good.substr(0, gll_good.size() - 5) + "*78", false},
      {"$GNGLL,4807.03800,N,01131.00000,E,123519.00,A,A,x*78", false},
      {"$GLGLL" + gll_good.substr(6), false},
  };
  for (const auto& c : cases) {
    gps_gngll_t gll;
    feed(gll, c.line);
    EXPECT_EQ(gll.time.hh == 12, c.time_set) << c.line;
    EXPECT_EQ(gll.lat, 0.0) << c.line;
    EXPECT_EQ(gll.data_status, "A") << c.line;
  }
}

TEST(gll, southern_western_markers_are_signed_and_reset_clears_them) {
  gps_gngll_t gll;
  feed(gll, "$GPGLL,3351.4080,S,15112.9300,W,120000,V,A*00");
  EXPECT_GT(gll.lat, 0.0);
  EXPECT_EQ(gll.lat_dir, "S");
  EXPECT_EQ(gll.lon_dir, "W");
  EXPECT_LT(gll.map_annotations.list()[0]->coordinate.latitude, 0.0);
  EXPECT_LT(gll.map_annotations.list()[0]->coordinate.longitude, 0.0);
  gll.reset();
  EXPECT_EQ(gll.time, time_hms_t{});
  EXPECT_EQ(gll.lat, 0.0);
  EXPECT_EQ(gll.lon, 0.0);
  EXPECT_EQ(gll.lat_dir, "N");
  EXPECT_EQ(gll.lon_dir, "E");
  EXPECT_EQ(gll.data_status, "A");
  EXPECT_TRUE(gll.map_annotations.list().empty());
}

const std::string rmc_good = "$GNRMC,123519.00,A,4807.03800,N,01131.00000,E,0.022,84.4,230394,,,A*78";

// The good sentence with the speed, track and variation fields replaced.
std::string rmc_with(const std::string& speed, const std::string& track, const std::string& variation,
                     const std::string& letter) {
  return "$GNRMC,123519.00,A,4807.03800,S,01131.00000,W," + speed + "," + track + ",230394," + variation + "," +
         letter + ",A*78";
}

TEST(rmc, decodes_the_worked_example) {
  gps_gnrmc_t rmc;
  rmc.magnetic_variation = 7.0;
  rmc.data_status = "X";
  EXPECT_EQ(notices_of(rmc, rmc, rmc_good), 3) << "lat, lon and speed_knots are published";
  EXPECT_EQ(rmc.time, (time_hms_t{12, 35, 19, 0}));
  EXPECT_EQ(rmc.date, (date_ymd_t{1994, 3, 23}));
  EXPECT_EQ(rmc.data_status, "A");
  EXPECT_EQ(rmc.speed_knots, 0.022);
  EXPECT_EQ(rmc.track_angle, 84.4);
  EXPECT_EQ(rmc.magnetic_variation, 7.0);
  EXPECT_DOUBLE_EQ(rmc.lat, 48.1173);
  ASSERT_EQ(rmc.map_annotations.list().size(), 1u);
  EXPECT_EQ(rmc.map_annotations.list()[0]->title, "1994-03-23");
  feed(rmc, "$GPRMC,123519.00,V,4807.03800,N,01131.00000,E,0.022,84.4,230394,,,*78");
  EXPECT_EQ(rmc.data_status, "V") << "13 fields, the other tag";
}

TEST(rmc, stops_where_a_field_fails) {
  const struct {
    const char* name;
    std::string line;
    bool date_set, speed_set, track_set, position_set;
    double variation;
  } cases[] = {
      {"bounds taken", rmc_with("999.9", "360.0", "999.9", "W"), true, true, true, true, 999.9},
      {"variation E", rmc_with("1.0", "1.0", "3.1", "E"), true, true, true, true, 3.1},
      {"variation X", rmc_with("1.0", "1.0", "3.1", "X"), true, true, true, false, 0.0},
      {"variation 1000.0", rmc_with("1.0", "1.0", "1000.0", "E"), true, true, true, false, 0.0},
      {"variation without letter", rmc_with("1.0", "1.0", "3.1", ""), true, true, true, true, 0.0},
      {"speed 1000.0", rmc_with("1000.0", "1.0", "", ""), true, false, false, false, 0.0},
      {"speed 12", rmc_with("12", "1.0", "", ""), true, false, false, false, 0.0},
      {"track 360.5", rmc_with("1.0", "360.5", "", ""), true, true, false, false, 0.0},
      {"latitude above 90", "$GNRMC,123519.00,A,9107.03800,N,01131.00000,E,0.022,84.4,230394,,,A*78", true, true, true,
       false, 0.0},
      {"date 320394", "$GNRMC,123519.00,A,4807.03800,N,01131.00000,E,0.022,84.4,320394,,,A*78", false, false, false,
       false, 0.0},
      {"status X", "$GNRMC,123519.00,X,4807.03800,N,01131.00000,E,0.022,84.4,230394,,,A*78", true, false, false, false,
       0.0},
      {"12 fields", "$GNRMC,123519.00,A,4807.03800,N,01131.00000,E,0.022,84.4,230394,,*78", false, false, false, false,
       0.0},
      {"14 fields", "$GNRMC,123519.00,A,4807.03800,N,01131.00000,E,0.022,84.4,230394,,,A,x*78", true, true, true, true,
       0.0},
      {"15 fields", "$GNRMC,123519.00,A,4807.03800,N,01131.00000,E,0.022,84.4,230394,,,A,x,y*78", false, false, false,
       false, 0.0},
      {"other tag", "$GLRMC,123519.00,A,4807.03800,N,01131.00000,E,0.022,84.4,230394,,,A*78", false, false, false,
       false, 0.0},
  };
  for (const auto& c : cases) {
    gps_gnrmc_t rmc;
    feed(rmc, c.line);
    EXPECT_EQ(rmc.time.hh == 12, c.date_set || c.line.find(",320394,") != std::string::npos) << c.name;
    EXPECT_EQ(rmc.date.y != 0, c.date_set) << c.name;
    EXPECT_EQ(rmc.speed_knots != 0.0, c.speed_set) << c.name;
    EXPECT_EQ(rmc.track_angle != 0.0, c.track_set) << c.name;
    EXPECT_EQ(rmc.lat != 0.0, c.position_set) << c.name;
    EXPECT_EQ(rmc.lat_dir, c.position_set && c.line.find(",S,") != std::string::npos ? "S" : "N") << c.name;
    EXPECT_EQ(rmc.magnetic_variation, c.variation) << c.name;
  }
}

TEST(vtg, reads_each_value_from_its_own_field) {
  gps_gnvtg_t vtg;
  vtg.magnetic_track_mode_deg = 5.0;
  EXPECT_EQ(notices_of(vtg, vtg, "$GNVTG,84.4,T,,M,0.022,N,0.041,K,A*2E"), 3) << "an empty value is no assignment";
  EXPECT_EQ(vtg.true_track_mode_deg, 84.4);
  EXPECT_EQ(vtg.magnetic_track_mode_deg, 5.0);
  EXPECT_EQ(vtg.speed_knots, 0.022);
  EXPECT_EQ(vtg.speed_kph, 0.041);
  const struct {
    std::string line;
    double true_track, magnetic, knots, kph;
  } cases[] = {
      {"$GPVTG,360.0,T,999.9,M,999.9,N,999.9,K,A*2E", 360.0, 999.9, 999.9, 999.9},
      {"$GNVTG,1.0,T,1000.0,M,1.0,N,1.0,K,A*2E", 1.0, 5.0, 0.022, 0.041},
      {"$GNVTG,1.0,T,1.0,M,1000.0,N,1.0,K,A*2E", 1.0, 1.0, 0.022, 0.041},
      {"$GNVTG,1.0,T,1.0,M,1.0,N,1000.0,K,A*2E", 1.0, 1.0, 1.0, 0.041},
      {"$GNVTG,360.1,T,1.0,M,1.0,N,1.0,K,A*2E", 84.4, 5.0, 0.022, 0.041},
      {"$GNVTG,10.0,t,,M,1.0,N,1.0,K,A*2E", 84.4, 5.0, 0.022, 0.041},
      {"$GNVTG,10.0,T,,m,1.0,N,1.0,K,A*2E", 84.4, 5.0, 0.022, 0.041},
      {"$GNVTG,10.0,T,,M,1.0,n,1.0,K,A*2E", 84.4, 5.0, 0.022, 0.041},
      {"$GNVTG,10.0,T,,M,1.0,N,1.0,k,A*2E", 84.4, 5.0, 0.022, 0.041},
      {"$GLVTG,10.0,T,,M,1.0,N,1.0,K,A*2E", 84.4, 5.0, 0.022, 0.041},
      {"$GNVTG,10.0,T,,M,1.0,N,1.0,K*2E", 84.4, 5.0, 0.022, 0.041},
  };
  for (const auto& c : cases) {
    gps_gnvtg_t v;
    feed(v, "$GNVTG,84.4,T,5.0,M,0.022,N,0.041,K,A*2E");
    feed(v, c.line);
    EXPECT_EQ(v.true_track_mode_deg, c.true_track) << c.line;
    EXPECT_EQ(v.magnetic_track_mode_deg, c.magnetic) << c.line;
    EXPECT_EQ(v.speed_knots, c.knots) << c.line;
    EXPECT_EQ(v.speed_kph, c.kph) << c.line;
  }
  vtg.reset();
  EXPECT_EQ(vtg.true_track_mode_deg, 0.0);
  EXPECT_EQ(vtg.magnetic_track_mode_deg, 0.0);
  EXPECT_EQ(vtg.speed_knots, 0.0);
  EXPECT_EQ(vtg.speed_kph, 0.0);
}

TEST(records, time_speeds_track_and_variation_from_nav_pvt) {
  gps_gnrmc_t rmc;
  gps_gnvtg_t vtg;
  gps_gngll_t gll;
  auto r = pvt_record();
  r.gSpeed = 1000;
  r.headVeh = 9000000;
  r.magDec = -250;
  r.year = 2024;
  r.month = 3;
  r.day = 5;
  r.hour = 1;
  r.min = 2;
  r.sec = 3;
  rmc.update_pvt(r);
  vtg.update_pvt(r);
  gll.update_pvt(r);
  EXPECT_NEAR(rmc.speed_knots, 1.943844, 1e-6);
  EXPECT_NEAR(vtg.speed_knots, 1.943844, 1e-6);
  EXPECT_NEAR(vtg.speed_kph, 3.6, 1e-12);
  EXPECT_DOUBLE_EQ(rmc.track_angle, 90.0);
  EXPECT_EQ(rmc.magnetic_variation, -2.5);
  EXPECT_EQ(rmc.date, (date_ymd_t{2024, 3, 5}));
  EXPECT_EQ(rmc.time, (time_hms_t{1, 2, 3, 0}));
  EXPECT_EQ(gll.time, (time_hms_t{1, 2, 3, 0}));
  EXPECT_EQ(rmc.lat, 0.0) << "lat 0: time and motion only";
  EXPECT_EQ(gll.lat, 0.0);

  r.lat = 10'000'000;
  r.lon = -20'000'000;
  r.pDOP = 9999;
  rmc.update_pvt(r);
  gll.update_pvt(r);
  EXPECT_EQ(rmc.lat, 1.0);
  EXPECT_EQ(gll.lon, -2.0);
  EXPECT_TRUE(rmc.map_annotations.list().empty()) << "no marker above a position DOP of 99.98";
  EXPECT_TRUE(gll.map_annotations.list().empty());
  r.pDOP = 9998;
  rmc.update_pvt(r);
  gll.update_pvt(r);
  EXPECT_EQ(rmc.map_annotations.list().size(), 1u);
  EXPECT_EQ(gll.map_annotations.list().size(), 1u);

  auto p = posllh_record();
  p.iTOW = 61'000;
  p.lat = 1;
  p.lon = 40'000'000;
  rmc.update_posllh(p);
  gll.update_posllh(p);
  EXPECT_EQ(rmc.map_annotations.list()[0]->title, "2024-03-05") << "the date keeps its last value";
  EXPECT_EQ(gll.map_annotations.list()[0]->title, "00:01:01");
  EXPECT_EQ(gll.lat, 1e-7) << "a latitude of 1e-7 degree is a position";
  EXPECT_EQ(rmc.lon, 4.0);
  p.lon = 0;
  gll.update_posllh(p);
  EXPECT_EQ(gll.lon, 4.0) << "lon 0: no position";

  rmc.reset();
  EXPECT_EQ(rmc.time, time_hms_t{});
  EXPECT_EQ(rmc.date, date_ymd_t{});
  EXPECT_EQ(rmc.lat, 0.0);
  EXPECT_EQ(rmc.lon, 0.0);
  EXPECT_EQ(rmc.speed_knots, 0.0);
  EXPECT_EQ(rmc.track_angle, 0.0);
  EXPECT_EQ(rmc.magnetic_variation, 0.0);
  EXPECT_TRUE(rmc.map_annotations.list().empty());
}

}  // namespace

#include <gtest/gtest.h>

#include <string>

#include "nmea/gps_gngll.h"
#include "nmea/gps_gnrmc.h"
#include "nmea/gps_gnvtg.h"
#include "support/records.h"
#include "support/sentences.h"

namespace {

TEST(gll, decodes_and_marks_whatever_the_status) {
  for (const char* status : {"A", "V"}) {
    gps_gngll_t gll;
    feed(gll, std::string("$GNGLL,4807.03800,N,01131.00000,E,123519.00,") + status + ",A*78");
    EXPECT_EQ(gll.time, (time_hms_t{12, 35, 19, 0}));
    EXPECT_DOUBLE_EQ(gll.lat, 48.1173);
    EXPECT_EQ(gll.data_status, status);
    ASSERT_EQ(gll.map_annotations.list().size(), 1u);
    EXPECT_EQ(gll.map_annotations.list()[0]->title, "12:35:19");
  }
}

TEST(gll, a_bad_status_or_field_count_changes_little_or_nothing) {
  for (const char* status : {"X", "", "AA"}) {
    gps_gngll_t gll;
    feed(gll, std::string("$GNGLL,4807.03800,N,01131.00000,E,123519.00,") + status + ",A*78");
    EXPECT_EQ(gll.time, (time_hms_t{12, 35, 19, 0})) << status;
    EXPECT_EQ(gll.lat, 0.0) << status;
    EXPECT_EQ(gll.data_status, "A") << status;
  }
  gps_gngll_t gll;
  feed(gll, "$GNGLL,4807.03800,N,01131.00000,E,123519.00,A,A,x*78");
  EXPECT_EQ(gll.time, time_hms_t{});
}

TEST(gll, southern_western_markers_are_signed) {
  gps_gngll_t gll;
  feed(gll, "$GPGLL,3351.4080,S,15112.9300,W,120000,A,A*00");
  EXPECT_GT(gll.lat, 0.0);
  EXPECT_LT(gll.map_annotations.list()[0]->coordinate.latitude, 0.0);
  EXPECT_LT(gll.map_annotations.list()[0]->coordinate.longitude, 0.0);
}

const std::string rmc_good = "$GNRMC,123519.00,A,4807.03800,N,01131.00000,E,0.022,84.4,230394,,,A*78";

TEST(rmc, decodes_the_worked_example) {
  gps_gnrmc_t rmc;
  rmc.magnetic_variation = 7.0;
  feed(rmc, rmc_good);
  EXPECT_EQ(rmc.time, (time_hms_t{12, 35, 19, 0}));
  EXPECT_EQ(rmc.date, (date_ymd_t{1994, 3, 23}));
  EXPECT_EQ(rmc.speed_knots, 0.022);
  EXPECT_EQ(rmc.track_angle, 84.4);
  EXPECT_EQ(rmc.magnetic_variation, 7.0);
  EXPECT_DOUBLE_EQ(rmc.lat, 48.1173);
  ASSERT_EQ(rmc.map_annotations.list().size(), 1u);
  EXPECT_EQ(rmc.map_annotations.list()[0]->title, "1994-03-23");
}

TEST(rmc, stops_where_a_field_fails) {
  const struct {
    const char* name;
    std::string line;
    bool date_set, speed_set, track_set, position_set;
    double variation;
  } cases[] = {
      {"variation E", "$GNRMC,123519.00,A,4807.03800,N,01131.00000,E,0.022,84.4,230394,3.1,E,A*11", true, true, true,
       true, 3.1},
      {"variation X", "$GNRMC,123519.00,A,4807.03800,N,01131.00000,E,0.022,84.4,230394,3.1,X,A*11", true, true, true,
       false, 0.0},
      {"date 320394", "$GNRMC,123519.00,A,4807.03800,N,01131.00000,E,0.022,84.4,320394,,,A*78", false, false, false,
       false, 0.0},
      {"speed 12", "$GNRMC,123519.00,A,4807.03800,N,01131.00000,E,12,84.4,230394,,,A*78", true, false, false, false,
       0.0},
      {"track 360.5", "$GNRMC,123519.00,A,4807.03800,N,01131.00000,E,0.022,360.5,230394,,,A*78", true, true, false,
       false, 0.0},
  };
  for (const auto& c : cases) {
    gps_gnrmc_t rmc;
    feed(rmc, c.line);
    EXPECT_EQ(rmc.time, (time_hms_t{12, 35, 19, 0})) << c.name;
    EXPECT_EQ(rmc.date.y != 0, c.date_set) << c.name;
    EXPECT_EQ(rmc.speed_knots != 0.0, c.speed_set) << c.name;
    EXPECT_EQ(rmc.track_angle != 0.0, c.track_set) << c.name;
    EXPECT_EQ(rmc.lat != 0.0, c.position_set) << c.name;
    EXPECT_EQ(rmc.magnetic_variation, c.variation) << c.name;
  }
}

TEST(vtg, reads_each_value_from_its_own_field) {
  gps_gnvtg_t vtg;
  vtg.magnetic_track_mode_deg = 5.0;
  feed(vtg, "$GNVTG,84.4,T,,M,0.022,N,0.041,K,A*2E");
  EXPECT_EQ(vtg.true_track_mode_deg, 84.4);
  EXPECT_EQ(vtg.magnetic_track_mode_deg, 5.0);
  EXPECT_EQ(vtg.speed_knots, 0.022);
  EXPECT_EQ(vtg.speed_kph, 0.041);
  feed(vtg, "$GNVTG,84.4,T,400.0,M,0.022,N,0.041,K,A*2E");
  EXPECT_EQ(vtg.magnetic_track_mode_deg, 400.0) << "the magnetic bound is 999.9";
  feed(vtg, "$GNVTG,10.0,t,,M,1.0,N,1.0,K,A*2E");
  EXPECT_EQ(vtg.true_track_mode_deg, 84.4) << "a lower-case unit letter changes nothing";
  feed(vtg, "$GNVTG,360.1,T,,M,1.0,N,1.0,K,A*2E");
  EXPECT_EQ(vtg.speed_knots, 0.022) << "a true track above 360 stops before the speeds";
}

TEST(records, speeds_track_and_variation_from_nav_pvt) {
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
  rmc.update_pvt(r);
  vtg.update_pvt(r);
  gll.update_pvt(r);
  EXPECT_NEAR(rmc.speed_knots, 1.943844, 1e-6);
  EXPECT_NEAR(vtg.speed_knots, 1.943844, 1e-6);
  EXPECT_NEAR(vtg.speed_kph, 3.6, 1e-12);
  EXPECT_DOUBLE_EQ(rmc.track_angle, 90.0);
  EXPECT_EQ(rmc.magnetic_variation, -2.5);
  EXPECT_EQ(rmc.date, (date_ymd_t{2024, 3, 5}));
  EXPECT_EQ(gll.time, (time_hms_t{1, 0, 0, 0}));
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
  r.pDOP = 9998;
  gll.update_pvt(r);
  EXPECT_EQ(gll.map_annotations.list().size(), 1u);

  auto p = posllh_record();
  p.lat = 10'000'000;
  p.lon = 20'000'000;
  rmc.update_posllh(p);
  EXPECT_EQ(rmc.map_annotations.list()[0]->title, "2024-03-05") << "the date keeps its last value";
}

}  // namespace

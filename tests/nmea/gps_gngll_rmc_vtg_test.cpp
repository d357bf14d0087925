#include <gtest/gtest.h>

#include <string>
#include <tuple>

#include "nmea/gps_gngll.h"
#include "nmea/gps_gnrmc.h"
#include "nmea/gps_gnvtg.h"
#include "support/records.h"
#include "support/sentences.h"

namespace {

using namespace std::string_view_literals;

// Feeds the line and counts the change notices it sends.
template <class Decoder>
int notices_of(Decoder& decoder, const std::string& line) {
  int notices = 0;
  auto sub = decoder.subscribe([&] { ++notices; });
  feed(decoder, line);
  return notices;
}

auto state(const gps_gngll_t& g) {
  return std::tuple(g.time, g.lat.get(), g.lon.get(), g.lat_dir, g.lon_dir, g.data_status,
                    g.map_annotations.list().size());
}

auto state(const gps_gnrmc_t& r) {
  return std::tuple(r.time, r.date, r.lat.get(), r.lon.get(), r.lat_dir, r.lon_dir, r.data_status, r.speed_knots.get(),
                    r.track_angle, r.magnetic_variation, r.map_annotations.list().size());
}

auto state(const gps_gnvtg_t& v) {
  return std::tuple(v.true_track_mode_deg.get(), v.magnetic_track_mode_deg.get(), v.speed_knots.get(),
                    v.speed_kph.get());
}

constexpr time_hms_t fix_time{12, 35, 19, 0};
constexpr double la = 48.1173, lo = 11 + 31 / 60.0;

TEST(gll, decodes_whatever_the_status_and_stops_at_a_bad_field) {
  const std::tuple<std::string, int, decltype(state(gps_gngll_t{}))> cases[] = {
      {"$GNGLL,4807.03800,N,01131.00000,E,123519.00,A,A*78", 2, {fix_time, la, lo, "N", "E", "A", 1}},
      {"$GPGLL,3351.4080,S,15112.9300,W,123519.00,V,A*00", 2, {fix_time, 33.8568, 151.2155, "S", "W", "V", 1}},
      {"$GNGLL,4807.03800,N,01131.00000,E,123519.00,X,A*78", 0, {fix_time, 0.0, 0.0, "N", "E", "A", 0}},
      {"$GNGLL,4807.03800,N,01131.00000,E,123519.00,AA,A*78", 0, {fix_time, 0.0, 0.0, "N", "E", "A", 0}},
      {"$GNGLL,9107.03800,N,01131.00000,E,123519.00,V,A*78", 0, {fix_time, 0.0, 0.0, "N", "E", "A", 0}},
      {"$GNGLL,4807.03800,N,,E,123519.00,V,A*78", 0, {fix_time, 0.0, 0.0, "N", "E", "V", 0}},
      {"$GNGLL,4807.03800,N,01131.00000,E,123519.00,A*78", 0, {{}, 0.0, 0.0, "N", "E", "A", 0}},
      {"$GNGLL,4807.03800,N,01131.00000,E,123519.00,A,A,x*78", 0, {{}, 0.0, 0.0, "N", "E", "A", 0}},
      {"$GLGLL,4807.03800,N,01131.00000,E,123519.00,A,A*78", 0, {{}, 0.0, 0.0, "N", "E", "A", 0}}};
  for (const auto& [line, notices, expected] : cases) {
    gps_gngll_t gll;
    EXPECT_EQ(notices_of(gll, line), notices) << line;
    EXPECT_EQ(state(gll), expected) << line;
  }
  gps_gngll_t gll;
  feed(gll, std::get<0>(cases[1]));
  const auto& marker = *gll.map_annotations.list()[0];
  EXPECT_EQ(std::tuple(marker.title, marker.coordinate), std::tuple("12:35:19", geo_coordinate_t{-33.8568, -151.2155}));
  gll.reset();
  EXPECT_EQ(state(gll), state(gps_gngll_t{}));
}

TEST(rmc, decodes_and_stops_where_a_field_fails) {
  const auto line = [](const char* status, const char* speed, const char* track, const char* date, const char* var) {
    return "$GNRMC,123519.00," + std::string(status) + ",4807.03800,S,01131.00000,W," + speed + "," + track + "," +
           date + "," + var + ",A*78";
  };
  const date_ymd_t date{1994, 3, 23};
  const std::pair<std::string, decltype(state(gps_gnrmc_t{}))> cases[] = {
      {line("A", "0.022", "84.4", "230394", ","), {fix_time, date, la, lo, "S", "W", "A", 0.022, 84.4, 0.0, 1}},
      {line("V", "999.9", "360.0", "230394", "999.9,W"),
       {fix_time, date, la, lo, "S", "W", "V", 999.9, 360.0, 999.9, 1}},
      {line("A", "1.0", "1.0", "230394", "3.1,E"), {fix_time, date, la, lo, "S", "W", "A", 1.0, 1.0, 3.1, 1}},
      {line("A", "1.0", "1.0", "230394", "3.1,"), {fix_time, date, la, lo, "S", "W", "A", 1.0, 1.0, 0.0, 1}},
      {line("A", "1.0", "1.0", "230394", "3.1,X"), {fix_time, date, 0.0, 0.0, "N", "E", "A", 1.0, 1.0, 0.0, 0}},
      {line("A", "1.0", "1.0", "230394", "1000.0,E"), {fix_time, date, 0.0, 0.0, "N", "E", "A", 1.0, 1.0, 0.0, 0}},
      {line("A", "1.0", "360.5", "230394", ","), {fix_time, date, 0.0, 0.0, "N", "E", "A", 1.0, 0.0, 0.0, 0}},
      {line("A", "1000.0", "1.0", "230394", ","), {fix_time, date, 0.0, 0.0, "N", "E", "A", 0.0, 0.0, 0.0, 0}},
      {line("A", "12", "1.0", "230394", ","), {fix_time, date, 0.0, 0.0, "N", "E", "A", 0.0, 0.0, 0.0, 0}},
      {line("X", "1.0", "1.0", "230394", ","), {fix_time, date, 0.0, 0.0, "N", "E", "A", 0.0, 0.0, 0.0, 0}},
      {"$GNRMC,123519.00,V,9107.03800,N,01131.00000,E,1.0,1.0,230394,,,A*78",
       {fix_time, date, 0.0, 0.0, "N", "E", "A", 1.0, 1.0, 0.0, 0}},
      {line("A", "1.0", "1.0", "320394", ","), {fix_time, {}, 0.0, 0.0, "N", "E", "A", 0.0, 0.0, 0.0, 0}},
      {line("A", "0.022", "84.4", "230394", ",,x"), {fix_time, date, la, lo, "S", "W", "A", 0.022, 84.4, 0.0, 1}},
      {line("A", "1.0", "1.0", "230394", ",,x,y"), state(gps_gnrmc_t{})},
      {"$GNRMC,123519.00,A,4807.03800,N,01131.00000,E,1.0,1.0,230394,,*78", state(gps_gnrmc_t{})},
      {"$GLRMC,123519.00,A,4807.03800,N,01131.00000,E,1.0,1.0,230394,,,A*78", state(gps_gnrmc_t{})}};
  for (const auto& [line, expected] : cases) {
    gps_gnrmc_t rmc;
    EXPECT_EQ(notices_of(rmc, line), std::get<2>(expected) ? 3 : std::get<7>(expected) ? 1 : 0) << line;
    EXPECT_EQ(state(rmc), expected) << line;
  }
  gps_gnrmc_t rmc;
  feed(rmc, cases[0].first);
  EXPECT_EQ(rmc.map_annotations.list()[0]->title, "1994-03-23");
  rmc.reset();
  EXPECT_EQ(state(rmc), state(gps_gnrmc_t{}));
}

TEST(vtg, reads_each_value_from_its_own_field) {
  const std::string first = "$GNVTG,84.4,T,5.0,M,0.022,N,0.041,K,A*2E";
  const std::tuple kept{84.4, 5.0, 0.022, 0.041};
  const std::tuple<std::string, int, decltype(kept)> cases[] = {
      {"$GPVTG,360.0,T,999.9,M,999.9,N,999.9,K,A*2E", 4, {360.0, 999.9, 999.9, 999.9}},
      {"$GNVTG,1.0,T,,M,1.0,N,,K,A*2E", 2, {1.0, 5.0, 1.0, 0.041}},
      {"$GNVTG,1.0,T,1000.0,M,1.0,N,1.0,K,A*2E", 1, {1.0, 5.0, 0.022, 0.041}},
      {"$GNVTG,1.0,T,1.0,M,1000.0,N,1.0,K,A*2E", 2, {1.0, 1.0, 0.022, 0.041}},
      {"$GNVTG,1.0,T,1.0,M,1.0,N,1000.0,K,A*2E", 3, {1.0, 1.0, 1.0, 0.041}},
      {"$GNVTG,360.1,T,1.0,M,1.0,N,1.0,K,A*2E", 0, kept},
      {"$GNVTG,10.0,t,,M,1.0,N,1.0,K,A*2E", 0, kept},
      {"$GNVTG,10.0,T,,m,1.0,N,1.0,K,A*2E", 0, kept},
      {"$GNVTG,10.0,T,,M,1.0,n,1.0,K,A*2E", 0, kept},
      {"$GNVTG,10.0,T,,M,1.0,N,1.0,k,A*2E", 0, kept},
      {"$GLVTG,10.0,T,,M,1.0,N,1.0,K,A*2E", 0, kept},
      {"$GNVTG,10.0,T,,M,1.0,N,1.0,K*2E", 0, kept}};
  for (const auto& [line, notices, expected] : cases) {
    gps_gnvtg_t vtg;
    feed(vtg, first);
    EXPECT_EQ(notices_of(vtg, line), notices) << line;
    EXPECT_EQ(state(vtg), expected) << line;
  }
  gps_gnvtg_t vtg;
  feed(vtg, first);
  vtg.reset();
  EXPECT_EQ(state(vtg), std::tuple(0.0, 0.0, 0.0, 0.0));
}

TEST(records, time_speeds_track_and_variation_from_nav_pvt) {
  gps_gnrmc_t rmc;
  gps_gnvtg_t vtg;
  gps_gngll_t gll;
  auto r = valid_pvt();  // 2017-07-19 08:50:05
  r.lat = r.lon = 0;
  r.gSpeed = 1000;
  r.headVeh = 100000;
  r.magDec = -250;
  for (gps_decoder_t* decoder : std::initializer_list<gps_decoder_t*>{&rmc, &vtg, &gll}) decoder->update_pvt(r);
  const double knots = 1000 / 514.444444;
  EXPECT_EQ(state(vtg), std::tuple(0.0, 0.0, knots, 3.6));
  EXPECT_EQ(state(rmc), std::tuple(time_hms_t{8, 50, 5, 0}, date_ymd_t{2017, 7, 19}, 0.0, 0.0, "N"sv, "E"sv, "A"sv,
                                   knots, 1.0, -2.5, std::size_t{0}))
      << "lat 0: time and motion only";
  EXPECT_EQ(gll.time, (time_hms_t{8, 50, 5, 0}));

  r.lat = 10'000'000;
  r.lon = -20'000'000;
  for (const auto& [pdop, markers] : {std::pair{9999, 0u}, {9998, 1u}}) {
    r.pDOP = static_cast<std::uint16_t>(pdop);
    rmc.update_pvt(r);
    gll.update_pvt(r);
    EXPECT_EQ(std::tuple(rmc.lat.get(), rmc.lon.get(), gll.lat.get(), gll.lon.get(), rmc.map_annotations.list().size(),
                         gll.map_annotations.list().size()),
              std::tuple(1.0, -2.0, 1.0, -2.0, markers, markers))
        << "no marker above a position DOP of 99.98";
  }

  gps_posllh_t p{1, 2, 28, 61'000, 40'000'000, 1};  // class, id, length, iTOW, lon, lat
  rmc.update_posllh(p);
  gll.update_posllh(p);
  EXPECT_EQ(std::tuple(rmc.map_annotations.list()[0]->title, gll.map_annotations.list()[0]->title, rmc.lat.get(),
                       gll.lat.get(), gll.lon.get()),
            std::tuple("2017-07-19", "00:01:01", 1e-7, 1e-7, 4.0))
      << "the date keeps its last value; a latitude of 1e-7 degree is a position";
  gll.update_posllh({1, 2, 28, 62'000, 0, 1});  // a second later, lon 0
  EXPECT_EQ(std::tuple(gll.lon.get(), gll.map_annotations.list()[0]->title), std::tuple(4.0, "00:01:01"))
      << "lon 0: no position, no marker";
}

}  // namespace

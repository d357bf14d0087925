#include "ubx/records.h"

#include <gtest/gtest.h>

#include <array>
#include <tuple>

#include "support/records.h"

namespace {

TEST(records, fields_land_at_their_offsets_and_write_back_the_same) {
  std::array<std::uint8_t, gps_pvt_t::image_size> image{};
  for (std::size_t i = 0; i < image.size(); ++i) image[i] = static_cast<std::uint8_t>(i);
  const auto p = gps_pvt_t::from_image(image);
  EXPECT_EQ(std::tuple(p.length, p.iTOW, p.year, p.sec, p.tAcc, p.fixType, p.numSV, p.lon, p.vAcc, p.gSpeed, p.pDOP,
                       p.headVeh, p.magDec, p.magAcc),
            std::tuple(0x0302, 0x07060504u, 0x0908, 14, 0x13121110u, 24, 27, 0x1F1E1D1C, 0x33323130u, 0x43424140,
                       0x5150, 0x5B5A5958, 0x5D5C, 0x5F5E));
  EXPECT_EQ(image_of(p), image);

  std::array<std::uint8_t, gps_posllh_t::image_size> head{0x01, 0x02, 28,   0,    0x10, 0x32, 0x54, 0x76,
                                                          0x00, 0x00, 0x00, 0x80, 0xFF, 0xFF, 0xFF, 0xFF};
  head[28] = 0x01;
  const auto l = gps_posllh_t::from_image(head);
  EXPECT_EQ(std::tuple(l.iTOW, l.lon, l.lat, l.vAcc), std::tuple(0x76543210u, INT32_MIN, -1, 1u));
  EXPECT_EQ(image_of(l), head);
}

// A list record's header, then its entries in wire order; NAV-DOP's seven values after iTOW.
TEST(records, sky_records_read_their_fields_at_their_offsets_and_write_back_the_same) {
  std::vector<std::uint8_t> image(gps_sat_t::header_size + 2 * gps_sat_sv_t::size);
  for (std::size_t i = 0; i < image.size(); ++i) image[i] = static_cast<std::uint8_t>(i);
  gps_sat_t sat;
  sat.read_image(image);
  EXPECT_EQ(std::tuple(sat.length, sat.iTOW, sat.version, sat.count, sat.reserved, sat.entries.size()),
            std::tuple(0x0302, 0x07060504u, 8, 9, 0x0B0A, 2u));
  EXPECT_EQ(sat.entries[1], (gps_sat_sv_t{24, 25, 26, 27, 0x1D1C, 0x1F1E, 0x23222120}));
  EXPECT_EQ(image_of(sat), image);

  image.resize(gps_sig_t::header_size + gps_sig_sv_t::size);
  gps_sig_t sig;
  sig.read_image(image);
  EXPECT_EQ(sig.entries, (std::vector<gps_sig_sv_t>{{12, 13, 14, 15, 0x1110, 18, 19, 20, 21, 0x1716, 0x1B1A1918}}));
  EXPECT_EQ(image_of(sig), image);

  std::array<std::uint8_t, gps_dop_t::image_size> dop_image{};
  for (std::size_t i = 0; i < dop_image.size(); ++i) dop_image[i] = static_cast<std::uint8_t>(i);
  const auto dop = gps_dop_t::from_image(dop_image);
  EXPECT_EQ(std::tuple(dop.gDOP, dop.hDOP, dop.eDOP), std::tuple(0x0908, 0x1110, 0x1514));
  EXPECT_EQ(image_of(dop), dop_image);
}

TEST(records, a_frame_is_sync_image_and_fletcher_checksum) {
  EXPECT_EQ(frame_of(std::array<std::uint8_t, 3>{0x01, 0x02, 0xFF}),
            (std::vector<std::uint8_t>{0xB5, 0x62, 0x01, 0x02, 0xFF, 0x02, 0x06}));
  std::array<std::uint8_t, 300> ones;
  ones.fill(1);
  EXPECT_EQ(ubx_checksum(ones), (std::array<std::uint8_t, 2>{300 % 256, (300 * 301 / 2) % 256}));
}

TEST(records, plausibility_checks_each_range) {
  using change_t = void (*)(gps_pvt_t&);
  // Each row sets one field to the last value taken, then to the first value refused.
  const std::pair<change_t, change_t> bounds[] = {
      {[](gps_pvt_t& r) { r.numSV = 36; }, [](gps_pvt_t& r) { r.numSV = 37; }},
      {[](gps_pvt_t& r) { r.pDOP = 9999; }, [](gps_pvt_t& r) { r.pDOP = 10000; }},
      {[](gps_pvt_t& r) { r.fixType = 5; }, [](gps_pvt_t& r) { r.fixType = 6; }},
      {[](gps_pvt_t& r) { r.lat = 900000000; }, [](gps_pvt_t& r) { r.lat = 900000001; }},
      {[](gps_pvt_t& r) { r.lat = -900000000; }, [](gps_pvt_t& r) { r.lat = -900000001; }},
      {[](gps_pvt_t& r) { r.lon = 1800000000; }, [](gps_pvt_t& r) { r.lon = 1800000001; }},
      {[](gps_pvt_t& r) { r.lon = -1800000000; }, [](gps_pvt_t& r) { r.lon = -1800000001; }},
      {[](gps_pvt_t& r) { r.month = 1; }, [](gps_pvt_t& r) { r.month = 0; }},
      {[](gps_pvt_t& r) { r.month = 12; }, [](gps_pvt_t& r) { r.month = 13; }},
      {[](gps_pvt_t& r) { r.day = 1; }, [](gps_pvt_t& r) { r.day = 0; }},
      {[](gps_pvt_t& r) { r.day = 31; }, [](gps_pvt_t& r) { r.day = 32; }},
      {[](gps_pvt_t& r) { r.hour = 23; }, [](gps_pvt_t& r) { r.hour = 24; }},
      {[](gps_pvt_t& r) { r.min = 59; }, [](gps_pvt_t& r) { r.min = 60; }},
      {[](gps_pvt_t& r) { r.sec = 59; }, [](gps_pvt_t& r) { r.sec = 60; }}};
  for (std::size_t row = 0; row < std::size(bounds); ++row) {
    for (const bool taken : {true, false}) {
      auto r = valid_pvt();
      (taken ? bounds[row].first : bounds[row].second)(r);
      EXPECT_EQ(r.is_plausible(), taken) << "row " << row;
      const gps_posllh_t p{1, 2, 28, 0, r.lon, r.lat};
      const bool moved = r.lat != valid_pvt().lat || r.lon != valid_pvt().lon;
      EXPECT_EQ(p.is_plausible(), taken || !moved) << "row " << row << ": NAV-POSLLH checks the position only";
    }
  }
}

}  // namespace

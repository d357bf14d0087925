#include "ubx/records.h"

#include <gtest/gtest.h>

#include <array>

namespace {

TEST(records, posllh_reads_little_endian_fields_at_their_offsets) {
  std::array<std::uint8_t, 32> image{};
  const std::uint8_t head[] = {0x01, 0x02, 28, 0,                    // class, id, length
                               0x10, 0x32, 0x54, 0x76,               // iTOW
                               0x00, 0x00, 0x00, 0x80,               // lon: most negative
                               0xFF, 0xFF, 0xFF, 0xFF};              // lat: -1
  std::copy(std::begin(head), std::end(head), image.begin());
  image[28] = 0x01;  // vAcc
  const auto p = gps_posllh_t::from_image(image);
  EXPECT_EQ(p.cls, 0x01);
  EXPECT_EQ(p.id, 0x02);
  EXPECT_EQ(p.length, 28);
  EXPECT_EQ(p.iTOW, 0x76543210u);
  EXPECT_EQ(p.lon, INT32_MIN);
  EXPECT_EQ(p.lat, -1);
  EXPECT_EQ(p.vAcc, 1u);
}

TEST(records, pvt_fields_land_at_their_offsets) {
  std::array<std::uint8_t, 96> image{};
  for (std::size_t i = 0; i < image.size(); ++i) image[i] = static_cast<std::uint8_t>(i);
  const auto p = gps_pvt_t::from_image(image);
  EXPECT_EQ(p.year, 0x0908);
  EXPECT_EQ(p.sec, 14);
  EXPECT_EQ(p.fixType, 24);
  EXPECT_EQ(p.numSV, 27);
  EXPECT_EQ(p.lon, 0x1F1E1D1C);
  EXPECT_EQ(p.gSpeed, 0x43424140);
  EXPECT_EQ(p.pDOP, 0x5150);
  EXPECT_EQ(p.headVeh, 0x5B5A5958);
  EXPECT_EQ(p.magDec, 0x5D5C);
  EXPECT_EQ(p.magAcc, 0x5F5E);
}

}  // namespace

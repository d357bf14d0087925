#include "ubx/record_text.h"

#include <gtest/gtest.h>

#include "support/records.h"

namespace {

template <class Record>
std::string text(const Record& r) {
  std::string out = "kept:";
  append_text(out, r);
  return out.substr(5);
}

// Records are written in wire order, as a frame lists their fields.
TEST(record_text, posllh_in_fixed_columns) {
  // class, id, length, iTOW, lon, lat, height, hMSL, hAcc, vAcc
  const gps_posllh_t r{1, 2, 28, 0, -1225000000, 426912345, -500, -1500, 1500, 1000000};
  EXPECT_EQ(text(r),
            "cls 1  id 2   POSLLH  len 28       iTOW          0         sun  0:00:00.000\n"
            "accuracy H     1.500  [height above elipsoid      -0.500]  lat   42.6912345\n"
            "accuracy V  1000.000  [height mean sea level      -1.500]  lon -122.5000000\n");
}

TEST(record_text, pvt_in_fixed_columns_with_the_extremes_of_each_type) {
  // iTOW a week and more: no weekday; vAcc too wide for the space before "[".
  const gps_pvt_t r{1,          7,         92,     604800005,  2017,    7,    19,   8,         50,
                    5,          0x37,      0,      -399901547, 7,       0x03, 0x0a, 14,        1386081181,
                    -349062349, INT32_MIN, 27240,  1500,       1000000, -9,   -15,  3,         17,
                    3147178,    172,       876849, 145,        0xe000,  0,    -5,   INT16_MIN, 32768};
  EXPECT_EQ(text(r),
            "cls 1  id 7      PVT  len 92              iTOW  604800005    0:00:00.005\n"
            "accuracy H     1.500  [height above elipsoid-2147483.648]  lat  -34.9062349\n"
            "accuracy V  1000.000 [height mean sea level      27.240]  lon  138.6081181\n"
            "valid 37 flags 03 0a  e000     velocity  -0.009N   -0.015E        0.003D\n"
            "magnetic declination -327.68     accuracy 327.68      pDOP          1.45\n"
            "ground speed          0.017    accuracy   0.172     sat count    14\n"
            "heading of motion    31.47178  accuracy   8.76849   7 invalid\n"
            "heading of vehicle   -0.00005  nano sec -399901547  UTC 2017-07-19 08:50:05\n");
}

TEST(record_text, sky_records_a_line_per_entry) {
  const gps_dop_t dop{1, 4, 18, 0, 156, 145, 77, 127, 91, 61, 65535};
  EXPECT_EQ(text(dop),
            "cls 1  id 4      DOP  len 18       iTOW          0         sun  0:00:00.000\n"
            "gDOP   1.56  pDOP   1.45  tDOP   0.77  vDOP   1.27  hDOP   0.91  nDOP   0.61  eDOP 655.35\n");
  const auto sat = list_record<gps_sat_t>({{0, 5, 38, 45, 123, -12, 0x1F}, {6, 1, 30, -91, 0, 3, 0x17}});
  EXPECT_EQ(text(sat),
            "cls 1  id 53      SAT  len 32       iTOW          0         sun  0:00:00.000\n"
            "version 1  satellites   2\n"
            "gnss 0  sv   5  cno 38  elev  45  azim 123  prRes   -1.2  flags 0000001f\n"
            "gnss 6  sv   1  cno 30  elev -91  azim   0  prRes    0.3  flags 00000017\n");
  const auto sig = list_record<gps_sig_t>({{2, 11, 1, 0, 4, 44, 7, 0, 0, 0x29, 0}});
  EXPECT_EQ(text(sig),
            "cls 1  id 67      SIG  len 24       iTOW          0         sun  0:00:00.000\n"
            "version 0  signals   1\n"
            "gnss 2  sv  11  sig 1  freq  0  cno 44  quality 7  prRes    0.4  flags 0029\n");
}

TEST(record_text, labels_by_id_alone_and_small_negatives_as_minus_zero) {
  auto r = posllh_record();
  r.cls = 5;
  EXPECT_EQ(text(r).substr(0, 22), "cls 5  id 2   POSLLH  ");
  r.id = 9;
  EXPECT_EQ(text(r).substr(0, 22), "cls 5  id 9        ?  ");
  auto p = pvt_record();
  p.magDec = -5;
  p.hAcc = 999999;  // the widest accuracy that still takes the space before "["
  const auto t = text(p);
  EXPECT_NE(t.find("magnetic declination -0.05     "), std::string::npos) << t;
  EXPECT_NE(t.find("accuracy H   999.999  [height"), std::string::npos) << t;
}

}  // namespace

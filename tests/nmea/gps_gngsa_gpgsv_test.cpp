#include <gtest/gtest.h>

#include <string>
#include <tuple>

#include "nmea/gps_gngsa.h"
#include "nmea/gps_gpgsv.h"
#include "support/records.h"
#include "support/sentences.h"
#include "support/test_queue.h"

namespace {

using namespace std::literals;

std::vector<int> prns(const gps_gngsa_t& gsa) {
  std::vector<int> out;
  for (const auto& [prn, when] : *gsa.PRN_arr) out.push_back(prn);
  return out;
}

// Mode and fix type as shown, the three DOPs, the PRNs listed.
auto state(const gps_gngsa_t& g) {
  return std::tuple(g.fix_mode_text(), g.fix_type_text(), g.pdop_d, g.hdop_d, g.vdop_d, prns(g));
}

TEST(gsa, decodes_or_stops_where_a_field_fails_and_records_switch_the_fix_type_table) {
  const std::pair<std::string, decltype(state(std::declval<gps_gngsa_t>()))> cases[] = {
      {"$GNGSA,A,3,05,13,15,,,,,,,,,,1.85,1.02,1.54*10", {"Auto", "3D fix", 1.85, 1.02, 1.54, {5, 13, 15}}},
      {"$GPGSA,M,2,05,13,15,,,,,,,,,,99.99,99.99,99.99,1*10", {"Manual", "2D fix", 99.99, 99.99, 99.99, {5, 13, 15}}},
      {"$GNGSA,M,2,05,13,15,,,,,,,,,1.85,1.02,1.54*10", {"Auto", "no fix", 0.0, 0.0, 0.0, {}}},
      {"$GNGSA,M,2,05,13,15,,,,,,,,,,1.85,1.02,1.54,1,2*10", {"Auto", "no fix", 0.0, 0.0, 0.0, {}}},
      {"$GLGSA,M,2,05,13,15,,,,,,,,,,1.85,1.02,1.54*10", {"Auto", "no fix", 0.0, 0.0, 0.0, {}}},
      {"$GNGSA,X,2,05,13,15,,,,,,,,,,1.85,1.02,1.54*10", {"Auto", "no fix", 0.0, 0.0, 0.0, {}}},
      {"$GNGSA,M,4,05,13,15,,,,,,,,,,1.85,1.02,1.54*10", {"Manual", "no fix", 0.0, 0.0, 0.0, {}}},
      {"$GNGSA,M,0,05,13,15,,,,,,,,,,1.85,1.02,1.54*10", {"Manual", "no fix", 0.0, 0.0, 0.0, {}}},
      {"$GNGSA,M,2,05,13,15,,,,,,,,,,2,1.02,1.54*10", {"Manual", "2D fix", 0.0, 0.0, 0.0, {}}},
      {"$GNGSA,M,2,05,13,15,,,,,,,,,,100.0,1.02,1.54*10", {"Manual", "2D fix", 0.0, 0.0, 0.0, {}}},
      {"$GNGSA,M,2,05,13,15,,,,,,,,,,1.85,100.0,1.54*10", {"Manual", "2D fix", 1.85, 0.0, 0.0, {}}},
      {"$GNGSA,M,2,05,13,15,,,,,,,,,,1.85,1.02,100.0*10", {"Manual", "2D fix", 1.85, 1.02, 0.0, {}}},
      {"$GNGSA,M,2,05,13,15,,,,,,,,,,,1.02,1.54*10", {"Manual", "2D fix", 0.0, 1.02, 1.54, {5, 13, 15}}},
      {"$GNGSA,M,1,05,,,,,,,,,,,,1.85,1.02,*2.5*10", {"Manual", "no fix", 1.85, 1.02, 2.5, {5}}},
      {"$GNGSA,M,2,05,120,07,,,,,,,,,,1.85,1.02,1.54*10", {"Manual", "2D fix", 1.85, 1.02, 1.54, {5}}},
      {"$GNGSA,M,2,99,x,-1,07,,,,,,,,,1.85,1.02,1.54*10", {"Manual", "2D fix", 1.85, 1.02, 1.54, {7, 99}}},
      {"$GNGSA,MM,22,,,,,,,,,,,,05,1.85,1.02,1.54*10", {"Auto", "no fix", 1.85, 1.02, 1.54, {5}}}};
  for (const auto& [line, expected] : cases) {
    test_queue_t clock;
    gps_gngsa_t gsa(clock);
    int notices = 0;
    auto sub = gsa.subscribe([&] { ++notices; });
    feed(gsa, line);
    EXPECT_EQ(state(gsa), expected) << line;
    EXPECT_EQ(notices, static_cast<int>(std::get<5>(expected).size())) << "one for each PRN entered";
  }
  test_queue_t clock;
  gps_gngsa_t gsa(clock);
  feed(gsa, cases[0].first);
  EXPECT_EQ(gsa.PRN_text(), " 5 13 15");
  gsa.fix_mode_c = "X";
  EXPECT_EQ(gsa.fix_mode_text(), "invalid");
  gsa.reset();
  EXPECT_EQ(state(gsa), state(gps_gngsa_t{clock}));

  // A NAV-PVT record's fix type reads from the record table until a sentence or NAV-POSLLH comes.
  auto r = pvt_record();
  r.pDOP = 156;
  const auto table = [&] { return std::tuple(gsa.pvt_mode, gsa.fix_type_text()); };
  const auto pvt = [&](std::uint8_t type) {
    r.fixType = type;
    gsa.update_pvt(r);
    return table();
  };
  EXPECT_EQ(pvt(4), std::tuple(true, "GNSS + dead reckoning"sv));
  EXPECT_EQ(gsa.pdop_d, 1.56);
  feed(gsa, "$GNGSA,A,,05,,,,,,,,,,,,1.0,1.0,1.0*10");
  EXPECT_EQ(table(), std::tuple(false, "invalid"sv)) << "no type 4 in GSA";
  pvt(4);
  gsa.update_posllh(posllh_record());
  EXPECT_EQ(table(), std::tuple(false, "no fix"sv));
  EXPECT_EQ(pvt(6), std::tuple(false, "no fix"sv)) << "an unknown fix type is ignored";
  EXPECT_EQ(pvt(5), std::tuple(true, "time only fix"sv));
}

// An entry reported at 0 s and another at 1 s; at 11 s the first has gone unreported for more than
// 10 s, so the table is walked, and the second, exactly 10 s old, stays.
TEST(gsa, prns_age_out_after_ten_seconds) {
  test_queue_t clock;
  gps_gngsa_t gsa(clock);
  int notices = 0;
  auto sub = gsa.subscribe([&] { ++notices; });
  const auto listing = [&](double wait, const char* prn) {
    clock.advance(wait);
    feed(gsa, "$GNGSA,A,3," + std::string(prn) + ",,,,,,,,,,,,1.0,1.0,1.0*10");
    return prns(gsa);
  };
  listing(0.0, "05");
  listing(1.0, "07");
  EXPECT_EQ(listing(9.0, ""), (std::vector<int>{5, 7})) << "PRN 5 is exactly 10 s old";
  notices = 0;
  EXPECT_EQ(listing(1.0, ""), (std::vector<int>{7}));
  EXPECT_EQ(notices, 1);
  EXPECT_TRUE(listing(0.5, "").empty());
}

// The satellite table of a new decoder after one sentence.
std::vector<std::string> table_after(std::string_view line) {
  test_queue_t clock;
  gps_gpgsv_t gsv(clock);
  feed(gsv, line);
  std::vector<std::string> out;
  for (const auto& [prn, s] : *gsv.satellite_arr) out.push_back(s->description() + (s->valid ? "" : " (invalid)"));
  return out;
}

TEST(gsv, enters_the_satellites_of_a_sentence) {
  const std::string s3 = " 3  elevation  3  azimuth 111  SNR  0", s4 = " 4  elevation 15  azimuth 270  SNR  0",
                    s6 = " 6  elevation  1  azimuth  10  SNR  0", s7 = " 7  elevation 45  azimuth  23  SNR 38";
  const std::pair<std::string, std::vector<std::string>> cases[] = {
      {"$GPGSV,3,1,11,03,03,111,00,04,15,270,00,06,01,010,00,13,06,292,00,1*74",
       {s3, s4, s6, "13  elevation  6  azimuth 292  SNR  0"}},
      {"$GPGSV,3,1,11,03,03,111,00,04,15,270,00,06,01,010,00,13,06,292,42*74",
       {s3, s4, s6, "13  elevation  6  azimuth 292  SNR 42"}},
      {"$GPGSV,3,1,11,03,03,111,00,04,15,270,00,06,01,010,00,13,06,292,*74", {s3, s4, s6}},
      {"$GPGSV,3,3,11,03,03,111,00,04,15,270,00,06,01,010,00,1*4D", {s3, s4, s6}},
      {"$GPGSV,3,3,11,03,03,111,00,04,15,270,00,06,01,010,00*4D", {}},
      {"$GPGSV,9,9,36,99,90,360,99,,,,,,,,,,,,*00", {"99  elevation 90  azimuth 360  SNR 99"}},
      {"$GPGSV,1,1,01,07,,023,38,,,,,,,,,,,,*00", {" 7  elevation  0  azimuth  23  SNR 38 (invalid)"}},
      {"$GPGSV,1,1,01,07,45,,38,,,,,,,,,,,,*00", {" 7  elevation 45  azimuth   0  SNR 38 (invalid)"}},
      {"$GPGSV,1,1,02,07,45,023,38,08,5,023,38,,,,,,,,*00", {s7}},
      {"$GPGSV,1,1,02,,45,023,38,07,45,023,38,,,,,,,,*00", {s7}}};
  for (const auto& [line, table] : cases) EXPECT_EQ(table_after(line), table) << line;
  // A failed check drops the whole sentence.
  for (const char* line :
       {"$GPGSV,1,1,01,07,4x,023,38,,,,,,,,,,,,*00", "$GPGSV,1,1,01,07,91,023,38,,,,,,,,,,,,*00",
        "$GPGSV,1,1,01,07,45,23,38,,,,,,,,,,,,*00", "$GPGSV,1,1,02,07,45,361,38,,,,,,,,,,,,*00",
        "$GPGSV,1,1,02,07,45,0x3,38,,,,,,,,,,,,*00", "$GPGSV,1,1,02,07,45,023,100,,,,,,,,,,,,*00",
        "$GPGSV,1,1,02,07,45,023,,08,45,023,38,,,,,,,,*00", "$GPGSV,1,1,02,100,45,023,38,08,45,023,38,,,,,,,,*00",
        "$GPGSV,1,1,37,07,45,023,38,,,,,,,,,,,,*00", "$GPGSV,10,1,02,07,45,023,38,,,,,,,,,,,,*00",
        "$GPGSV,1,2,02,07,45,023,38,,,,,,,,,,,,*00", "$GLGSV,1,1,01,07,45,023,38,,,,,,,,,,,,*00"})
    EXPECT_TRUE(table_after(line).empty()) << line;
}

TEST(gsv, satellites_age_out_readers_keep_their_report_and_notices_are_counted) {
  test_queue_t clock;
  gps_gpgsv_t gsv(clock);
  feed(gsv, "$GPGSV,1,1,02,07,45,023,38,08,45,023,38,,,,,,,,*00");
  const satellite_ref_t held = gsv.satellite_arr->at(7);
  clock.advance(1.0);
  feed(gsv, "$GPGSV,1,1,02,08,46,024,39,09,46,024,39,,,,,,,,*00");
  feed(gsv, "$GPGSV,1,1,02,07,50,023,20,,,,,,,,,,,,*00");
  EXPECT_EQ(std::tuple(held->elevation, gsv.satellite_arr->at(7)->elevation), std::tuple(45, 50))
      << "a report a reader holds never changes";
  const auto empty = [&](double seconds) {
    clock.advance(seconds);
    feed(gsv, "$GPGSV,1,1,00,,,,,,,,,,,,,,,,*00");
    return gsv.satellite_arr->size();
  };
  EXPECT_EQ(empty(10.0), 3u) << "each exactly 10 s old";
  EXPECT_EQ(empty(0.5), 0u);
  feed(gsv, "$GPGSV,1,1,02,07,45,023,38,,,,,,,,,,,,*00");
  EXPECT_EQ(empty(10.0), 1u) << "exactly 10 s old without a walk";
  const auto counts = [&] {
    return std::tuple(gsv.sentence_count, gsv.sentence_last, gsv.satellites_in_view.get(), gsv.satellite_arr->size());
  };
  int notices = 0;
  auto sub = gsv.subscribe([&] { ++notices; });
  feed(gsv, "$GPGSV,3,2,11,07,45,023,38,08,45,023,38,,,,,,,,*00");
  EXPECT_EQ(notices, 3) << "the count in view and two satellites";
  EXPECT_EQ(counts(), std::tuple(3, 2, 11, 2u));
  feed(gsv, "$GPGSV,,,,07,45,023,38,,,,,,,,,,,,*00");
  EXPECT_EQ(counts(), std::tuple(3, 2, 11, 2u)) << "empty counts keep their values";
  auto r = pvt_record();
  r.numSV = 14;
  gsv.update_pvt(r);
  gsv.update_posllh(posllh_record());
  EXPECT_EQ(counts(), std::tuple(3, 2, 14, 2u)) << "a record sets the count only";
  gsv.reset();
  EXPECT_EQ(counts(), std::tuple(0, 0, 0, 0u));
}

}  // namespace

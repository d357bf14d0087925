#include <gtest/gtest.h>

#include <string>

#include "nmea/gps_gngsa.h"
#include "nmea/gps_gpgsv.h"
#include "support/records.h"
#include "support/sentences.h"
#include "support/test_queue.h"

namespace {

const std::string gsa_good = "$GNGSA,A,3,05,13,15,,,,,,,,,,1.85,1.02,1.54*10";

std::vector<int> prns(const gps_gngsa_t& gsa) {
  std::vector<int> out;
  for (const auto& [prn, when] : *gsa.PRN_arr) out.push_back(prn);
  return out;
}

TEST(gsa, decodes_the_worked_example_with_or_without_system_id) {
  for (const std::string& line : {gsa_good, std::string("$GPGSA,A,3,05,13,15,,,,,,,,,,1.85,1.02,1.54,1*10")}) {
    test_queue_t clock;
    gps_gngsa_t gsa(clock);
    int notices = 0;
    auto sub = gsa.subscribe([&] { ++notices; });
    feed(gsa, line);
    EXPECT_EQ(notices, 3) << "one for each PRN entered";
    EXPECT_EQ(gsa.fix_mode_c, "A");
    EXPECT_EQ(gsa.fix_mode_text(), "Auto");
    EXPECT_EQ(gsa.fix_type_i, 3);
    EXPECT_EQ(gsa.fix_type_text(), "3D fix");
    EXPECT_EQ(prns(gsa), (std::vector<int>{5, 13, 15}));
    EXPECT_EQ(gsa.PRN_text(), " 5 13 15");
    EXPECT_EQ(gsa.pdop_d, 1.85);
    EXPECT_EQ(gsa.hdop_d, 1.02);
    EXPECT_EQ(gsa.vdop_d, 1.54);
  }
}

TEST(gsa, stops_where_a_field_fails) {
  const struct {
    const char* name;
    std::string line;
    std::string mode;
    int type;
    double pdop, vdop;
    std::vector<int> prns;
  } cases[] = {
      {"17 fields", "$GNGSA,M,2,05,13,15,,,,,,,,,1.85,1.02,1.54*10", "A", 1, 0.0, 0.0, {}},
      {"20 fields", "$GNGSA,M,2,05,13,15,,,,,,,,,,1.85,1.02,1.54,1,2*10", "A", 1, 0.0, 0.0, {}},
      {"other tag", "$GLGSA,M,2,05,13,15,,,,,,,,,,1.85,1.02,1.54*10", "A", 1, 0.0, 0.0, {}},
      {"mode X", "$GNGSA,X,2,05,13,15,,,,,,,,,,1.85,1.02,1.54*10", "A", 1, 0.0, 0.0, {}},
      {"type 4", "$GNGSA,M,4,05,13,15,,,,,,,,,,1.85,1.02,1.54*10", "M", 1, 0.0, 0.0, {}},
      {"type 0", "$GNGSA,M,0,05,13,15,,,,,,,,,,1.85,1.02,1.54*10", "M", 1, 0.0, 0.0, {}},
      {"PDOP without point", "$GNGSA,M,2,05,13,15,,,,,,,,,,2,1.02,1.54*10", "M", 2, 0.0, 0.0, {}},
      {"PDOP 100.0", "$GNGSA,M,2,05,13,15,,,,,,,,,,100.0,1.02,1.54*10", "M", 2, 0.0, 0.0, {}},
      {"HDOP 100.0", "$GNGSA,M,2,05,13,15,,,,,,,,,,99.99,100.0,1.54*10", "M", 2, 99.99, 0.0, {}},
      {"VDOP 100.0", "$GNGSA,M,2,05,13,15,,,,,,,,,,1.85,1.02,100.0*10", "M", 2, 1.85, 0.0, {}},
      {"PDOP empty", "$GNGSA,M,2,05,13,15,,,,,,,,,,,1.02,1.54*10", "M", 2, 0.0, 1.54, {5, 13, 15}},
      {"VDOP after a star", "$GNGSA,M,1,05,,,,,,,,,,,,1.85,1.02,*2.5*10", "M", 1, 1.85, 2.5, {5}},
      {"PRN 120 ends the PRNs", "$GNGSA,M,2,05,120,07,,,,,,,,,,1.85,1.02,1.54*10", "M", 2, 1.85, 1.54, {5}},
      {"PRN 99 is a PRN", "$GNGSA,M,2,99,,,,,,,,,,,,1.85,1.02,1.54*10", "M", 2, 1.85, 1.54, {99}},
      {"unreadable PRNs are skipped", "$GNGSA,M,2,x,-1,07,,,,,,,,,,1.85,1.02,1.54*10", "M", 2, 1.85, 1.54, {7}},
      {"long mode and type are left alone", "$GNGSA,MM,22,,,,,,,,,,,,05,1.85,1.02,1.54*10", "A", 1, 1.85, 1.54, {5}},
  };
  for (const auto& c : cases) {
    test_queue_t clock;
    gps_gngsa_t gsa(clock);
    feed(gsa, c.line);
    EXPECT_EQ(gsa.fix_mode_c, c.mode) << c.name;
    EXPECT_EQ(gsa.fix_type_i, c.type) << c.name;
    EXPECT_EQ(gsa.pdop_d, c.pdop) << c.name;
    EXPECT_EQ(gsa.vdop_d, c.vdop) << c.name;
    EXPECT_EQ(prns(gsa), c.prns) << c.name;
  }
  test_queue_t clock;
  gps_gngsa_t gsa(clock);
  feed(gsa, "$GNGSA,M,2,05,,,,,,,,,,,,1.85,1.02,1.54*10");
  EXPECT_EQ(gsa.fix_mode_text(), "Manual");
  gsa.fix_mode_c = "X";
  EXPECT_EQ(gsa.fix_mode_text(), "invalid");
}

// A PRN or satellite reported at 0 s and another at 1 s; at 11 s the first has gone unreported for
// more than 10 s, so the table is walked, and the second, exactly 10 s old, stays.
TEST(gsa, prns_age_out_after_ten_seconds) {
  test_queue_t clock;
  gps_gngsa_t gsa(clock);
  feed(gsa, "$GNGSA,A,3,05,,,,,,,,,,,,1.0,1.0,1.0*10");
  clock.advance(1.0);
  feed(gsa, "$GNGSA,A,3,07,,,,,,,,,,,,1.0,1.0,1.0*10");
  clock.advance(9.0);
  feed(gsa, "$GNGSA,A,3,,,,,,,,,,,,,1.0,1.0,1.0*10");
  EXPECT_EQ(prns(gsa), (std::vector<int>{5, 7})) << "PRN 5 is exactly 10 s old";
  clock.advance(1.0);
  int notices = 0;
  auto sub = gsa.subscribe([&] { ++notices; });
  feed(gsa, "$GNGSA,A,3,,,,,,,,,,,,,1.0,1.0,1.0*10");
  EXPECT_EQ(prns(gsa), (std::vector<int>{7}));
  EXPECT_EQ(notices, 1);
  clock.advance(0.5);
  feed(gsa, "$GNGSA,A,3,,,,,,,,,,,,,1.0,1.0,1.0*10");
  EXPECT_TRUE(prns(gsa).empty());
}

TEST(gsa, records_set_the_fix_type_table_and_a_sentence_sets_it_back) {
  test_queue_t clock;
  gps_gngsa_t gsa(clock);
  auto r = pvt_record();
  r.fixType = 4;
  r.pDOP = 156;
  gsa.update_pvt(r);
  EXPECT_TRUE(gsa.pvt_mode);
  EXPECT_EQ(gsa.fix_type_text(), "GNSS + dead reckoning");
  EXPECT_EQ(gsa.pdop_d, 1.56);
  feed(gsa, "$GNGSA,A,,05,,,,,,,,,,,,1.0,1.0,1.0*10");
  EXPECT_FALSE(gsa.pvt_mode);
  EXPECT_EQ(gsa.fix_type_text(), "invalid") << "type 4 is not in the GSA table";
  gsa.update_pvt(r);
  gsa.update_posllh(posllh_record());
  EXPECT_FALSE(gsa.pvt_mode);
  EXPECT_EQ(gsa.fix_type_text(), "no fix");
  r.fixType = 6;
  gsa.update_pvt(r);
  EXPECT_FALSE(gsa.pvt_mode);
  r.fixType = 5;
  gsa.update_pvt(r);
  EXPECT_EQ(gsa.fix_type_text(), "time only fix");

  feed(gsa, "$GNGSA,M,2,05,,,,,,,,,,,,1.85,1.02,1.54*10");
  gsa.reset();
  EXPECT_EQ(gsa.fix_mode_c, "A");
  EXPECT_EQ(gsa.fix_type_i, 1);
  EXPECT_TRUE(gsa.PRN_arr->empty());
  EXPECT_EQ(gsa.pdop_d, 0.0);
  EXPECT_EQ(gsa.hdop_d, 0.0);
  EXPECT_EQ(gsa.vdop_d, 0.0);
}

std::vector<std::string> table(const gps_gpgsv_t& gsv) {
  std::vector<std::string> out;
  for (const auto& [prn, s] : *gsv.satellite_arr) out.push_back(s->description() + (s->valid ? "" : " (invalid)"));
  return out;
}

TEST(gsv, enters_the_satellites_of_a_sentence) {
  const struct {
    const char* name;
    std::string line;
    std::vector<std::string> table;
  } cases[] = {
      {"21 fields, four satellites",
       "$GPGSV,3,1,11,03,03,111,00,04,15,270,00,06,01,010,00,13,06,292,00,1*74",
       {" 3  elevation  3  azimuth 111  SNR  0", " 4  elevation 15  azimuth 270  SNR  0",
        " 6  elevation  1  azimuth  10  SNR  0", "13  elevation  6  azimuth 292  SNR  0"}},
      {"20 fields: the fourth SNR is read before the checksum",
       "$GPGSV,3,1,11,03,03,111,00,04,15,270,00,06,01,010,00,13,06,292,42*74",
       {" 3  elevation  3  azimuth 111  SNR  0", " 4  elevation 15  azimuth 270  SNR  0",
        " 6  elevation  1  azimuth  10  SNR  0", "13  elevation  6  azimuth 292  SNR 42"}},
      {"20 fields, the fourth SNR empty: it stops there",
       "$GPGSV,3,1,11,03,03,111,00,04,15,270,00,06,01,010,00,13,06,292,*74",
       {" 3  elevation  3  azimuth 111  SNR  0", " 4  elevation 15  azimuth 270  SNR  0",
        " 6  elevation  1  azimuth  10  SNR  0"}},
      {"17 fields, three groups",
       "$GPGSV,3,3,11,22,42,067,42,24,14,311,43,27,05,244,00,1*4D",
       {"22  elevation 42  azimuth  67  SNR 42", "24  elevation 14  azimuth 311  SNR 43",
        "27  elevation  5  azimuth 244  SNR  0"}},
      {"16 fields are ignored", "$GPGSV,3,3,11,22,42,067,42,24,14,311,43,27,05,244,00*4D", {}},
      {"the bounds are taken", "$GPGSV,9,9,36,99,90,360,99,,,,,,,,,,,,*00", {"99  elevation 90  azimuth 360  SNR 99"}},
      {"no elevation: invalid",
       "$GPGSV,1,1,01,07,,023,38,,,,,,,,,,,,*00",
       {" 7  elevation  0  azimuth  23  SNR 38 (invalid)"}},
      {"no azimuth: invalid",
       "$GPGSV,1,1,01,07,45,,38,,,,,,,,,,,,*00",
       {" 7  elevation 45  azimuth   0  SNR 38 (invalid)"}},
      {"one-digit elevation stops",
       "$GPGSV,1,1,02,07,45,023,38,08,5,023,38,,,,,,,,*00",
       {" 7  elevation 45  azimuth  23  SNR 38"}},
      {"unreadable elevation stops", "$GPGSV,1,1,01,07,4x,023,38,,,,,,,,,,,,*00", {}},
      {"elevation 91 stops", "$GPGSV,1,1,01,07,91,023,38,,,,,,,,,,,,*00", {}},
      {"two-digit azimuth stops", "$GPGSV,1,1,01,07,45,23,38,,,,,,,,,,,,*00", {}},
      {"azimuth 361 stops", "$GPGSV,1,1,02,07,45,361,38,,,,,,,,,,,,*00", {}},
      {"unreadable azimuth stops", "$GPGSV,1,1,02,07,45,0x3,38,,,,,,,,,,,,*00", {}},
      {"SNR 100 stops", "$GPGSV,1,1,02,07,45,023,100,,,,,,,,,,,,*00", {}},
      {"an empty SNR stops", "$GPGSV,1,1,02,07,45,023,,08,45,023,38,,,,,,,,*00", {}},
      {"an empty PRN skips its group",
       "$GPGSV,1,1,02,,45,023,38,08,45,023,38,,,,,,,,*00",
       {" 8  elevation 45  azimuth  23  SNR 38"}},
      {"PRN 100 stops", "$GPGSV,1,1,02,100,45,023,38,08,45,023,38,,,,,,,,*00", {}},
      {"37 in view stop", "$GPGSV,1,1,37,07,45,023,38,,,,,,,,,,,,*00", {}},
      {"ten sentences stop before anything", "$GPGSV,10,1,02,07,45,023,38,,,,,,,,,,,,*00", {}},
      {"sentence number above the count stops", "$GPGSV,1,2,02,07,45,023,38,,,,,,,,,,,,*00", {}},
      {"another talker is ignored", "$GLGSV,1,1,01,07,45,023,38,,,,,,,,,,,,*00", {}},
  };
  for (const auto& c : cases) {
    test_queue_t clock;
    gps_gpgsv_t gsv(clock);
    feed(gsv, c.line);
    EXPECT_EQ(table(gsv), c.table) << c.name;
  }
}

TEST(gsv, counts_and_notices) {
  test_queue_t clock;
  gps_gpgsv_t gsv(clock);
  int notices = 0;
  auto sub = gsv.subscribe([&] { ++notices; });
  feed(gsv, "$GPGSV,3,2,11,07,45,023,38,08,45,023,38,,,,,,,,*00");
  EXPECT_EQ(notices, 3) << "the count in view and two satellites";
  EXPECT_EQ(gsv.sentence_count, 3);
  EXPECT_EQ(gsv.sentence_last, 2);
  EXPECT_EQ(gsv.satellites_in_view, 11);
  feed(gsv, "$GPGSV,,,,07,45,023,38,,,,,,,,,,,,*00");
  EXPECT_EQ(gsv.sentence_count, 3) << "empty counts keep their values";
  EXPECT_EQ(gsv.satellites_in_view, 11);
  auto r = pvt_record();
  r.numSV = 14;
  gsv.update_pvt(r);
  gsv.update_posllh(posllh_record());
  EXPECT_EQ(gsv.satellites_in_view, 14);
  EXPECT_EQ(gsv.satellite_arr->size(), 2u) << "a record sets the count only";
  gsv.reset();
  EXPECT_TRUE(gsv.satellite_arr->empty());
  EXPECT_EQ(gsv.sentence_count, 0);
  EXPECT_EQ(gsv.sentence_last, 0);
  EXPECT_EQ(gsv.satellites_in_view, 0);
}

TEST(gsv, satellites_age_out_and_readers_keep_their_report) {
  test_queue_t clock;
  gps_gpgsv_t gsv(clock);
  feed(gsv, "$GPGSV,1,1,02,07,45,023,38,08,45,023,38,,,,,,,,*00");
  const satellite_ref_t held = gsv.satellite_arr->at(7);
  clock.advance(1.0);
  feed(gsv, "$GPGSV,1,1,02,08,46,024,39,,,,,,,,,,,,*00");
  feed(gsv, "$GPGSV,1,1,02,07,50,023,20,,,,,,,,,,,,*00");
  EXPECT_EQ(held->elevation, 45) << "a report a reader holds never changes";
  EXPECT_EQ(gsv.satellite_arr->at(7)->elevation, 50);
  feed(gsv, "$GPGSV,1,1,02,09,46,024,39,,,,,,,,,,,,*00");
  clock.advance(10.0);
  feed(gsv, "$GPGSV,1,1,00,,,,,,,,,,,,,,,,*00");
  EXPECT_EQ(gsv.satellite_arr->size(), 3u) << "each exactly 10 s old";
  clock.advance(0.5);
  feed(gsv, "$GPGSV,1,1,00,,,,,,,,,,,,,,,,*00");
  EXPECT_TRUE(gsv.satellite_arr->empty());
  feed(gsv, "$GPGSV,1,1,02,07,45,023,38,,,,,,,,,,,,*00");
  clock.advance(10.0);
  feed(gsv, "$GPGSV,1,1,00,,,,,,,,,,,,,,,,*00");
  EXPECT_EQ(gsv.satellite_arr->size(), 1u) << "exactly 10 s old without a walk";
}

}  // namespace

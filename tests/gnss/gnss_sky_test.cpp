#include "gnss/gnss_sky.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

#include "support/records.h"
#include "support/sentences.h"
#include "support/test_queue.h"

namespace {

// "GPS 5 45/123 used L1 C/A 38, L5 Q 41": system, number, position, used, signals with C/N0.
std::vector<std::string> table(const gnss_sky_t& sky) {
  std::vector<std::string> out;
  for (const auto& [key, s] : *sky.satellites) {
    std::string line = std::string(system_name(key.system)) + " " + std::to_string(key.number);
    if (s.placed) line += " " + std::to_string(s.elevation) + "/" + std::to_string(s.azimuth);
    if (s.used) line += " used";
    for (std::size_t i = 0; i < s.tracked.size(); ++i)
      line += (i ? ", " : " ") + std::string(signal_name(key.system, s.tracked[i].id)) + " " +
              std::to_string(s.tracked[i].cn0) + (s.tracked[i].used ? "*" : "");
    out.push_back(line);
  }
  return out;
}

std::vector<std::string> after(std::vector<std::string> lines) {
  test_queue_t clock;
  gnss_sky_t sky(clock);
  for (const auto& line : lines) feed(sky, line);
  return table(sky);
}

using case_t = std::pair<std::vector<std::string>, std::vector<std::string>>;

TEST(gnss_sky, satellites_of_every_talker_and_version_keyed_by_system_number_and_signal) {
  const case_t cases[] = {
      // NMEA 2.3: no signal id, each system's first band; GLONASS numbered 65-96, SBAS 33-64 under GP.
      {{"$GPGSV,1,1,03,07,59,081,24,28,41,187,,48,30,200,40*7E", "$GLGSV,1,1,01,66,37,078,27*6E"},
       {"GPS 7 59/81 L1 C/A 24", "GPS 28 41/187", "GLONASS 66 37/78 L1 OF 27", "SBAS 48 30/200 L1 C/A 40"}},
      // NMEA 4.10: one GPS satellite on L1 and L5 is one satellite with two signals; a signal the
      // receiver no longer tracks goes.
      {{"$GPGSV,1,1,01,05,45,123,38,1*00", "$GPGSV,1,1,01,05,45,123,41,8*00", "$GPGSV,1,1,02,05,46,124,,09,,,30,6",
        "$GPGSV,1,1,01,09,,,,6", "$GPGSV,1,1,01,05,46,124,,1"},
       {"GPS 5 46/124 L5 Q 41", "GPS 9"}},
      // NMEA 4.11: Galileo E1 (7) and E5a (1), BeiDou under GB and BD with 201-263 and B2I (hex B),
      // QZSS and NavIC talkers, signal 0 as the first band, GN by number ranges.
      {{"$GAGSV,1,1,02,02,45,123,38,11,67,345,44,7*7B", "$GAGSV,1,1,01,02,45,123,35,1", "$GBGSV,1,1,01,201,30,100,33,1",
        "$BDGSV,1,1,01,263,10,200,22,B", "$GQGSV,1,1,01,02,80,010,45,0", "$GIGSV,1,1,01,04,20,300,31*00",
        "$GNGSV,1,1,02,301,10,010,20,402,11,011,21"},
       {"Galileo 2 45/123 E1 38, E5a 35", "Galileo 11 67/345 E1 44", "Galileo 301 10/10 E1 20",
        "BeiDou 201 30/100 B1I 33", "BeiDou 263 10/200 B2I 22", "BeiDou 402 11/11 B1I 21", "QZSS 2 80/10 L1 C/A 45",
        "NavIC 4 20/300 L5 31"}},
      // A bad field stops the sentence there, keeping the satellites before it; an empty group is
      // skipped; a signal the system lacks skips its satellite; unknown talkers and forms are ignored.
      {{"$GPGSV,1,1,04,01,10,010,20,,,,,02,91,020,30,03,10,010,20", "$GPGSV,1,1,02,04,10,010,20,05,10,010,1x",
        "$GPGSV,1,1,02,06,10,361,20", "$GPGSV,1,1,02,07,10,010,100", "$GPGSV,1,1,02,97,10,010,20",
        "$GPGSV,1,1,02,08,10,010,20,X", "$GPGSV,2,3,01,09,10,010,20", "$GPGSV,1,1,01,10,10,010,20,9",
        "$PQGSV,1,1,01,11,10,010,20", "$GPGSV,1,1,01,12,10,010", "$GLGSV,1,1,01,0,10,010,20"},
       {"GPS 1 10/10 L1 C/A 20", "GPS 4 10/10 L1 C/A 20"}},
      // A satellite is placed only with both its elevation and azimuth; 0 degrees is a place.
      {{"$GPGSV,1,1,03,13,,200,25,14,30,,26,15,00,000,27"},
       {"GPS 13 L1 C/A 25", "GPS 14 L1 C/A 26", "GPS 15 0/0 L1 C/A 27"}},
  };
  for (const auto& [lines, expected] : cases) EXPECT_EQ(after(lines), expected) << lines.front();
}

TEST(gnss_sky, a_run_of_gsa_sentences_replaces_each_systems_used_marks) {
  const case_t cases[] = {
      // NMEA 2.3 GN: one sentence per system, the system from the numbers; the next run replaces.
      // A number in no system's range stops the sentence.
      {{"$GNGSA,A,3,01,11,,,,,,,,,,,1.56,0.91,1.27*15", "$GNGSA,A,3,67,83,,,,,,,,,,,1.56,0.91,1.27*1D", "$GNRMC,",
        "$GNGSA,A,3,11,99,12,,,,,,,,,,1.56,0.91,1.27*15"},
       {"GPS 1", "GPS 11 used", "GLONASS 67 used", "GLONASS 83 used"}},
      // More than twelve used satellites of one system take two sentences of one run.
      {{"$GPGSA,A,3,01,02,03,04,05,06,07,08,09,10,11,12,1.0,1.0,1.0", "$GPGSA,A,3,13,46,,,,,,,,,,,1.0,1.0,1.0"},
       {"GPS 1 used", "GPS 2 used", "GPS 3 used", "GPS 4 used", "GPS 5 used", "GPS 6 used", "GPS 7 used", "GPS 8 used",
        "GPS 9 used", "GPS 10 used", "GPS 11 used", "GPS 12 used", "GPS 13 used", "SBAS 46 used"}},
      // NMEA 4.11: the system id; an empty list for a stated system clears it; a bad field stops.
      {{"$GAGSV,1,1,01,05,10,010,20,7", "$GNGSA,A,3,05,,,,,,,,,,,,1.0,1.0,1.0,3", "$GNRMC,",
        "$GNGSA,A,3,,,,,,,,,,,,,1.0,1.0,1.0,3", "$GNGSA,A,3,07,x,08,,,,,,,,,,1.0,1.0,1.0,4",
        "$GNGSA,A,3,09,,,,,,,,,,,,1.0,1.0,1.0,7", "$GNGSA,A,3,10,,,,,,,,,,,,1.0,100.0,1.0,1",
        "$GNGSA,A,3,01,,,,,,,,,,,,1.0,1.0,1.0,1"},
       {"GPS 1 used", "Galileo 5 10/10 E1 20", "BeiDou 7 used"}},
  };
  for (const auto& [lines, expected] : cases) EXPECT_EQ(after(lines), expected) << lines.front();
}

TEST(gnss_sky, dops_counts_ageing_and_reset) {
  test_queue_t clock;
  gnss_sky_t sky(clock);
  feed(sky, "$GNGSA,A,3,05,66,,,,,,,,,,,1.85,1.02,1.54*10");
  EXPECT_EQ(std::tuple(sky.dop->pdop, sky.dop->hdop, sky.dop->vdop), std::tuple(1.85, 1.02, 1.54));
  for (const auto& [line, pdop, hdop, vdop] :
       {std::tuple("$GNGSA,A,3,05,66,,,,,,,,,,,1.90,1.02,1.54", 1.90, 1.02, 1.54),
        std::tuple("$GNGSA,A,3,05,66,,,,,,,,,,,1.90,1.10,1.54", 1.90, 1.10, 1.54),
        std::tuple("$GNGSA,A,3,05,66,,,,,,,,,,,1.90,1.10,1.60", 1.90, 1.10, 1.60)}) {
    feed(sky, line);
    EXPECT_EQ(std::tuple(sky.dop->pdop, sky.dop->hdop, sky.dop->vdop), std::tuple(pdop, hdop, vdop)) << line;
  }
  feed(sky, "$GPGSV,1,1,02,05,45,123,38,06,40,100,30,1");
  feed(sky, "$GPGSV,1,1,01,05,45,123,41,8");
  clock.advance(1.0);
  feed(sky, "$GLGSV,1,1,01,66,30,200,25,1");
  EXPECT_EQ(sky.counts()[index_of(gnss_system_t::gps)], (sky_count_t{2, 1, 3}));
  EXPECT_EQ(sky.counts()[index_of(gnss_system_t::glonass)], (sky_count_t{1, 1, 1}));

  clock.advance(9.0);
  feed(sky, "$GPGSV,1,1,01,05,45,123,38,1");
  EXPECT_EQ(table(sky), (std::vector<std::string>{"GPS 5 45/123 used L1 C/A 38, L5 Q 41", "GPS 6 40/100 L1 C/A 30",
                                                  "GLONASS 66 30/200 used L1 OF 25"}))
      << "each exactly 10 s unreported";
  clock.advance(0.5);
  feed(sky, "$GPGSV,1,1,01,05,45,123,38,1");
  EXPECT_EQ(table(sky), (std::vector<std::string>{"GPS 5 45/123 used L1 C/A 38", "GLONASS 66 30/200 used L1 OF 25"}));
  feed(sky, "$GPGSV,1,1,01,06,41,101,31,1");
  EXPECT_EQ(table(sky).at(1), "GPS 6 41/101 L1 C/A 31") << "a satellite that aged out comes back";
  sky.reset();
  EXPECT_TRUE(sky.satellites->empty() && std::isnan(sky.dop->pdop) && sky.history().samples().empty());
}

TEST(gnss_sky, the_history_takes_a_sample_a_second_of_counts_dops_and_the_four_strongest_signals) {
  test_queue_t clock;
  gnss_sky_t sky(clock);
  feed(sky, "$GNGSA,A,3,05,07,,,,,,,,,,,1.85,1.02,1.54");
  feed(sky, "$GPGSV,1,1,04,05,45,123,40,07,40,100,38,09,10,200,30,11,20,300,20,1");
  clock.advance(0.5);
  feed(sky, "$GAGSV,1,1,01,05,45,123,45,7");
  feed(sky, "$GQGSV,1,1,01,02,80,010,10,0");
  EXPECT_EQ(sky.history().samples().size(), 1u) << "the first report's sample, before it";
  clock.advance(0.5);
  feed(sky, "$GAGSV,1,1,01,05,45,123,45,7");
  const auto& samples = sky.history().samples();
  ASSERT_EQ(samples.size(), 2u);
  sky_sample_t expected{1.0, {4, 0, 1, 0, 1}, {2}, 1.02f, 1.85f, (45 + 40 + 38 + 30) / 4.0f};
  EXPECT_EQ(samples[1], expected);
  EXPECT_TRUE(std::isnan(samples[0].cn0_top) && samples[0].hdop == 1.02f);
}

TEST(gnss_sky, ubx_satellites_signals_and_dops) {
  test_queue_t clock;
  gnss_sky_t sky(clock);
  // GPS 5 used, healthy, quality 7; GLONASS 1 without a position; an IMES satellite and svId 0 skipped.
  sky.update_sat(list_record<gps_sat_t>({{0, 5, 38, 45, 123, -12, 0x1F},
                                         {6, 1, 30, -91, 0, 3, 0x07},
                                         {4, 3, 30, 10, 10, 0, 0},
                                         {2, 0, 30, 10, 10, 0, 0}}));
  EXPECT_EQ(table(sky), (std::vector<std::string>{"GPS 5 45/123 used L1 C/A 38", "GLONASS 1 L1 OF 30"}));
  const auto& gps5 = *sky.satellites->find({gnss_system_t::gps, 5});
  EXPECT_EQ(std::tuple(gps5.health, gps5.quality, gps5.residual_dm), std::tuple(1, 7, -12));

  // NAV-SIG names each signal; from then on NAV-SAT leaves the signals to it.
  sky.update_sig(list_record<gps_sig_t>({{0, 5, 0, 0, 0, 40, 7, 0, 0, 0x08, 0},
                                         {0, 5, 7, 0, 0, 42, 7, 0, 0, 0, 0},
                                         {2, 11, 3, 0, 0, 33, 7, 0, 0, 0x08, 0},
                                         {2, 12, 2, 0, 0, 33, 7, 0, 0, 0, 0}}));
  sky.update_sat(list_record<gps_sat_t>({{0, 5, 20, 46, 124, 0, 0x0F}}));
  EXPECT_EQ(table(sky), (std::vector<std::string>{"GPS 5 46/124 used L1 C/A 40*, L5 Q 42", "GLONASS 1 L1 OF 30",
                                                  "Galileo 11 E5a 33*"}));

  // A full table takes no more satellites.
  std::vector<gps_sat_sv_t> many;
  for (unsigned sv = 1; sv <= sky_table_t::capacity; ++sv) many.push_back({3, static_cast<std::uint8_t>(sv), 20});
  sky.update_sat(list_record<gps_sat_t>(many));
  EXPECT_EQ(sky.satellites->size(), sky_table_t::capacity);
  EXPECT_EQ(sky.satellites->find({gnss_system_t::beidou, 253}), nullptr);

  const gps_dop_t dop{1, 4, 18, 0, 156, 145, 77, 127, 91, 61, 68};
  sky.update_dop(dop);
  const auto& d = *sky.dop;
  EXPECT_EQ(std::tuple(d.gdop, d.pdop, d.tdop, d.vdop, d.hdop, d.ndop, d.edop),
            std::tuple(1.56, 1.45, 0.77, 1.27, 0.91, 0.61, 0.68));

  // The latest record of each kind is kept for the log, until a reset.
  const auto& kept = sky.records();
  EXPECT_EQ(std::tuple(kept.dop, kept.sat->entries.size(), kept.sig->entries.size()), std::tuple(dop, many.size(), 4u));
  sky.reset();
  EXPECT_FALSE(kept.dop || kept.sat || kept.sig);
}

}  // namespace

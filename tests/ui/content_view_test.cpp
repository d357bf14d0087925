#include "ui/content_view.h"

#include <gtest/gtest.h>

#include <QTest>
#include <cmath>

#include "main_screen.h"
#include "ui/course_arrow.h"
#include "ui/dop_colour.h"
#include "ui/map_panel.h"
#include "ui/palette.h"
#include "ui/round_button.h"
#include "ui/sheet.h"

namespace {

const QString sat = QString::fromUtf8("\U0001F6F0");
const std::string gga = "$GPGGA,123519,4807.038,N,01131.000,E,1,08,0.9,545.4,M,46.9,M,,";
const std::string rmc = "$GPRMC,123519,A,4807.038,N,01131.000,E,022.4,084.4,230394,003.1,W,A";

TEST(content_view, shows_the_fix_in_landscape_and_portrait_rows) {
  main_screen_t screen(1000, 700);
  screen.hub.receive(gga);
  screen.hub.receive(rmc);
  screen.run();
  auto& v = screen.view;
  const QString fix = sat + " 8 GPS", status = v.status_button()->joined();
  // Landscape: two rows; the speed has its label; the time and status close the fix row.
  EXPECT_FALSE(v.portrait());
  EXPECT_EQ(v.rows(), (QList<QStringList>{{fix, "HDOP 0.90", "reset", "12:35:19 1994-03-23", status},
                                          {"48.117300", "11.516667", "speed 11.52 m/s", "sea 46.9"}}));
  EXPECT_EQ(v.fix_button()->runs()[0].font.pixelSize(), 15);
  EXPECT_FALSE(v.altitude_label()->isVisible());

  // Turned: the time gets a row of its own, in a monospaced font; the altitude comes back.
  v.resize(500, 900);
  screen.run();
  EXPECT_TRUE(v.portrait());
  EXPECT_EQ(v.rows(), (QList<QStringList>{{"12:35:19 1994-03-23", status},
                                          {fix, "HDOP 0.90", "11.52 m/s", "reset", "sea 46.9"},
                                          {"48.117300", "11.516667", "ALT 545.4"}}));
  EXPECT_TRUE(v.time_date_button()->runs()[0].font.fixedPitch() ||
              QFontInfo(v.time_date_button()->runs()[0].font).fixedPitch());
  EXPECT_TRUE(v.altitude_label()->isVisible());

  screen.hub.receive("$GPGGA,123519,4807.038,N,01131.000,E,1,08,0.9,1234.56,M,998.95,M,,");
  screen.run();
  EXPECT_EQ(v.rows()[2][2], "ALT 1235") << "no decimal from 999 on";
  EXPECT_EQ(v.rows()[1][4], "sea 999.0") << "998.95 is below 999";
}

TEST(content_view, status_texts_follow_the_link_switches) {
  const struct {
    bool ble, bridge;
    QString shown;
    int size;
  } cases[] = {
      {false, false, "tcp text", 16},
      {true, false, "ble text", 16},
      {false, true, "tcp text ble text", 12},
  };
  main_screen_t screen;
  screen.hub.hub.status_tcp = "tcp text";
  screen.hub.hub.status_ble = "ble text";
  for (const auto& c : cases) {
    screen.cfg.set_enable_ble(c.ble);
    screen.cfg.set_enable_bridge(c.bridge);
    screen.run();
    EXPECT_EQ(screen.view.status_button()->joined(), c.shown) << c.ble << c.bridge;
    EXPECT_EQ(screen.view.status_button()->runs().back().font.pixelSize(), c.size);
  }
}

// The bands and the fill are the DOP gauges' own (dop_colour_test); the HDOP gauge adds hiding.
TEST(content_view, hdop_gauge_is_hidden_up_to_1_5) {
  ui_test_app();
  const QPalette& palette = QApplication::palette();
  for (const auto& [hdop, opacity] : {std::pair{1.5, 0.0}, std::pair{1.51, 1.0}}) {
    const auto v = hdop_gauge_value(hdop, palette);
    EXPECT_EQ(std::tuple(v.opacity, v.colour, v.progress),
              std::tuple(opacity, colour_of(dop_colour(hdop), palette), dop_progress(hdop)))
        << hdop;
  }
}

// Which links connect for which settings is the connect action's (connect_action_test).
TEST(content_view, the_status_button_connects_shows_the_radio_and_disconnects) {
  main_screen_t screen;
  screen.cfg.set_enable_bridge(true);
  screen.view.status_button()->click();
  ASSERT_NE(screen.hub.links.ble, nullptr);
  EXPECT_TRUE(screen.hub.hub.tcp_enabled() && screen.hub.hub.ble_enabled());
  EXPECT_EQ(screen.hub.links.tcp->connects, std::vector<std::string>{"127.0.0.1:81"});
  screen.run();
  EXPECT_EQ(screen.view.status_button()->toolTip(), "BLE 2 unsupported") << "the radio's own state";
  screen.view.status_button()->click();
  EXPECT_FALSE(screen.hub.hub.tcp_enabled() || screen.hub.hub.ble_enabled());
}

TEST(content_view, reset_clears_the_hub_and_the_map) {
  main_screen_t screen;
  for (const char* lat : {"4807.000", "4807.010", "4807.020"}) {  // 18.5 m apart: markers and a track
    screen.hub.receive(std::string("$GPGGA,123519,") + lat + ",N,01131.000,E,1,08,0.9,545.4,M,46.9,M,,");
    screen.hub.queue.advance(1.0);
    screen.run();
  }
  ASSERT_FALSE(screen.map.overlays().empty());
  ASSERT_FALSE(screen.map.annotations().empty());
  ASSERT_FALSE(screen.hub.hub.arr_rx->empty());

  screen.view.reset_button()->click();
  screen.run();
  EXPECT_EQ(screen.hub.hub.gga.lat, 0.0);
  EXPECT_TRUE(screen.hub.hub.arr_rx->empty());
  EXPECT_EQ(screen.hub.hub.msg_count, 0u);
  EXPECT_TRUE(screen.map.overlays().empty());
  EXPECT_TRUE(screen.map.annotations().empty());
  EXPECT_FALSE(screen.map_cfg.reset) << "the map's reset is a one-shot";
}

TEST(content_view, backquote_toggles_the_log_and_the_fix_opens_the_details) {
  main_screen_t screen;
  QTest::keyClick(&screen.view, Qt::Key_QuoteLeft);
  screen.run();
  EXPECT_TRUE(screen.view.sheets().shown(sheet_id_t::log));
  EXPECT_TRUE(screen.view.log_sheet()->isVisible());
  QTest::keyClick(screen.view.log_sheet(), Qt::Key_QuoteLeft);  // the log's own Close
  screen.run();
  EXPECT_FALSE(screen.view.sheets().shown(sheet_id_t::log));
  EXPECT_FALSE(screen.view.log_sheet()->isVisible());
  QTest::keyClick(&screen.view, Qt::Key_QuoteLeft, Qt::ControlModifier);
  screen.run();
  EXPECT_FALSE(screen.view.sheets().shown(sheet_id_t::log)) << "only the bare key";

  screen.view.fix_button()->click();
  screen.run();
  EXPECT_TRUE(screen.view.details_sheet()->isVisible());
  QTest::keyClick(screen.view.details_sheet(), Qt::Key_Escape);
  screen.run();
  EXPECT_FALSE(screen.view.sheets().shown(sheet_id_t::details)) << "Escape closes a sheet through its flag";
}

TEST(content_view, buttons_over_the_map_act_on_the_map_settings) {
  main_screen_t screen;
  auto* panel = screen.view.map_panel();
  panel->mode_button()->click();
  EXPECT_TRUE(screen.map_cfg.mode_sat);
  screen.map_cfg.region_set = true;
  panel->course()->click();
  EXPECT_FALSE(screen.map_cfg.region_set);
  panel->settings_button()->click();
  screen.run();
  EXPECT_TRUE(screen.view.settings_sheet()->isVisible());
  EXPECT_EQ(panel->location_button()->icon_name(), "location");
  panel->location_button()->click();
  screen.run();
  EXPECT_TRUE(screen.map.shows_user_location());
  EXPECT_EQ(panel->location_button()->icon_name(), "location_fill");
}

TEST(content_view, a_burst_of_notices_costs_one_refresh_and_none_without_a_change) {
  main_screen_t screen;
  screen.hub.receive(gga);
  screen.run();  // the map is placed: the one-off writes of the placement are done
  const int before = screen.view.refreshes();
  for (int i = 0; i < 50; ++i) screen.hub.receive(gga);
  screen.run();
  EXPECT_EQ(screen.view.refreshes(), before + 1);
  screen.run();
  EXPECT_EQ(screen.view.refreshes(), before + 1);
}

TEST(course_arrow, the_course_is_the_weighted_mean_of_the_bearings) {
  const double pi = 3.14159265358979323846;
  motion_history_t all_east{};
  all_east.fill(pi / 2);
  motion_history_t newest_south{};
  newest_south[0] = pi;
  EXPECT_DOUBLE_EQ(course_angle(motion_history_t{}), 0.0);
  EXPECT_DOUBLE_EQ(course_angle(all_east), pi / 2);
  EXPECT_NEAR(course_angle(newest_south), pi / 3.3075194, 1e-7) << "weights sqrt(0.5^k), k = 0..9";
  motion_history_t broken{};
  broken[3] = std::nan("");
  ui_test_app();
  course_arrow_t arrow;
  arrow.set_angle(course_angle(broken));
  EXPECT_EQ(arrow.drawn_degrees(), 0.0) << "an undefined course draws the arrow unrotated";
  arrow.set_angle(pi / 2);
  EXPECT_EQ(arrow.target_degrees(), 90.0);
}

}  // namespace

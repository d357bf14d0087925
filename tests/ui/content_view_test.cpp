#include "ui/content_view.h"

#include <gtest/gtest.h>

#include <QTest>
#include <cmath>
#include <numbers>

#include "main_screen.h"
#include "ui/course_arrow.h"
#include "ui/dop_colour.h"
#include "ui/map_panel.h"
#include "ui/palette.h"
#include "ui/round_button.h"

namespace {

const QString sat = QString::fromUtf8("\U0001F6F0");
const std::string gga = "$GPGGA,123519,4807.038,N,01131.000,E,1,08,0.9,545.4,M,46.9,M,,";
const std::string rmc = "$GPRMC,123519,A,4807.038,N,01131.000,E,022.4,084.4,230394,003.1,W,A";

// The main screen in a window of 1000 x 760 points: landscape.
struct content_view_test : ::testing::Test, main_screen_t {};

TEST_F(content_view_test, shows_the_fix_in_landscape_and_portrait_rows) {
  hub.receive(gga);
  hub.receive(rmc);
  run();
  const QString fix = sat + " 8 GPS", status = view.status_button()->joined(), clear = "Clear log, track and markers";
  // Landscape: two rows; the speed has its label; the time and status close the fix row.
  EXPECT_FALSE(view.portrait());
  EXPECT_EQ(view.rows(), (QList<QStringList>{{fix, "HDOP 0.90", clear, "12:35:19 1994-03-23", status},
                                             {"48.117300 N", "11.516667 E", "speed 11.52 m/s", "sea 46.9"}}));
  EXPECT_EQ(layout_size(view.fix_button()->runs()[0].font), 15);
  EXPECT_FALSE(view.altitude_label()->isVisible());

  // Turned: the time gets a row of its own, in a monospaced font; the altitude comes back.
  window.resize(500, 900);
  run();
  EXPECT_TRUE(view.portrait());
  EXPECT_EQ(view.rows(), (QList<QStringList>{{"12:35:19 1994-03-23", status},
                                             {fix, "HDOP 0.90", "11.52 m/s", clear, "sea 46.9"},
                                             {"48.117300 N", "11.516667 E", "ALT 545.4"}}));
  const QFont time_font = view.time_date_button()->runs()[0].font;
  EXPECT_TRUE(time_font.fixedPitch() || QFontInfo(time_font).fixedPitch());
  EXPECT_TRUE(view.altitude_label()->isVisible());

  hub.receive("$GPGGA,123519,3351.408,S,15112.918,W,1,08,0.9,1234.56,M,998.95,M,,");
  run();
  EXPECT_EQ(view.rows()[2], (QStringList{"33.856800 S", "151.215300 W", "ALT 1235"})) << "no decimal from 999 on";
  EXPECT_EQ(view.rows()[1][4], "sea 999.0") << "998.95 is below 999";
}

TEST_F(content_view_test, status_texts_follow_the_link_switches) {
  const std::tuple<bool, bool, QString, int> cases[] = {
      // BLE, bridge, shown, font size
      {false, false, "tcp text", 16},
      {true, false, "ble text", 16},
      {false, true, "tcp text ble text", 12},
  };
  hub.hub.status_tcp = "tcp text";
  hub.hub.status_ble = "ble text";
  for (const auto& [ble, bridge, shown, size] : cases) {
    cfg.set_enable_ble(ble);
    cfg.set_enable_bridge(bridge);
    run();
    EXPECT_EQ(std::pair(view.status_button()->joined(), layout_size(view.status_button()->runs().back().font)),
              std::pair(shown, size));
  }
}

// The bands and the fill are the DOP gauges' own (dop_colour_test); the HDOP gauge adds hiding.
TEST(content_view, hdop_gauge_is_hidden_up_to_1_5) {
  const QPalette palette = ui_test_app().palette();
  for (const auto& [hdop, opacity] : {std::pair{1.5, 0.0}, std::pair{1.51, 1.0}}) {
    const auto v = hdop_gauge_value(hdop, palette);
    EXPECT_EQ(std::tuple(v.opacity, v.colour, v.progress),
              std::tuple(opacity, colour_of(dop_colour(hdop), palette), dop_progress(hdop)))
        << hdop;
  }
}

// Which links connect for which settings is the connect action's (connect_action_test).
TEST_F(content_view_test, the_status_button_connects_shows_the_radio_and_disconnects) {
  cfg.set_enable_bridge(true);
  view.status_button()->click();
  ASSERT_NE(hub.links.ble, nullptr);
  EXPECT_TRUE(hub.hub.tcp_enabled() && hub.hub.ble_enabled());
  EXPECT_EQ(hub.links.tcp->connects, std::vector<std::string>{"127.0.0.1:81"});
  run();
  EXPECT_EQ(view.status_button()->toolTip(), "BLE 2 unsupported") << "the radio's own state";
  hub.links.ble->notify();
  hub.links.ble->radio = "BLE 4 powered OFF";
  run();
  EXPECT_EQ(view.status_button()->toolTip(), "BLE 4 powered OFF") << "a change of the radio alone";
  view.status_button()->click();
  EXPECT_FALSE(hub.hub.tcp_enabled() || hub.hub.ble_enabled());
}

// What the hub's reset clears is the hub's test; here the button reaches the hub and the map.
TEST_F(content_view_test, reset_clears_the_hub_and_the_map) {
  for (const char* lat : {"4807.000", "4807.010", "4807.020"}) {  // 18.5 m apart: markers and a track
    hub.receive(std::string("$GPGGA,123519,") + lat + ",N,01131.000,E,1,08,0.9,545.4,M,46.9,M,,");
    hub.queue.advance(1.0);
    run();
  }
  ASSERT_FALSE(map.overlays().empty() || map.annotations().empty() || hub.hub.arr_rx->empty());
  view.reset_button()->click();
  run();
  EXPECT_TRUE(map.overlays().empty() && map.annotations().empty() && hub.hub.arr_rx->empty());
  EXPECT_FALSE(map_cfg.reset) << "the map's reset is a one-shot";
}

TEST_F(content_view_test, buttons_over_the_map_act_on_the_map_settings) {
  auto* panel = view.map_panel();
  panel->mode_button()->click();
  EXPECT_TRUE(map_cfg.mode_sat);
  map_cfg.region_set = true;
  panel->course()->click();
  EXPECT_FALSE(map_cfg.region_set);
  panel->settings_button()->click();
  run();
  EXPECT_TRUE(window.settings_dialog().isVisible());
  const auto location = [&] { return std::pair(map.shows_user_location(), panel->location_button()->icon_name()); };
  EXPECT_EQ(location(), std::pair(false, QString("location")));
  panel->location_button()->click();
  run();
  EXPECT_EQ(location(), std::pair(true, QString("location_fill")));
}

// The platform knows where the computer is before the user asks for it: the map opens there, and
// turning the location on follows the platform's reports.
TEST(content_view, the_map_opens_on_the_device_location_and_follows_it_when_shown) {
  const geo_coordinate_t sydney{-33.8568, 151.2153};
  main_screen_t screen(1000, 760, sydney);
  screen.run();
  EXPECT_NEAR(screen.map.camera().centre.x, map_point_for(sydney).x, 1.0);
  EXPECT_NEAR(screen.map.camera().centre.y, map_point_for(sydney).y, 1.0);
  const geo_coordinate_t moved{-33.86, 151.21};
  screen.device->move(moved);
  EXPECT_EQ(screen.map.device_location(), sydney) << "not followed while the location is off";
  screen.view.map_panel()->location_button()->click();
  screen.device->move(moved);
  EXPECT_EQ(screen.map.device_location(), moved);
}

TEST_F(content_view_test, a_burst_of_notices_costs_one_refresh_and_none_without_a_change) {
  hub.receive(gga);
  run();  // the map is placed: the one-off writes of the placement are done
  const int before = view.refreshes();
  for (int i = 0; i < 50; ++i) hub.receive(gga);
  run();
  run();
  EXPECT_EQ(view.refreshes(), before + 1) << "one for the burst, none for a run without a change";
}

// Bearings in radians, newest first, as unit vectors weighted sqrt(0.5^k), k = 0..9.
TEST(course_arrow, the_course_is_the_weighted_circular_mean_of_the_bearings) {
  const double pi = std::numbers::pi, west = 179.0 * pi / 180.0;
  motion_history_t east{}, straddling{}, newest_west{};
  east.fill(pi / 2);
  for (std::size_t k = 0; k < straddling.size(); ++k) straddling[k] = k % 2 ? west : -west;
  newest_west[0] = -pi / 2;
  const std::pair<motion_history_t, double> rows[] = {
      {motion_history_t{}, 0.0}, {east, pi / 2}, {newest_west, std::atan2(-1.0, 2.3075194)}};
  for (const auto& [bearings, course] : rows) EXPECT_NEAR(course_angle(bearings), course, 1e-7) << course;
  EXPECT_NEAR(std::abs(course_angle(straddling)), pi, 0.01) << "heading west, not north";

  motion_history_t broken{};
  broken[3] = std::nan("");
  ui_test_app();
  course_arrow_t arrow;
  arrow.set_angle(course_angle(broken));
  EXPECT_EQ(arrow.drawn_degrees(), 0.0) << "an undefined course draws the arrow unrotated";
  arrow.set_angle(pi / 2);
  EXPECT_EQ(arrow.target_degrees(), 90.0);
}

// The arrow stands out from its disc (3:1, as a graphic needs) in both themes.
TEST(course_arrow, the_arrow_is_seen_on_its_disc_in_both_themes) {
  ui_test_app();
  for (const QPalette& theme : {QApplication::palette(), dark_palette()}) {
    course_arrow_t arrow;
    arrow.setPalette(theme);
    QImage image(arrow.sizeHint(), QImage::Format_ARGB32);
    image.fill(colour_of(colour_t::background, theme));
    arrow.render(&image);
    const QPoint centre(image.width() / 2, image.height() / 2);
    const QColor shaft = image.pixelColor(centre + QPoint(0, 4)), disc = image.pixelColor(centre + QPoint(7, 7));
    EXPECT_GE(contrast_ratio(shaft, disc), 3.0) << is_dark(theme);
  }
}

}  // namespace

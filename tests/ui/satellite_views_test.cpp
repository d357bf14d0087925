#include <gtest/gtest.h>

#include <QImage>
#include <QLabel>
#include <QTest>
#include <QVBoxLayout>
#include <cmath>

#include "map/gps_heading.h"
#include "support/ui_test_app.h"
#include "ui/gps_details_view.h"
#include "ui/gps_dop_view.h"
#include "ui/gps_sat_list_view.h"
#include "ui/gps_sky_view.h"
#include "ui/palette.h"
#include "ui/progress_view.h"
#include "view_hub.h"

namespace {

// Portrait: the plot above the list. Landscape: side by side, top-aligned.
void expect_arrangement(const gps_details_view& details, bool portrait) {
  ASSERT_EQ(details.portrait(), portrait);
  const auto place = [&](const QWidget& part) { return QRect(part.mapTo(&details, QPoint()), part.size()); };
  const QRect sky = place(details.sky_view()), list = place(details.sat_list());
  if (portrait)
    EXPECT_TRUE(sky.bottom() <= list.top());
  else
    EXPECT_TRUE(sky.right() <= list.left() && sky.top() == list.top());
}

// A hub fed with real sentences and a heading source facing north.
struct satellite_views_test : ::testing::Test {
  bool fresh_ = (ui_test_app(), gps_heading_t::reset_process_values(), true);
  view_hub_t hub;
  gps_heading_t compass;
};

TEST(sky_plot, puts_the_zenith_on_the_rim_and_the_horizon_at_the_centre) {
  const std::tuple<std::uint8_t, std::uint16_t, QPointF> rows[] = {
      // elevation, azimuth, offset
      {90, 0, {0, -176}}, {90, 90, {176, 0}}, {90, 270, {-176, 0}}, {0, 123, {0, 0}}, {30, 180, {0, 88}},
  };
  for (const auto& [elevation, azimuth, offset] : rows)
    EXPECT_EQ(gps_sky_view::dot_offset({.elevation = elevation, .azimuth = azimuth}), offset) << azimuth;
}

TEST_F(satellite_views_test, sky_plot_render_shows_heard_and_silent_satellites_but_none_without_position) {
  gps_sky_view view{hub.hub, compass};
  compass.update(90.0);
  hub.receive(gsv_body(5, {{"07", "30", "090", "38"},  // heard: (88, 0), turned to (0, -88)
                           {"12", "45", "045", "00"},  // silent: (88, -88), turned to (-88, -88)
                           {"21", "", "", "30"}}));    // no position: would sit at the centre
  settle();
  ASSERT_EQ(hub.hub.gsv.satellite_arr->size(), 3u);
  EXPECT_EQ(view.count_text(), QString::fromUtf8("\xF0\x9F\x9B\xB0 5"));

  QImage image(view.size(), QImage::Format_ARGB32);
  image.fill(Qt::white);
  view.render(&image, QPoint(), QRegion(), QWidget::DrawChildren);
  // On white, the label colour is black and the fill, grey at 20%, a light grey.
  const auto grey = [&](int x, int y) { return qGray(image.pixel(view.width() / 2 + x, view.height() / 2 + y)); };
  EXPECT_LT(grey(0, -88), 40) << "heard satellite, turned with the plot";
  EXPECT_GT(grey(88, 0), 100) << "nothing where it stands unturned";
  EXPECT_TRUE(grey(-88, -88) > 200 && grey(-88, -88) < 245)
      << "silent satellite in the fill colour: " << grey(-88, -88);
  EXPECT_GT(grey(0, 0), 100) << "no dot without a position";
}

// Satellites at the zenith lie on the rim in the cardinal directions; the letters beyond the rim
// look the same with them or without them, and they are there to be seen.
TEST_F(satellite_views_test, no_satellite_on_the_rim_covers_a_cardinal_letter) {
  gps_sky_view view{hub.hub, compass};
  const auto outside_rim = [&] {
    QImage image(view.size(), QImage::Format_ARGB32);
    image.fill(Qt::white);
    view.render(&image);
    const double rim = gps_sky_view::plot_radius + gps_sky_view::dot_size;
    for (int y = 0; y < image.height(); ++y)
      for (int x = 0; x < image.width(); ++x)
        if (std::hypot(x - image.width() / 2.0, y - image.height() / 2.0) < rim)
          image.setPixel(x, y, qRgb(255, 255, 255));
    return image;
  };
  hub.receive(gsv_body(4, {}));  // the count in the corner stays the same
  settle();
  const QImage bare = outside_rim();
  hub.receive(gsv_body(
      4, {{"01", "90", "000", "40"}, {"02", "90", "090", "40"}, {"03", "90", "180", "40"}, {"04", "90", "270", "40"}}));
  settle();
  EXPECT_EQ(outside_rim(), bare);
  int darkest = 255;
  for (int x = bare.width() / 2 - 8; x < bare.width() / 2 + 8; ++x)
    for (int y = 0; y < gps_sky_view::letter_margin; ++y) darkest = std::min(darkest, qGray(bare.pixel(x, y)));
  EXPECT_LT(darkest, 100) << "the N stands above the rim";
}

TEST_F(satellite_views_test, a_shown_sky_plot_eases_round_to_a_new_heading) {
  gps_sky_view view{hub.hub, compass};
  view.show();
  compass.update(90.0);
  settle();
  EXPECT_EQ(view.rotation(), -90.0);
  EXPECT_GT(view.drawn_rotation(), -90.0) << "the turn is animated";
}

TEST_F(satellite_views_test, list_rows_in_prn_order_dim_unless_heard_and_placed_with_snr_bars) {
  gps_sat_list_view list{hub.hub};
  hub.receive(gsv_body(
      4, {{"12", "45", "200", "99"}, {"03", "10", "020", "00"}, {"07", "", "", "30"}, {"30", "60", "300", "40"}}));
  settle();
  const std::tuple<std::string, colour_t, float> rows[] = {
      // text, its colour, the SNR bar
      {" 3  elevation 10  azimuth  20  SNR  0", colour_t::secondary, 0.0f},           // silent
      {" 7  elevation  0  azimuth   0  SNR 30", colour_t::secondary, 30.0f / 99.0f},  // no position
      {"12  elevation 45  azimuth 200  SNR 99", colour_t::primary, 1.0f},
      {"30  elevation 60  azimuth 300  SNR 40", colour_t::primary, 40.0f / 99.0f},
  };
  ASSERT_EQ(list.row_count(), std::size(rows));
  for (std::size_t i = 0; const auto& [text, colour, progress] : rows) {
    EXPECT_EQ(std::tuple(list.row_label(i).text().toStdString(),
                         list.row_label(i).palette().color(QPalette::WindowText), list.row_gauge(i).value().colour),
              std::tuple(text, colour_of(colour, list.palette()), colour_of(colour_t::secondary, list.palette())));
    EXPECT_NEAR(list.row_gauge(i++).drawn_progress(), progress, 1e-6) << text;
  }
}

TEST_F(satellite_views_test, list_rows_follow_the_table_as_satellites_come_and_age_out) {
  gps_sat_list_view list{hub.hub};
  hub.receive(gsv_body(2, {{"20", "45", "200", "35"}, {"05", "10", "020", "25"}}));
  settle();
  const QLabel* row_of_20 = &list.row_label(1);
  hub.queue.advance(6.0);
  hub.receive(gsv_body(2, {{"20", "46", "201", "36"}, {"11", "12", "100", "20"}}));
  hub.queue.advance(6.0);  // PRN 5 is now 12 s old, PRNs 11 and 20 six
  hub.receive(gsv_body(2, {{"40", "50", "050", "33"}}));
  settle();
  ASSERT_EQ(list.row_count(), 3u);
  EXPECT_EQ((QStringList{list.row_label(0).text().left(2), list.row_label(1).text(), list.row_label(2).text().left(2)}),
            (QStringList{"11", "20  elevation 46  azimuth 201  SNR 36", "40"}));
  EXPECT_EQ(&list.row_label(1), row_of_20) << "a satellite that stays keeps its row";
  hub.hub.reset();
  settle();
  EXPECT_EQ(list.row_count(), 0u);
}

TEST_F(satellite_views_test, dop_panel_shows_fix_satellites_used_and_dops_with_coloured_bars) {
  gps_dop_view panel{hub.hub};
  hub.receive("$GNGSA,A,3,05,13,15,,,,,,,,,,1.00,2.50,25.00");
  settle();
  EXPECT_EQ((QStringList{panel.fix_mode_label().text(), panel.fix_type_label().text(), panel.used_label().text(),
                         panel.prn_label().text()}),
            (QStringList{"Auto", "3D fix", QString::fromUtf8("\xF0\x9F\x9B\xB0 3"), " 5 13 15"}));
  const std::tuple<gps_dop_view::dop_row_t, QString, colour_t, float> rows[] = {
      {gps_dop_view::pdop, "1.00", colour_t::primary, 0.95f},
      {gps_dop_view::hdop, "2.50", colour_t::green, 0.875f},
      {gps_dop_view::vdop, "25.00", colour_t::secondary, 0.0f},
  };
  for (const auto& [row, text, colour, progress] : rows) {
    EXPECT_EQ(std::pair(panel.dop_value_label(row).text(), panel.dop_gauge(row).value().colour),
              std::pair(text, colour_of(colour, panel.palette())));
    EXPECT_NEAR(panel.dop_gauge(row).drawn_progress(), progress, 1e-6) << row;
  }
  hub.hub.gsa.fix_mode_c = "X";  // a letter the decoder would not store itself
  hub.hub.notify();
  settle();
  EXPECT_EQ(panel.fix_mode_label().text(), "invalid");
}

TEST_F(satellite_views_test, details_follow_the_window_orientation_with_a_new_compass) {
  hub.receive(gsv_body(2, {{"12", "45", "200", "40"}, {"03", "10", "020", "30"}}));
  QWidget window;
  auto* details = new gps_details_view(hub.hub);
  (new QVBoxLayout(&window))->addWidget(details);
  window.resize(420, 1000);
  window.show();
  settle();
  expect_arrangement(*details, true);
  const gps_heading_t* first = &details->compass();
  window.resize(1000, 700);
  settle();
  expect_arrangement(*details, false);
  EXPECT_NE(&details->compass(), first);
  const gps_sky_view* plot = &details->sky_view();
  window.resize(1100, 700);
  EXPECT_EQ(&details->sky_view(), plot) << "the same orientation keeps the plot";
}
}  // namespace

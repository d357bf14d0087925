#include "ui/gps_sky_view.h"

#include <gtest/gtest.h>

#include <QImage>
#include <QPainter>
#include <QTest>

#include "map/gps_heading.h"
#include "ui/open_sheets.h"
#include "ui/palette.h"
#include "ui_test_app.h"
#include "view_hub.h"

namespace {

gps_gpgsv_satellite_t at(std::uint8_t elevation, std::uint16_t azimuth) {
  gps_gpgsv_satellite_t satellite;
  satellite.elevation = elevation;
  satellite.azimuth = azimuth;
  return satellite;
}

// The colour a possibly translucent colour gives over white.
QRgb over_white(const QColor& colour) {
  QImage pixel(1, 1, QImage::Format_ARGB32);
  pixel.fill(Qt::white);
  QPainter(&pixel).fillRect(0, 0, 1, 1, colour);
  return pixel.pixel(0, 0);
}

bool near_rgb(QRgb a, QRgb b, int tolerance = 3) {
  return std::abs(qRed(a) - qRed(b)) <= tolerance && std::abs(qGreen(a) - qGreen(b)) <= tolerance &&
         std::abs(qBlue(a) - qBlue(b)) <= tolerance;
}

class sky_view_test : public ::testing::Test {
protected:
  // Before the heading source is made: every test starts facing north.
  bool fresh_ = (ui_test_app(), gps_heading_t::reset_process_values(), true);
  view_hub_t hub;
  gps_heading_t compass;
  open_sheets_t sheets{hub.hub};
  gps_sky_view view{hub.hub, compass, sheets};
};

TEST_F(sky_view_test, zenith_on_the_rim_horizon_at_the_centre_and_east_up_when_facing_east) {
  const struct {
    std::uint8_t elevation;
    std::uint16_t azimuth;
    QPointF offset;
  } rows[] = {
      {90, 0, {0, -176}}, {90, 90, {176, 0}}, {90, 270, {-176, 0}}, {0, 123, {0, 0}}, {30, 180, {0, 88}},
  };
  for (const auto& r : rows) {
    const QPointF offset = gps_sky_view::dot_offset(at(r.elevation, r.azimuth));
    EXPECT_NEAR(offset.x(), r.offset.x(), 1e-9) << int(r.elevation) << " / " << r.azimuth;
    EXPECT_NEAR(offset.y(), r.offset.y(), 1e-9) << int(r.elevation) << " / " << r.azimuth;
  }
  compass.update(90.0);
  settle();
  EXPECT_EQ(view.rotation(), -90.0);
  const QPointF east = view.dot_position(at(90, 90));  // a hidden plot turns at once
  EXPECT_NEAR(east.x(), 176.0, 1e-9);
  EXPECT_NEAR(east.y(), 0.0, 1e-9) << "straight above the centre";
}

TEST_F(sky_view_test, render_shows_heard_and_silent_satellites_but_none_without_position) {
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
  const QRgb primary = over_white(colour_of(colour_t::primary, view.palette()));
  EXPECT_TRUE(near_rgb(image.pixel(176, 88), primary)) << "heard satellite, turned with the plot";
  EXPECT_FALSE(near_rgb(image.pixel(264, 176), primary, 60)) << "nothing where it stands unturned";
  EXPECT_TRUE(near_rgb(image.pixel(88, 88), over_white(colour_of(colour_t::fill, view.palette()))));
  EXPECT_FALSE(near_rgb(image.pixel(176, 176), primary, 60)) << "no dot without a position";
}

TEST_F(sky_view_test, space_bar_and_click_toggle_the_details_and_a_shown_plot_eases_round) {
  EXPECT_EQ(view.text(), "Close");
  view.show();
  view.activateWindow();
  ASSERT_TRUE(QTest::qWaitForWindowActive(&view));
  QTest::keyClick(&view, Qt::Key_Space);
  EXPECT_TRUE(sheets.shown(sheet_id_t::details));
  QTest::keyClick(&view, Qt::Key_Space);
  EXPECT_FALSE(sheets.shown(sheet_id_t::details));
  QTest::keyClick(&view, Qt::Key_Space, Qt::ShiftModifier);
  EXPECT_FALSE(sheets.shown(sheet_id_t::details)) << "only the bare space bar";
  QTest::mouseClick(&view, Qt::LeftButton, Qt::NoModifier, QPoint(300, 300));
  EXPECT_TRUE(sheets.shown(sheet_id_t::details));

  compass.update(90.0);
  settle();
  EXPECT_EQ(view.rotation(), -90.0);
  EXPECT_GT(view.drawn_rotation(), -90.0) << "the turn is animated";
}

}  // namespace

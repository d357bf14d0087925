#include <gtest/gtest.h>

#include <QComboBox>
#include <QImage>
#include <algorithm>
#include <vector>

#include "support/ui_test_app.h"
#include "ui/gnss_sky_plot_view.h"
#include "ui/palette.h"
#include "ui/signal_bars_view.h"
#include "ui/sky_history_view.h"
#include "ui/sky_style.h"
#include "view_hub.h"

namespace {

QImage rendered(QWidget& view) {
  QImage image(view.size(), QImage::Format_ARGB32);
  view.render(&image);
  return image;
}

// GPS 5 used at the zenith, GPS 7 unused at 45 degrees in the east, GPS 9 on the northern horizon
// under the letter N; GPS 5 on L1 at 40 dB-Hz, GPS 7 at 30.
struct sky_views_test : ::testing::Test {
  bool fresh_ = (ui_test_app(), true);
  view_hub_t hub;
  void SetUp() override {
    hub.receive("$GNGSA,A,3,05,,,,,,,,,,,,1.0,1.0,1.0,1");
    hub.receive("$GPGSV,1,1,03,05,90,000,40,07,45,090,30,09,00,000,25,1");
  }
  QColor gps() const { return system_colour(gnss_system_t::gps, QPalette()); }
};

TEST_F(sky_views_test, sky_plot_fills_a_used_satellite_outlines_another_and_keeps_the_letters_clear) {
  gnss_sky_plot_view plot(hub.hub.sky);
  plot.resize(400, 440);
  const QImage image = rendered(plot);
  const auto& table = *hub.hub.sky.satellites;
  const QPointF used = plot.position(*table.find({gnss_system_t::gps, 5}));
  const QPointF unused = plot.position(*table.find({gnss_system_t::gps, 7}));
  EXPECT_EQ(used, plot.centre());
  EXPECT_EQ(image.pixelColor(used.toPoint()), gps()) << "filled";
  EXPECT_EQ(image.pixelColor(unused.toPoint()), colour_of(colour_t::background, plot.palette())) << "hollow";
  const QColor outline = image.pixelColor((unused + QPointF(gnss_sky_plot_view::marker_size / 2 - 0.5, 0)).toPoint());
  EXPECT_GT(outline.blue() - outline.red(), 60) << "its outline in the system's blue";
  // Each compass letter stands outside the rim on its side, where the satellite on the northern
  // horizon does not reach.
  for (const auto& [letter, side] : {std::pair('N', QPointF(0, -1)), std::pair('E', QPointF(1, 0)),
                                     std::pair('S', QPointF(0, 1)), std::pair('W', QPointF(-1, 0))}) {
    const QPointF at = plot.centre() + side * (plot.radius() + 15);
    int dark = 0, marker = 0;
    for (int dx = -6; dx <= 6; ++dx)
      for (int dy = -5; dy <= 5; ++dy) {
        const QColor c = image.pixelColor((at + QPointF(dx, dy)).toPoint());
        dark += c.lightness() < 100 ? 1 : 0;
        marker += c == gps() ? 1 : 0;
      }
    EXPECT_TRUE(dark > 10 && marker == 0) << letter << ": " << dark << " dark pixels, " << marker << " of the marker";
  }
  EXPECT_EQ(plot.text_at(used), "GPS 5  used in the fix\nelevation 90°  azimuth 0°\nL1 C/A  40 dB-Hz");
  EXPECT_TRUE(plot.text_at(plot.centre() + QPointF(0, 40)).isEmpty());
  // Numbers of satellites close together stand apart, each clear of every marker.
  hub.receive("$GPGSV,1,1,03,12,30,000,30,13,30,007,30,14,30,014,30,1");
  const auto labels = plot.number_labels();
  ASSERT_EQ(labels.size(), 6u);
  for (std::size_t i = 0; i < labels.size(); ++i) {
    for (std::size_t j = i + 1; j < labels.size(); ++j)
      EXPECT_FALSE(labels[i].box.intersects(labels[j].box))
          << labels[i].text.toStdString() << " " << labels[j].text.toStdString();
    for (const auto& [key, s] : table) {
      const QPointF at = plot.position(s);
      const double half = gnss_sky_plot_view::marker_size / 2;
      EXPECT_FALSE(labels[i].box.intersects(QRectF(at - QPointF(half, half), at + QPointF(half, half))))
          << labels[i].text.toStdString() << " on the marker of " << key.number;
    }
  }
  // A satellite without a place has no point on the plot to hover.
  hub.receive("$GPGSV,1,1,01,03,,,33,1");
  EXPECT_TRUE(plot.text_at(plot.centre() - QPointF(0, plot.radius())).startsWith("GPS 9"));
}

TEST_F(sky_views_test, signal_bars_rise_to_their_c_n0_filled_when_used_and_outlined_when_not) {
  signal_bars_view bars(hub.hub.sky);
  bars.resize(400, 240);
  const auto laid_out = bars.bars();
  ASSERT_EQ(laid_out.size(), 3u);
  const QImage image = rendered(bars);
  const auto inside = [&](const signal_bars_view::bar_t& bar, double cn0) {
    return image.pixelColor(QPointF(bar.rect.center().x(), bars.y_of(cn0)).toPoint());
  };
  EXPECT_EQ(std::tuple(laid_out[0].cn0, laid_out[0].used, laid_out[1].cn0, laid_out[1].used),
            std::tuple(40, true, 30, false));
  EXPECT_EQ(inside(laid_out[0], 39), gps()) << "used: filled up to 40";
  EXPECT_NE(inside(laid_out[0], 42), gps()) << "nothing above";
  EXPECT_NE(inside(laid_out[1], 25), gps()) << "not used: outlined";
  // The weak, usable and good bands behind the bars are tinted apart, right of the last bar and
  // between the grid lines.
  const double x = laid_out.back().rect.right() + 8;
  std::vector<QColor> bands;
  for (const double cn0 : {15.0, 28.0, 45.0}) bands.push_back(image.pixelColor(QPointF(x, bars.y_of(cn0)).toPoint()));
  const QColor background = colour_of(colour_t::background, bars.palette());
  EXPECT_TRUE(bands[0] != bands[1] && bands[1] != bands[2] && bands[0] != bands[2] &&
              std::none_of(bands.begin(), bands.end(), [&](const QColor& c) { return c == background; }))
      << bands[0].name().toStdString() << " " << bands[1].name().toStdString() << " " << bands[2].name().toStdString();
}

TEST_F(sky_views_test, history_charts_repaint_when_a_sample_comes_not_on_every_change) {
  sky_history_view history(hub.hub.sky);
  history.resize(500, 400);
  history.show();
  settle();
  const int first = history.paints();
  for (int k = 0; k < 5; ++k) hub.receive("$GPGSV,1,1,01,05,90,000,41,1");
  settle();
  EXPECT_EQ(history.paints(), first);
  hub.queue.advance(1.0);
  hub.receive("$GPGSV,1,1,01,05,90,000,41,1");
  settle();
  EXPECT_EQ(history.paints(), first + 1);
  EXPECT_EQ(history.span_s(), 600.0);
  history.span_selector()->setCurrentIndex(2);
  EXPECT_EQ(history.span_s(), 3600.0);
  EXPECT_TRUE(!history.set_minutes(5) && history.set_minutes(1) && history.span_s() == 60.0)
      << "a span the selector does not offer is refused";
}

}  // namespace

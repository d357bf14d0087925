#include "ui/progress_view.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QImage>
#include <QPaintEvent>
#include <array>

#include "support/ui_test_app.h"

namespace {

// Renders a gauge 100 x 10 points on white.
QImage render(const progress_view_t& v) {
  progress_gauge_t gauge;
  gauge.resize(100, 10);
  gauge.show_value(v);
  QImage image(100, 10, QImage::Format_ARGB32);
  image.fill(Qt::white);
  gauge.render(&image, QPoint(), QRegion(), QWidget::DrawChildren);
  return image;
}

// A red bar on a blue track, square-cornered and as tall as the gauge.
progress_view_t gauge_at(float p, bool reverse = false, std::optional<double> width = {}) {
  return {p, width, 10.0, 0.0, Qt::red, Qt::blue, {}, 1.0, reverse};
}

TEST(progress_view, clamps_fills_from_the_chosen_edge_and_centres_a_fixed_width) {
  ui_test_app();
  const QRgb bar = qRgb(255, 0, 0), track = qRgb(0, 0, 255), none = qRgb(255, 255, 255);
  struct row {
    float progress;
    bool reverse;
    std::optional<double> width;
    QRgb left, middle, right;  // columns 5, 50 and 95
  } rows[] = {
      {1.7f, false, {}, bar, bar, bar},      {-0.2f, false, {}, track, track, track},
      {0.25f, false, {}, bar, track, track}, {0.25f, true, {}, track, track, bar},
      {1.0f, false, 40.0, none, bar, none},  // centred: columns 30 to 70
  };
  for (const auto& r : rows) {
    const QImage image = render(gauge_at(r.progress, r.reverse, r.width));
    EXPECT_EQ((std::array{image.pixel(5, 5), image.pixel(50, 5), image.pixel(95, 5)}),
              (std::array{r.left, r.middle, r.right}))
        << r.progress << " reverse " << r.reverse;
  }
  const progress_view_t hidden{1.0f, 60.0, 10.0, 0.0, Qt::red, Qt::blue, {}, 0.0};
  EXPECT_EQ(render(hidden).pixel(50, 5), none) << "zero opacity draws nothing";
  progress_gauge_t gauge;
  gauge.show_value(hidden);
  EXPECT_EQ(gauge.sizeHint(), QSize(60, 10)) << "but keeps its place";
}

struct paint_counter_t : QObject {
  int paints = 0;
  bool eventFilter(QObject*, QEvent* e) override {
    if (e->type() == QEvent::Paint) ++paints;
    return false;
  }
};

// A gauge eases only between two drawn states; shown or hidden it jumps, and a value handed over
// again unchanged paints nothing (each repaint also repaints the map under the gauge).
TEST(progress_view, eases_only_what_is_seen_and_repaints_only_on_change) {
  ui_test_app();
  const std::tuple<double, double, bool> rows[] = {
      {1.0, 1.0, true}, {1.0, 0.0, false}, {0.0, 1.0, false}, {0.0, 0.0, false}};
  for (const auto& [from_opacity, to_opacity, eases] : rows) {
    progress_gauge_t gauge;
    gauge.resize(100, 10);
    gauge.show();
    gauge.show_value({0.2f, {}, 10.0, 0.0, Qt::red, Qt::blue, 800, from_opacity});
    gauge.show_value({0.8f, {}, 10.0, 0.0, Qt::red, Qt::blue, 800, to_opacity});
    EXPECT_NEAR(gauge.drawn_progress(), eases ? 0.2 : 0.8, 1e-6) << from_opacity << " to " << to_opacity;
  }
  progress_gauge_t gauge;
  gauge.resize(100, 10);
  gauge.show_value(gauge_at(0.5f));
  gauge.show();
  QApplication::processEvents();
  paint_counter_t counter;
  gauge.installEventFilter(&counter);
  for (const auto& [progress, paints] : {std::pair{0.5f, 0}, {0.6f, 1}}) {
    gauge.show_value(gauge_at(progress));
    QApplication::processEvents();
    EXPECT_EQ(counter.paints, paints) << progress;
  }
}

}  // namespace

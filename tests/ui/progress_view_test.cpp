#include "ui/progress_view.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QImage>
#include <QPaintEvent>

#include "ui_test_app.h"

namespace {

// Renders a gauge 100 x 10 points and reports which of the columns are filled with the bar colour.
QImage render(const progress_view_t& v, int w = 100) {
  progress_gauge_t gauge;
  gauge.resize(w, 10);
  gauge.show_value(v);
  QImage image(w, 10, QImage::Format_ARGB32);
  image.fill(Qt::white);
  gauge.render(&image, QPoint(), QRegion(), QWidget::DrawChildren);
  return image;
}

progress_view_t gauge_at(float p, bool reverse = false) {
  progress_view_t v;
  v.progress = p;
  v.height = 10;
  v.corner_radius = 0;
  v.colour = Qt::red;
  v.track = Qt::blue;
  v.reverse = reverse;
  return v;
}

TEST(progress_view, clamps_and_fills_from_the_chosen_edge) {
  ui_test_app();
  struct row {
    float progress;
    bool reverse;
    QRgb left, middle, right;  // columns 5, 50 and 95
  } rows[] = {
      {1.7f, false, qRgb(255, 0, 0), qRgb(255, 0, 0), qRgb(255, 0, 0)},
      {-0.2f, false, qRgb(0, 0, 255), qRgb(0, 0, 255), qRgb(0, 0, 255)},
      {0.25f, false, qRgb(255, 0, 0), qRgb(0, 0, 255), qRgb(0, 0, 255)},
      {0.25f, true, qRgb(0, 0, 255), qRgb(0, 0, 255), qRgb(255, 0, 0)},
  };
  for (const auto& r : rows) {
    const QImage image = render(gauge_at(r.progress, r.reverse));
    EXPECT_EQ(image.pixel(5, 5), r.left) << r.progress << " reverse " << r.reverse;
    EXPECT_EQ(image.pixel(95, 5), r.right) << r.progress << " reverse " << r.reverse;
    EXPECT_EQ(image.pixel(50, 5), r.middle) << r.progress << " reverse " << r.reverse;
  }
}

TEST(progress_view, zero_opacity_draws_nothing_but_keeps_its_place) {
  ui_test_app();
  auto v = gauge_at(1.0f);
  v.opacity = 0.0;
  v.width = 60.0;
  const QImage image = render(v);
  EXPECT_EQ(image.pixel(50, 5), qRgb(255, 255, 255));
  progress_gauge_t gauge;
  gauge.show_value(v);
  EXPECT_EQ(gauge.sizeHint(), QSize(60, 10));
}

TEST(progress_view, a_fixed_width_is_centred_and_none_stretches) {
  ui_test_app();
  auto v = gauge_at(1.0f);
  v.width = 40.0;
  const QImage fixed = render(v);
  EXPECT_EQ(fixed.pixel(25, 5), qRgb(255, 255, 255));
  EXPECT_EQ(fixed.pixel(35, 5), qRgb(255, 0, 0));
  EXPECT_EQ(fixed.pixel(75, 5), qRgb(255, 255, 255));
  const QImage stretched = render(gauge_at(1.0f), 300);
  EXPECT_EQ(stretched.pixel(295, 5), qRgb(255, 0, 0));
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
  struct row {
    double from_opacity, to_opacity;
    bool eases;
  } rows[] = {{1.0, 1.0, true}, {1.0, 0.0, false}, {0.0, 1.0, false}, {0.0, 0.0, false}};
  for (const auto& r : rows) {
    progress_gauge_t gauge;
    gauge.resize(100, 10);
    gauge.show();
    auto v = gauge_at(0.2f);
    v.animation = 800;
    v.opacity = r.from_opacity;
    gauge.show_value(v);
    v.progress = 0.8f;
    v.opacity = r.to_opacity;
    gauge.show_value(v);
    EXPECT_NEAR(gauge.drawn_progress(), r.eases ? 0.2 : 0.8, 1e-6) << r.from_opacity << " to " << r.to_opacity;
  }
  progress_gauge_t gauge;
  gauge.resize(100, 10);
  gauge.show_value(gauge_at(0.5f));
  gauge.show();
  QApplication::processEvents();
  paint_counter_t counter;
  gauge.installEventFilter(&counter);
  gauge.show_value(gauge_at(0.5f));
  QApplication::processEvents();
  EXPECT_EQ(counter.paints, 0);
  gauge.show_value(gauge_at(0.6f));
  QApplication::processEvents();
  EXPECT_EQ(counter.paints, 1);
}

}  // namespace

#include "platform/tile_map_widget.h"

#include <gtest/gtest.h>

#include <QTemporaryDir>
#include <QTest>
#include <QWheelEvent>
#include <functional>
#include <string>
#include <vector>

#include "support/tile_server.h"
#include "support/ui_test_app.h"

namespace {

struct recording_delegate_t final : map_widget_delegate_t {
  void region_will_change(bool animated) override { events.push_back(animated ? "will a" : "will"); }
  void region_did_change(bool animated) override { events.push_back(animated ? "did a" : "did"); }
  std::vector<std::string> events;
};

const QColor grid_light(236, 234, 228);
const QColor system_red(255, 59, 48);

overlay_ref_t polyline(std::vector<geo_coordinate_t> points) {
  return std::make_shared<map_overlay_t>(map_overlay_t{map_overlay_t::kind_t::polyline, {}, 0.0, std::move(points)});
}

// The paint events that reach a widget, as one region.
struct paint_areas_t final : QObject {
  bool eventFilter(QObject*, QEvent* e) override {
    if (e->type() == QEvent::Paint) region += static_cast<QPaintEvent*>(e)->region();
    return false;
  }
  QRegion region;
};

// A spiral walk of n points 10 m apart around a centre, laps widening by 10 m, newest first.
std::vector<geo_coordinate_t> spiral(geo_coordinate_t centre, int n) {
  std::vector<geo_coordinate_t> points;
  double angle = 0.0;
  for (int i = 0; i < n; ++i) {
    const double radius = 30.0 + 10.0 * angle / (2 * 3.14159265358979);
    angle += 10.0 / radius;
    points.insert(points.begin(), {centre.latitude + radius * std::cos(angle) / meters_per_lat,
                                   centre.longitude + radius * std::sin(angle) / meters_per_lon / 0.66});
  }
  return points;
}

// The share of pixels in an area that differ clearly between two images (not by the antialiasing
// where the stroker's runs meet), outside a region left out.
double differing(const QImage& a, const QImage& b, const QRect& area, const QRegion& left_out = {}) {
  int count = 0;
  for (int y = area.top(); y <= area.bottom(); ++y)
    for (int x = area.left(); x <= area.right(); ++x) {
      const QColor p(a.pixel(x, y)), q(b.pixel(x, y));
      if (std::abs(p.red() - q.red()) + std::abs(p.green() - q.green()) + std::abs(p.blue() - q.blue()) > 96 &&
          !left_out.contains(QPoint(x, y)))
        ++count;
    }
  return static_cast<double>(count) / (area.width() * area.height());
}

class tile_map_widget_test : public ::testing::Test {
protected:
  tile_map_widget_test() {
    map->resize(512, 512);
    map->set_delegate(&delegate);
    map->show();
  }

  // Paints until no tile is on its way, then returns what the user sees.
  QImage settled() {
    for (int round = 0; round < 20; ++round) {
      map->grab();
      if (!QTest::qWaitFor([&] { return map->loader().in_flight() == 0; }, 5000)) break;
      QCoreApplication::processEvents();
      if (map->loader().in_flight() == 0 && round > 1) break;
    }
    return map->grab().toImage();
  }

  QApplication& app = ui_test_app();  // before the server: its socket needs the event loop
  tile_server_t server;
  QTemporaryDir cache;
  recording_delegate_t delegate;
  const tile_source_t tiles{server.url_template(), 19, "test tiles"};
  std::unique_ptr<tile_map_widget_t> map =
      std::make_unique<tile_map_widget_t>(tile_sources_t{tiles, tiles, {}}, cache.path());
};

TEST_F(tile_map_widget_test, tiles_lie_where_their_corner_coordinate_is_and_a_missing_one_shows_its_parent) {
  map->set_region({0.0, 0.0}, 2'000'000.0, 2'000'000.0, false);
  const QImage seen = settled();
  const int z = static_cast<int>(std::lround(map->camera().zoom()));
  const int half = 1 << (z - 1);
  // 0 N 0 E is the corner where four tiles meet, at the centre of the widget.
  for (const auto& [x, y] : {std::pair{0, 0}, {1, 0}, {0, 1}, {1, 1}})  // 6 points either side of it
    EXPECT_EQ(QColor(seen.pixel(250 + 12 * x, 250 + 12 * y)),
              tile_server_t::tile_colour(z, half - 1 + x, half - 1 + y));
  server.offline = true;
  map->set_region({0.0, 0.0}, 1'000'000.0, 1'000'000.0, false);  // one level deeper
  EXPECT_EQ(QColor(settled().pixel(262, 262)), tile_server_t::tile_colour(z, half, half));
}

TEST_F(tile_map_widget_test, a_drag_moves_the_map_by_the_dragged_amount_between_will_and_did) {
  map->set_region({-33.8568, 151.2153}, 200.0, 200.0, false);
  const map_rect_t before = map->visible_map_rect();
  const double scale = map->camera().scale;
  QTest::mousePress(map.get(), Qt::LeftButton, {}, {300, 300});
  for (const QPoint at : {QPoint(250, 280), QPoint(200, 260)}) QTest::mouseMove(map.get(), at);
  QTest::mouseRelease(map.get(), Qt::LeftButton, {}, {200, 260});
  const map_rect_t after = map->visible_map_rect();
  EXPECT_NEAR(after.x - before.x, 100 * scale, 1e-6);
  EXPECT_NEAR(after.y - before.y, 40 * scale, 1e-6);
  EXPECT_EQ(delegate.events, (std::vector<std::string>{"will", "did"}));
}

TEST_F(tile_map_widget_test, animated_changes_and_wheel_zooms_are_framed_by_will_and_did) {
  map->set_region({48.85, 2.35}, 200.0, 200.0, true);
  EXPECT_EQ(delegate.events, (std::vector<std::string>{"will a"}));
  ASSERT_TRUE(QTest::qWaitFor([&] { return delegate.events.size() == 2; }, 3000));
  EXPECT_EQ(delegate.events.back(), "did a");
  const double before = map->camera().scale;

  QWheelEvent wheel(QPointF(256, 256), map->mapToGlobal(QPointF(256, 256)), {}, QPoint(0, -240), Qt::NoButton, {},
                    Qt::NoScrollPhase, false);
  QApplication::sendEvent(map.get(), &wheel);
  EXPECT_NEAR(map->camera().scale, before * 2.0, before * 1e-9) << "two notches out: one zoom level";
  EXPECT_EQ(delegate.events.back(), "will");
  ASSERT_TRUE(QTest::qWaitFor([&] { return delegate.events.back() == "did"; }, 3000));

  map->set_camera_min_distance(1000.0);
  map->set_region({48.85, 2.35}, 10.0, 10.0, false);
  const double span_m = map->visible_map_rect().width * metres_per_map_point(48.85);
  EXPECT_NEAR(span_m, 1000.0, 1.0) << "the camera keeps its minimum distance";
}

TEST_F(tile_map_widget_test, overlays_are_drawn_above_the_tiles_and_what_cannot_be_placed_is_skipped) {
  map->set_region({0.0, 0.0}, 2'000'000.0, 2'000'000.0, false);
  const map_rect_t before = map->visible_map_rect();
  const double nan = std::nan("");
  const auto line = polyline({{0.0, -5.0}, {0.0, 5.0}});
  map->add_overlays({line, polyline({{nan, 0.0}, {0.0, std::numeric_limits<double>::infinity()}})});
  map->add_annotation(std::make_shared<point_annotation_t>(point_annotation_t{"x", "", {nan, 1.0}}));
  const QPoint on_line = map->camera().to_screen(map_point_for({0.0, 2.0}), map->size()).toPoint();
  EXPECT_EQ(QColor(settled().pixel(on_line)), system_red);

  map->remove_overlays({line});
  EXPECT_EQ(map->overlays().size(), 1u);
  map->set_centre({nan, 0.0}, false);
  EXPECT_NE(QColor(settled().pixel(on_line)), system_red);
  EXPECT_EQ(map->visible_map_rect().x, before.x);
}

TEST_F(tile_map_widget_test, a_marker_on_the_position_leaves_the_position_dot_seen) {
  map->set_region({0.0, 0.0}, 2'000'000.0, 2'000'000.0, false);
  map->add_annotation(std::make_shared<point_annotation_t>(point_annotation_t{"x", "", {0.0, 0.0}}));
  map->add_overlays(
      {std::make_shared<map_overlay_t>(map_overlay_t{map_overlay_t::kind_t::circle, {0.0, 0.0}, 40'000.0, {}})});
  const QPoint dot = map->camera().to_screen(map_point_for({0.0, 0.0}), map->size()).toPoint();
  EXPECT_EQ(QColor(settled().pixel(dot - QPoint(0, 3))), QColor(Qt::white)) << "the dot's white over the pin";
}

// Zoomed in to a few hundred metres, a track whose points lie hundreds of kilometres away on either
// side still shows the parts of its segments that cross the view, up to the edges.
TEST_F(tile_map_widget_test, segments_reaching_far_beyond_the_view_are_drawn_where_they_cross_it) {
  map->set_region({0.0, 0.0}, 400.0, 400.0, false);
  map->add_overlays({polyline({{0.0, -5.0}, {0.0, 0.0}, {5.0, 0.0}})});
  const QImage seen = settled();
  const QPointF centre = map->camera().to_screen(map_point_for({0.0, 0.0}), map->size());
  for (const QPointF at : {QPointF(4, centre.y()), QPointF(centre.x() / 2, centre.y()), QPointF(centre.x(), 4.0),
                           QPointF(centre.x(), centre.y() / 2)}) {
    EXPECT_EQ(QColor(seen.pixel(at.toPoint())), system_red) << at.x() << "," << at.y();
  }
  EXPECT_NE(QColor(seen.pixel(QPoint(static_cast<int>(centre.x()) + 40, static_cast<int>(centre.y())))), system_red);
}

// The coordinator puts in a new position dot and track at each fix and takes the old ones out: the
// repaint covers what changed (nothing when nothing did), and a paint of any part of the map draws
// there what a whole paint draws, however few of the track's points it walks.
TEST_F(tile_map_widget_test, a_fix_repaints_what_changed_and_a_part_paints_as_the_whole) {
  server.offline = true;  // the grid alone: no tile arrives later to repaint all
  const geo_coordinate_t centre{48.85, 2.35};
  map->set_region(centre, 400.0, 400.0, false);
  auto fix = [&](const std::vector<geo_coordinate_t>& track) {
    const auto old = map->overlays();
    map->add_overlays(
        {std::make_shared<map_overlay_t>(map_overlay_t{map_overlay_t::kind_t::circle, track.front(), 3.0, {}}),
         polyline(track)});
    map->remove_overlays(old);
  };
  auto track = spiral(centre, 600);  // laps out to 140 m: all in view
  fix(track);
  const QImage whole = settled();

  auto moved = track;
  moved.front().latitude += 2.0 / meters_per_lat;
  auto grown = spiral(centre, 601);
  grown.pop_back();
  auto jumped = grown;  // a point 40 m on: its segment reaches beyond the position dot
  jumped.insert(jumped.begin(), {grown.front().latitude + 40.0 / meters_per_lat, grown.front().longitude});
  const auto pin = std::make_shared<point_annotation_t>(point_annotation_t{"12:00:00", "", track[300]});
  const auto unknown = std::make_shared<point_annotation_t>(point_annotation_t{"12:00:01", "", track[400]});
  const struct {
    const char* what;
    std::function<void()> change;
    int most;  // screen points repainted
  } changes[] = {
      {"the same fix", [&] { fix(track); }, 0},
      {"the head moved 2 m", [&] { fix(moved); }, 40 * 40},
      {"a new point, the oldest dropped", [&] { fix(grown); }, 2 * 40 * 40},
      {"a point 40 m on", [&] { fix(jumped); }, 2 * 70 * 70},
      {"a marker added", [&] { map->add_annotation(pin); }, 30 * 30},
      {"a marker not shown removed", [&] { map->remove_annotation(unknown); }, 0},
      {"a marker removed", [&] { map->remove_annotation(pin); }, 30 * 30},
  };
  QImage before = map->grab().toImage();
  paint_areas_t paints;
  map->installEventFilter(&paints);
  for (const auto& c : changes) {
    paints.region = {};
    c.change();
    // The repaint comes with the platform's next frame; a change that needs none waits the bound.
    (void)QTest::qWaitFor([&] { return !paints.region.isEmpty(); }, 100);
    const QRegion repainted = paints.region;
    int area = 0;
    for (const QRect& r : repainted) area += r.width() * r.height();
    EXPECT_LE(area, c.most) << c.what;
    const QImage after = map->grab().toImage();
    EXPECT_EQ(differing(after, before, map->rect(), repainted), 0.0) << c.what << ": a change not repainted";
    before = after;
  }
  map->removeEventFilter(&paints);

  fix(track);
  ASSERT_EQ(differing(settled(), whole, map->rect()), 0.0);
  for (const QRect part :
       {QRect(0, 0, 100, 100), QRect(230, 230, 50, 50), QRect(300, 100, 40, 300), QRect(0, 480, 512, 32)}) {
    QImage partial(map->size(), QImage::Format_RGB32);
    partial.fill(Qt::black);
    map->render(&partial, part.topLeft(), QRegion(part));
    EXPECT_LT(differing(partial, whole, part), 0.01) << part.x() << "," << part.y();
  }
}

TEST_F(tile_map_widget_test, offline_shows_the_grid_with_the_overlays_and_does_not_retry_in_a_loop) {
  server.offline = true;
  map->set_region({10.0, 10.0}, 2'000'000.0, 2'000'000.0, false);
  map->add_overlays(
      {std::make_shared<map_overlay_t>(map_overlay_t{map_overlay_t::kind_t::circle, {10.0, 10.0}, 30000.0, {}})});
  const QImage seen = settled();
  EXPECT_GT(map->loader().failures(), 0);
  EXPECT_EQ(QColor(seen.pixel(5, 100)), grid_light);
  EXPECT_EQ(QColor(seen.pixel(256, 256)), QColor(Qt::white)) << "the position dot is still drawn";

  const int asked = server.requests;
  for (int i = 0; i < 10; ++i) settled();
  EXPECT_EQ(server.requests, asked) << "failed tiles wait before they are asked for again";
}

// A server that sends images of the wrong shape or of a huge size gets the grid, as if offline.
TEST_F(tile_map_widget_test, odd_or_huge_tile_images_are_refused) {
  for (const QSize size : {QSize(256, 128), QSize(4096, 4096)}) {
    tile_server_t odd;
    odd.tile_size = size;
    tile_map_widget_t widget({{odd.url_template(), 19, "test tiles"}, {}, {}},
                             cache.path() + QString("/%1").arg(size.width()));
    widget.resize(256, 256);
    widget.set_region({10.0, 10.0}, 2'000'000.0, 2'000'000.0, false);
    widget.show();
    widget.grab();
    ASSERT_TRUE(
        QTest::qWaitFor([&] { return widget.loader().failures() > 0 && widget.loader().in_flight() == 0; }, 5000))
        << size.width() << "x" << size.height();
    EXPECT_EQ(QColor(widget.grab().toImage().pixel(5, 100)), grid_light) << size.width() << "x" << size.height();
  }
}

}  // namespace

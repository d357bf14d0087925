#include "map/map_view.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "map/gps_heading.h"
#include "support/fake_map_widget.h"
#include "support/test_queue.h"

namespace {

const geo_coordinate_t home{48.1173, 11.5167};

// d metres north of home.
geo_coordinate_t north(double d) { return {home.latitude + d / meters_per_lat, home.longitude}; }

class map_view_test : public ::testing::Test {
protected:
  // One redraw of the main screen with the receiver at `at`.
  void redraw(geo_coordinate_t at, std::vector<geo_coordinate_t> path = {}) {
    annotation_ref_t none;
    const map_view_t view{cfg, at, std::move(path), make_annotation("12:00:00", at, none), annotations};
    view.update();
  }
  // A redraw, then the deferred writes it posted.
  void redraw_and_settle(geo_coordinate_t at, std::vector<geo_coordinate_t> path = {}) {
    redraw(at, std::move(path));
    queue.run_pending();
  }
  std::size_t circles() const {
    return static_cast<std::size_t>(std::count_if(widget.shown.begin(), widget.shown.end(), [](const overlay_ref_t& o) {
      return o->kind == map_overlay_t::kind_t::circle;
    }));
  }

  test_queue_t queue;
  fake_map_widget_t widget;
  map_cfg_t cfg{widget, queue};
  map_coordinator_t coordinator{cfg};
  annotations_t annotations;
};

TEST_F(map_view_test, set_up_places_on_the_device_and_keeps_the_camera_at_40_m) {
  annotation_ref_t none;
  const map_view_t view{cfg, home, {}, make_annotation("", home, none), annotations};
  EXPECT_EQ(&view.make(coordinator, std::nullopt), &widget);
  EXPECT_TRUE(widget.calls.empty());
  view.make(coordinator, home);
  EXPECT_EQ(widget.calls, std::vector<std::string>{"region a"});
  EXPECT_EQ(widget.camera_min_distance, 40.0);
  EXPECT_FALSE(widget.shows_user_location);
  EXPECT_EQ(widget.delegate, &coordinator);
}

TEST_F(map_view_test, a_zero_position_places_nothing_but_reset_and_type_still_apply) {
  cfg.mode_sat = true;
  cfg.reset = true;
  widget.markers.push_back(std::make_shared<point_annotation_t>());
  redraw_and_settle({0.0, 11.5});
  redraw_and_settle({48.1, 0.0});
  EXPECT_EQ(widget.calls, std::vector<std::string>{"type 4"}) << "the type is set once";
  EXPECT_TRUE(widget.markers.empty());
  EXPECT_FALSE(cfg.reset);
  EXPECT_FALSE(cfg.region_set);
  EXPECT_TRUE(annotations.list().empty());
}

TEST_F(map_view_test, the_first_fix_places_the_map_and_overlays_follow_after_40_ms) {
  widget.window = false;
  redraw(home, {home});
  EXPECT_FALSE(cfg.region_set) << "the write is deferred until after the update";
  queue.run_pending();
  EXPECT_TRUE(cfg.region_set);
  EXPECT_EQ(widget.calls, std::vector<std::string>{"region"}) << "not animated outside a window";
  EXPECT_EQ(widget.span_ns, 200.0);
  EXPECT_TRUE(widget.shown.empty());
  queue.advance(0.04);
  redraw_and_settle(home, {home});
  EXPECT_TRUE(widget.shown.empty()) << "only later than 40 ms";
  queue.advance(0.001);
  redraw_and_settle(home);
  EXPECT_EQ(widget.shown.size(), 1u) << "the circle alone without a track";
  queue.advance(0.05);
  redraw_and_settle(home, {home, north(10)});
  ASSERT_EQ(widget.shown.size(), 2u) << "new overlays in, old ones out";
  EXPECT_EQ(widget.shown[1]->points.size(), 2u);
  EXPECT_EQ(cfg.ui_overlays[0], widget.shown[0]);
}

TEST_F(map_view_test, the_circle_keeps_its_screen_size) {
  redraw_and_settle(home);
  queue.advance(1.0);
  redraw_and_settle(home);
  ASSERT_EQ(circles(), 1u);
  EXPECT_DOUBLE_EQ(widget.shown[0]->radius_m, 800.0 * map_view_t::pi_2 / 400.0);
  widget.width = 0;
  queue.advance(1.0);
  redraw_and_settle(home);
  EXPECT_DOUBLE_EQ(widget.shown[0]->radius_m, 800.0 * map_view_t::pi_2 / 350.0) << "an unlaid frame counts 350";
  EXPECT_EQ(circles(), 1u);
}

TEST_F(map_view_test, recentres_only_when_the_fix_leaves_the_inner_rectangle_after_the_rest) {
  redraw_and_settle(home);
  widget.calls.clear();
  // The inner rectangle is inset by 1/8 of 800 map points: 100 points from each edge.
  const auto edge_y = widget.rect.y + 100.0;
  auto at_y = [&](double y) {
    const double lat_per_point = 1.0 / (map_point_for(north(1)).y - map_point_for(home).y) / meters_per_lat;
    return geo_coordinate_t{home.latitude + (y - map_point_for(home).y) * lat_per_point, home.longitude};
  };
  redraw_and_settle(at_y(edge_y - 1));
  EXPECT_TRUE(widget.calls.empty()) << "resting for 1 s after the placement";
  queue.advance(1.01);
  redraw_and_settle(at_y(edge_y + 1));
  EXPECT_TRUE(widget.calls.empty()) << "just inside";
  redraw_and_settle(at_y(edge_y - 1));
  EXPECT_EQ(widget.calls, std::vector<std::string>{"centre a"}) << "just outside, animated";
  queue.advance(4.9);
  redraw_and_settle(north(100000));
  EXPECT_EQ(widget.calls.size(), 1u) << "resting for 5 s";
  queue.advance(0.2);
  redraw_and_settle(north(100000));
  EXPECT_EQ(widget.calls.back(), "centre") << "a far jump is not animated";
}

TEST_F(map_view_test, updates_wait_while_the_user_drags_and_recentring_rests_5_s_from_its_start) {
  redraw_and_settle(home);
  queue.advance(2.0);
  widget.calls.clear();
  coordinator.region_will_change(false);
  redraw_and_settle(north(100000));
  EXPECT_TRUE(widget.calls.empty());
  EXPECT_TRUE(annotations.list().size() == 1u) << "locked: not even markers";
  coordinator.region_did_change(false);
  EXPECT_TRUE(cfg.lock_region) << "unlocked only after the current update";
  int notices = 0;
  auto sub = cfg.subscribe([&] { ++notices; });
  queue.run_pending();
  EXPECT_FALSE(cfg.lock_region);
  EXPECT_EQ(notices, 1) << "the screen redraws";
  queue.advance(4.9);
  redraw_and_settle(north(100000));
  EXPECT_TRUE(widget.calls.empty());
  queue.advance(0.2);
  redraw_and_settle(north(100000));
  EXPECT_EQ(widget.calls.size(), 1u);
}

TEST_F(map_view_test, markers_skip_the_head_and_follow_the_list) {
  for (int i = 0; i < 3; ++i) redraw_and_settle(north(150.0 * i));
  // List: [300, 150, 0]. The first offer showed nothing (a single entry); each later one shows index 1.
  ASSERT_EQ(widget.markers.size(), 2u);
  EXPECT_EQ(widget.markers[0], annotations.list()[2]);
  EXPECT_EQ(widget.markers[1], annotations.list()[1]);
  redraw_and_settle(north(200));  // within 100 m of list[1]: the head is overwritten and the old head leaves
  EXPECT_EQ(widget.markers.size(), 2u);
}

TEST_F(map_view_test, a_full_list_evicts_its_oldest_and_shows_the_newly_fixed_marker) {
  for (int i = 0; i < 201; ++i) redraw_and_settle(north(150.0 * i));
  ASSERT_EQ(annotations.list().size(), 200u);
  const auto oldest = widget.markers.front();
  redraw_and_settle(north(150.0 * 201));
  EXPECT_EQ(std::count(widget.markers.begin(), widget.markers.end(), oldest), 0);
  EXPECT_EQ(widget.markers.back(), annotations.list()[1]);
  EXPECT_EQ(widget.markers.size(), 199u) << "every fixed marker of the list is shown";
}

TEST_F(map_view_test, reset_clears_markers_overlays_and_the_list) {
  for (int i = 0; i < 3; ++i) redraw_and_settle(north(150.0 * i));
  queue.advance(1.0);
  redraw_and_settle(north(450), {north(450)});
  ASSERT_FALSE(widget.shown.empty());
  cfg.reset = true;
  redraw_and_settle({0.0, 0.0});
  EXPECT_TRUE(widget.markers.empty());
  EXPECT_TRUE(widget.shown.empty());
  EXPECT_TRUE(annotations.list().empty());
  redraw_and_settle(home);
  redraw_and_settle(north(1));
  EXPECT_EQ(annotations.list().size(), 2u) << "the first two offers are inserted unconditionally";
}

TEST_F(map_view_test, non_finite_positions_are_never_placed) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  redraw_and_settle({nan, 11.5});
  redraw_and_settle({48.1, std::numeric_limits<double>::infinity()});
  EXPECT_TRUE(widget.calls.empty());
  EXPECT_FALSE(cfg.region_set);
  redraw_and_settle(home);
  queue.advance(1.0);
  redraw_and_settle(home, {home, {nan, 1.0}, north(5)});
  ASSERT_EQ(widget.shown.size(), 2u);
  EXPECT_EQ(widget.shown[1]->points.size(), 2u) << "the track skips the point it cannot place";
}

TEST(overlay_style, red_line_and_red_circle_with_white_fill) {
  map_overlay_t line;
  line.kind = map_overlay_t::kind_t::polyline;
  map_overlay_t circle;
  const auto l = style_for(line);
  const auto c = style_for(circle);
  EXPECT_EQ(l.line_width, 4.0);
  EXPECT_TRUE(l.stroke_red);
  EXPECT_FALSE(l.fill_white);
  EXPECT_EQ(c.line_width, 4.0);
  EXPECT_TRUE(c.stroke_red);
  EXPECT_TRUE(c.fill_white);
}

struct heading_test : ::testing::Test {
  void SetUp() override { gps_heading_t::reset_process_values(); }
  void TearDown() override { gps_heading_t::reset_process_values(); }
};

TEST_F(heading_test, unwraps_across_north) {
  const struct {
    std::vector<double> headings;
    std::vector<double> published;
  } cases[] = {
      {{350, 355, 0, 5, 10, 350}, {-10, -5, 0, 5, 10, -10}},
      {{10, 5, 355, 350}, {10, 5, -5, -10}},
      {{180}, {180}},
      {{-1}, {1}},
      {{359, 1, 359}, {-1, 1, -1}},
  };
  for (const auto& c : cases) {
    gps_heading_t::reset_process_values();
    gps_heading_t h;
    std::vector<double> out;
    for (const double t : c.headings) {
      h.update(t);
      out.push_back(h.heading);
    }
    EXPECT_EQ(out, c.published);
  }
}

TEST_F(heading_test, a_new_instance_continues_where_the_last_ended) {
  {
    gps_heading_t h;
    h.update(200);
    h.update(359);
  }
  gps_heading_t h;
  EXPECT_EQ(h.heading.get(), -1.0) << "200 then 359 unwrap to -160 then -1";
  h.update(1);
  EXPECT_EQ(h.heading.get(), 1.0);
}

}  // namespace

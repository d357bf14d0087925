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
geo_coordinate_t north(double d) {
  return {home.latitude + d / meters_per_lat, home.longitude};
}

class map_view_test : public ::testing::Test {
protected:
  // One redraw of the main screen with the receiver at `at` and the track, newest first; then the
  // deferred writes it posted.
  void redraw(geo_coordinate_t at, const std::vector<geo_coordinate_t>& track = {}) {
    ring_t<geo_coordinate_t> list(track.size() + 1);
    for (auto p = track.rbegin(); p != track.rend(); ++p) list.push_front(*p);
    annotation_ref_t none;
    map.update(at, list, make_annotation("12:00:00", at, none));
    queue.run_pending();
  }

  test_queue_t queue;
  fake_map_widget_t widget;
  map_cfg_t cfg;
  map_view_t map{cfg, widget, queue};
};

TEST_F(map_view_test, set_up_places_on_the_device_and_keeps_the_camera_at_40_m) {
  map.make(std::nullopt);
  EXPECT_TRUE(widget.calls.empty());
  map.make(home);
  EXPECT_EQ(widget.calls, std::vector<std::string>{"region a"});
  EXPECT_TRUE(widget.shows_compass && widget.shows_scale && widget.follows_heading && !widget.shows_user_location);
  EXPECT_EQ(widget.camera_min_distance, 40.0);
  EXPECT_EQ(widget.delegate, &map);
}

TEST_F(map_view_test, a_position_the_map_cannot_place_places_nothing_but_reset_and_type_still_apply) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  const geo_coordinate_t unplaceable[] = {
      {0.0, 11.5}, {48.1, 0.0}, {nan, 11.5}, {48.1, std::numeric_limits<double>::infinity()}};
  cfg.mode_sat = true;
  cfg.reset = true;
  widget.markers.push_back(std::make_shared<point_annotation_t>());
  for (const auto at : unplaceable) redraw(at);
  EXPECT_EQ(widget.calls, std::vector<std::string>{"type 4"}) << "the type is set once";
  EXPECT_TRUE(widget.markers.empty());
  EXPECT_FALSE(cfg.reset);
  EXPECT_FALSE(cfg.region_set);
  cfg.mode_sat = false;
  redraw(unplaceable[0]);
  EXPECT_EQ(widget.calls.back(), "type 0");
}

TEST_F(map_view_test, the_first_fix_places_the_map_and_overlays_follow_after_40_ms) {
  widget.window = false;
  annotation_ref_t none;
  map.update(home, ring_t<geo_coordinate_t>(1), make_annotation("", home, none));
  EXPECT_FALSE(cfg.region_set) << "the write is deferred until after the update";
  queue.run_pending();
  EXPECT_TRUE(cfg.region_set);
  EXPECT_EQ(widget.calls, std::vector<std::string>{"region"}) << "not animated outside a window";
  EXPECT_EQ(std::pair(widget.span_ns, widget.span_ew), std::pair(200.0, 200.0));
  queue.advance(0.04);
  redraw(home, {home});
  EXPECT_TRUE(widget.shown.empty()) << "only later than 40 ms";
  queue.advance(0.001);
  redraw(home);
  ASSERT_EQ(widget.shown.size(), 1u) << "the circle alone without a track";
  const auto circle = widget.shown[0];
  EXPECT_EQ(circle->centre, home);
  redraw(home);
  EXPECT_EQ(widget.shown[0], circle) << "not again within 40 ms";
  queue.advance(0.05);
  redraw(home, {home, {std::nan(""), 1.0}, north(10)});
  ASSERT_EQ(widget.shown.size(), 2u) << "new overlays in, old ones out";
  EXPECT_EQ(widget.shown[1]->kind, map_overlay_t::kind_t::polyline);
  EXPECT_EQ(widget.shown[1]->points, (std::vector<geo_coordinate_t>{home, north(10)}))
      << "newest first, without the point a map cannot place";
}

TEST_F(map_view_test, the_circle_keeps_its_screen_size) {
  redraw(home);
  for (const auto& [width, divisor] : {std::pair{400.0, 400.0}, std::pair{0.0, 350.0}}) {
    widget.width = width;
    queue.advance(1.0);
    redraw(home);
    ASSERT_EQ(widget.shown.size(), 1u);
    EXPECT_DOUBLE_EQ(widget.shown[0]->radius_m, 800.0 * map_view_t::pi_2 / divisor) << "frame width " << width;
  }
}

TEST_F(map_view_test, recentres_only_when_the_fix_leaves_the_inner_rectangle_after_the_rest) {
  redraw(home);
  widget.calls.clear();
  // The inner rectangle is inset by 1/8 of 800 map points: 100 points from each edge.
  const auto edge_y = widget.rect.y + 100.0;
  auto at_y = [&](double y) {
    const double lat_per_point = 1.0 / (map_point_for(north(1)).y - map_point_for(home).y) / meters_per_lat;
    return geo_coordinate_t{home.latitude + (y - map_point_for(home).y) * lat_per_point, home.longitude};
  };
  queue.advance(1.0);
  redraw(at_y(edge_y - 1));
  EXPECT_TRUE(widget.calls.empty()) << "resting for 1 s after the placement";
  queue.advance(0.01);
  redraw(at_y(edge_y + 1));
  EXPECT_TRUE(widget.calls.empty()) << "just inside";
  queue.advance(0.05);
  const auto before = widget.shown;
  redraw(at_y(edge_y - 1));
  EXPECT_EQ(widget.calls, std::vector<std::string>{"centre a"}) << "just outside, animated";
  EXPECT_EQ(widget.shown, before) << "the overlays wait for the move";
  queue.advance(4.9);
  redraw(north(100000));
  EXPECT_EQ(widget.calls.size(), 1u) << "resting for 5 s";
  queue.advance(0.2);
  redraw(north(100000));
  EXPECT_EQ(widget.calls.back(), "centre") << "a far jump is not animated";
}

TEST_F(map_view_test, updates_wait_while_the_user_drags_and_recentring_rests_5_s_from_its_start) {
  redraw(home);
  queue.advance(2.0);
  widget.calls.clear();
  map.region_will_change(false);
  redraw(north(100000));
  EXPECT_TRUE(widget.calls.empty());
  EXPECT_TRUE(widget.markers.empty()) << "locked: not even markers";
  map.region_did_change(false);
  int notices = 0;
  auto sub = cfg.subscribe([&] { ++notices; });
  annotation_ref_t none;
  map.update(north(100000), ring_t<geo_coordinate_t>(1), make_annotation("", north(100000), none));
  EXPECT_TRUE(widget.markers.empty()) << "unlocked only after the current update";
  queue.run_pending();
  EXPECT_EQ(notices, 1) << "the screen redraws";
  queue.advance(4.9);
  redraw(north(100000));
  EXPECT_TRUE(widget.calls.empty());
  EXPECT_EQ(widget.markers.size(), 1u);
  queue.advance(0.2);
  redraw(north(100000));
  EXPECT_EQ(widget.calls.size(), 1u);
}

TEST_F(map_view_test, markers_skip_the_head_and_follow_the_list) {
  for (int i = 0; i < 3; ++i) redraw(north(150.0 * i));
  // List: [300, 150, 0]. The first offer showed nothing (a single entry); each later one shows index 1.
  ASSERT_EQ(widget.markers.size(), 2u);
  EXPECT_EQ(widget.markers[0]->coordinate, north(0));
  EXPECT_EQ(widget.markers[1]->coordinate, north(150));
  redraw(north(200));  // within 100 m of list[1]: the head is overwritten and the old head leaves
  EXPECT_EQ(widget.markers.size(), 2u);
}

TEST_F(map_view_test, a_full_list_evicts_its_oldest_and_shows_the_newly_fixed_marker) {
  for (int i = 0; i < 202; ++i) redraw(north(150.0 * i));
  // The list holds 200 (201 down to 2); every entry but the head is shown, in the order fixed.
  ASSERT_EQ(widget.markers.size(), 199u);
  EXPECT_EQ(widget.markers.front()->coordinate, north(150.0 * 2));
  EXPECT_EQ(widget.markers.back()->coordinate, north(150.0 * 200));
}

TEST_F(map_view_test, reset_clears_markers_overlays_and_the_list) {
  for (int i = 0; i < 3; ++i) redraw(north(150.0 * i));
  queue.advance(1.0);
  redraw(north(450), {north(450)});
  ASSERT_FALSE(widget.shown.empty());
  cfg.reset = true;
  redraw({0.0, 0.0});
  EXPECT_TRUE(widget.markers.empty());
  EXPECT_TRUE(widget.shown.empty());
  redraw(home);
  redraw(north(1));
  ASSERT_EQ(widget.markers.size(), 1u) << "the first two offers are inserted unconditionally";
  EXPECT_EQ(widget.markers[0]->coordinate, home);
}

// The unwrapped value lives in the process, so every update is made on a new instance: each one
// continues where the last ended.
TEST(heading, unwraps_across_north_and_a_new_instance_continues_where_the_last_ended) {
  const std::pair<std::vector<double>, std::vector<double>> cases[] = {
      // headings, published
      {{350, 355, 0, 5, 10, 350}, {-10, -5, 0, 5, 10, -10}},
      {{10, 5, 355, 350}, {10, 5, -5, -10}},
      {{180}, {180}},
      {{-1}, {1}},
      {{359, 1, 359}, {-1, 1, -1}},
      {{200, 359, 1}, {-160, -1, 1}},
  };
  for (const auto& [headings, published] : cases) {
    gps_heading_t::reset_process_values();
    std::vector<double> out;
    for (const double t : headings) {
      gps_heading_t h;
      h.update(t);
      out.push_back(h.heading);
    }
    EXPECT_EQ(out, published);
  }
  gps_heading_t::reset_process_values();
}

}  // namespace

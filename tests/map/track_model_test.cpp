#include <gtest/gtest.h>

#include "map/annotations.h"
#include "map/gps_heading.h"
#include "map/map_path.h"

namespace {

// A coordinate d metres north of the origin.
geo_coordinate_t north(double d) {
  return {d / meters_per_lat, 0.0};
}

annotation_ref_t marker(geo_coordinate_t c) {
  annotation_ref_t spare;
  return make_annotation("m", c, spare);
}

TEST(annotations, spacing_is_measured_from_the_newest_fixed_entry) {
  annotations_t a;
  EXPECT_EQ(a.add_annotation(marker(north(0))), nullptr);
  const auto far_head = marker(north(500));
  EXPECT_EQ(a.add_annotation(far_head), nullptr) << "the first two are inserted whatever their distance";
  // Within 100 m of list[1] (the entry at 0 m): overwrites the head, returns the old head.
  const auto near = marker(north(99.9));
  EXPECT_EQ(a.add_annotation(near), far_head);
  EXPECT_EQ(a.list()[0], near);
  EXPECT_EQ(a.list().size(), 2u);
  // Exactly 100 m: inserted.
  EXPECT_EQ(a.add_annotation(marker(north(100.0))), nullptr);
  EXPECT_EQ(a.list().size(), 3u);
}

TEST(annotations, the_201st_entry_evicts_the_oldest) {
  annotations_t a;
  const auto oldest = marker(north(0));
  a.add_annotation(oldest);
  for (int i = 1; i < 200; ++i) a.add_annotation(marker(north(150.0 * i)));
  ASSERT_EQ(a.list().size(), 200u);
  EXPECT_EQ(a.add_annotation(marker(north(150.0 * 200))), oldest);
  EXPECT_EQ(a.list().size(), 200u);
  a.clear();
  EXPECT_EQ(a.add_annotation(marker(north(0))), nullptr);
  EXPECT_EQ(a.add_annotation(marker(north(0))), nullptr);
}

TEST(annotations, a_spare_marker_is_reused_only_when_nobody_holds_it) {
  annotation_ref_t spare;
  auto first = make_annotation("12:00:00", north(0), spare);
  auto* storage = first.get();
  spare = std::move(first);
  auto second = make_annotation("12:00:01", north(1), spare);
  EXPECT_EQ(second.get(), storage);
  EXPECT_EQ(second->title, "12:00:01");
  EXPECT_EQ(second->subtitle, "12:00:01");
  EXPECT_EQ(second->coordinate, north(1));
  spare = second;
  auto third = make_annotation("x", north(2), spare);
  EXPECT_NE(third.get(), storage) << "a marker someone holds is never changed";
  EXPECT_EQ(second->title, "12:00:01");
  EXPECT_EQ(spare, nullptr) << "the spare is given up either way";
}

TEST(map_path, spacing_grows_with_the_hdop) {
  const struct {
    double hdop, spacing;
  } cases[] = {{0.5, 3.5}, {0.7, 3.5}, {1.0, 5.0}, {1.9, 9.5}, {2.0, 10.0}, {50.0, 10.0}};
  for (const auto& c : cases) {
    map_path_t p;
    p.add_point(0, 0, c.hdop);
    p.add_point(north(50).latitude, 0, c.hdop);
    const auto inside = north(c.spacing - 0.01).latitude;
    EXPECT_EQ(p.add_point(inside, 0, c.hdop), north(50)) << "overwrites the head and returns it";
    EXPECT_EQ(p.list()[0], (geo_coordinate_t{inside, 0}));
    EXPECT_FALSE(p.add_point(north(c.spacing + 0.01).latitude, 0, c.hdop)) << "inserted";
    EXPECT_EQ(p.list().size(), 3u);
    EXPECT_TRUE(p.add_point(north(1.5 * c.spacing).latitude, 0, c.hdop)) << "measured from list[1], not list[2]";
  }
  map_path_t p;
  p.add_point(0, 0, 2.0);
  p.add_point(1, 0, 2.0);
  EXPECT_FALSE(p.add_point(north(10.0).latitude, 0, 2.0)) << "exactly the spacing: inserted";
}

TEST(map_path, keeps_ten_thousand_points_and_the_last_ten_offers) {
  map_path_t p;
  for (int i = 0; i < 10000; ++i) p.add_point(north(20.0 * i).latitude, 0, 1.0);
  const auto evicted = p.add_point(north(20.0 * 10000).latitude, 0, 1.0);
  ASSERT_TRUE(evicted);
  EXPECT_EQ(evicted->latitude, 0.0);
  EXPECT_EQ(p.list().size(), 10000u);
  EXPECT_DOUBLE_EQ(p.list()[0].latitude, north(20.0 * 10000).latitude);
  ASSERT_EQ(p.history().size(), 10u);
  EXPECT_EQ(p.history()[0], p.list()[0]);
  EXPECT_EQ(p.history()[9], p.list()[9]);
  p.clear();
  EXPECT_TRUE(p.list().empty());
  EXPECT_TRUE(p.history().empty());
}

TEST(flat_distance, uses_the_equatorial_longitude_scale_everywhere) {
  // At 60 degrees a true east-west step of 50 m counts as about 100 m.
  const double step = 50.0 / (meters_per_lon * 0.5);
  EXPECT_NEAR(flat_distance({60, 0}, {60, step}), 100.0, 1e-6);
}

TEST(gps_heading, counts_on_over_whole_turns) {
  gps_heading_t::reset_process_values();
  gps_heading_t h;
  std::vector<double> out;
  for (const double t : {100, 100, 190, 280, 10, 100, 190, 280, 10}) {
    h.update(t);
    out.push_back(h.heading);
  }
  EXPECT_EQ(out, (std::vector<double>{100, 100, 190, 280, 370, 460, 550, 640, 730}));
  gps_heading_t::reset_process_values();
}

}  // namespace

#include <gtest/gtest.h>

#include "map/annotations.h"
#include "map/map_path.h"

namespace {

// A coordinate d metres north of the origin.
geo_coordinate_t north(double d) { return {d / meters_per_lat, 0.0}; }

annotation_ref_t marker(geo_coordinate_t c) {
  annotation_ref_t spare;
  return make_annotation("m", c, spare);
}

TEST(annotations, the_first_two_offers_are_inserted_whatever_their_distance) {
  annotations_t a;
  EXPECT_EQ(a.add_annotation(marker(north(0))), nullptr);
  EXPECT_EQ(a.add_annotation(marker(north(1))), nullptr);
  EXPECT_EQ(a.list().size(), 2u);
}

TEST(annotations, spacing_is_measured_from_the_newest_fixed_entry) {
  annotations_t a;
  a.add_annotation(marker(north(0)));
  const auto far_head = marker(north(500));
  a.add_annotation(far_head);  // list: [500, 0]
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
  annotation_ref_t held = second;
  spare = second;
  auto third = make_annotation("x", north(2), spare);
  EXPECT_NE(third.get(), storage) << "a marker someone holds is never changed";
  EXPECT_EQ(held->title, "12:00:01");
}

TEST(map_path, spacing_grows_with_the_hdop) {
  const struct {
    double hdop, spacing;
  } cases[] = {{0.5, 3.5}, {0.7, 3.5}, {1.0, 5.0}, {1.9, 9.5}, {2.0, 10.0}, {50.0, 10.0}};
  for (const auto& c : cases) EXPECT_DOUBLE_EQ(map_path_t::spacing(c.hdop), c.spacing) << c.hdop;

  for (const auto& c : cases) {
    map_path_t p;
    p.add_point(0, 0, c.hdop);
    p.add_point(north(50).latitude, 0, c.hdop);
    EXPECT_TRUE(p.add_point(north(c.spacing - 0.01).latitude, 0, c.hdop)) << "overwrites the head";
    EXPECT_FALSE(p.add_point(north(c.spacing + 0.01).latitude, 0, c.hdop)) << "inserted";
    EXPECT_EQ(p.list().size(), 3u);
  }
}

TEST(map_path, history_keeps_the_last_ten_offers_newest_first) {
  map_path_t p;
  for (int i = 0; i < 11; ++i) p.add_point(i, 0, 1.0);
  ASSERT_EQ(p.history().size(), 10u);
  EXPECT_EQ(p.history()[0].latitude, 10);
  EXPECT_EQ(p.history()[9].latitude, 1);
  p.clear();
  EXPECT_TRUE(p.list().empty());
  EXPECT_TRUE(p.history().empty());
}

TEST(map_path, holds_at_most_ten_thousand_points) {
  map_path_t p;
  for (int i = 0; i < 10000; ++i) p.add_point(north(20.0 * i).latitude, 0, 1.0);
  const auto evicted = p.add_point(north(20.0 * 10000).latitude, 0, 1.0);
  ASSERT_TRUE(evicted);
  EXPECT_EQ(evicted->latitude, 0.0);
  EXPECT_EQ(p.list().size(), 10000u);
  EXPECT_DOUBLE_EQ(p.list()[0].latitude, north(20.0 * 10000).latitude);
}

TEST(flat_distance, uses_the_equatorial_longitude_scale_everywhere) {
  // At 60 degrees a true east-west step of 50 m counts as about 100 m.
  const double step = 50.0 / (meters_per_lon * 0.5);
  EXPECT_NEAR(flat_distance({60, 0}, {60, step}), 100.0, 1e-6);
}

}  // namespace

#include <gtest/gtest.h>

#include <tuple>

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

TEST(annotations, spacing_is_measured_from_the_newest_fixed_entry_and_the_201st_evicts_the_oldest) {
  annotations_t a;
  const auto oldest = marker(north(0));
  EXPECT_EQ(a.add_annotation(oldest), nullptr);
  const auto far_head = marker(north(500));
  EXPECT_EQ(a.add_annotation(far_head), nullptr) << "the first two are inserted whatever their distance";
  const auto near = marker(north(99.9));
  EXPECT_EQ(a.add_annotation(near), far_head) << "within 100 m of list[1]: overwrites the head, returns the old one";
  EXPECT_EQ(std::tuple(a.list()[0], a.list().size()), std::tuple(near, 2u));
  EXPECT_EQ(a.add_annotation(marker(north(100.0))), nullptr) << "exactly 100 m: inserted";
  for (int i = 3; i < 200; ++i) a.add_annotation(marker(north(150.0 * i)));
  EXPECT_EQ(a.list().size(), 200u);
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
  EXPECT_EQ(std::tuple(second.get(), second->title, second->subtitle, second->coordinate),
            std::tuple(storage, "12:00:01", "12:00:01", north(1)));
  spare = second;
  auto third = make_annotation("x", north(2), spare);
  EXPECT_NE(third.get(), storage) << "a marker someone holds is never changed";
  EXPECT_EQ(std::tuple(second->title, spare), std::tuple("12:00:01", nullptr)) << "the spare is given up either way";
}

TEST(map_path, spacing_grows_with_the_hdop) {
  // The HDOP and the spacing it asks for, in metres.
  const std::pair<double, double> cases[] = {{0.5, 3.5}, {0.7, 3.5}, {1.0, 5.0}, {1.9, 9.5}, {2.0, 10.0}, {50.0, 10.0}};
  for (const auto& [hdop, spacing] : cases) {
    map_path_t p;
    p.add_point(0, 0, hdop);
    p.add_point(north(50).latitude, 0, hdop);
    const auto inside = north(spacing - 0.01).latitude;
    EXPECT_EQ(p.add_point(inside, 0, hdop), north(50)) << "overwrites the head and returns it";
    EXPECT_EQ(p.list()[0], (geo_coordinate_t{inside, 0}));
    EXPECT_FALSE(p.add_point(north(spacing + 0.01).latitude, 0, hdop)) << "inserted";
    EXPECT_EQ(p.list().size(), 3u);
    EXPECT_TRUE(p.add_point(north(1.5 * spacing).latitude, 0, hdop)) << "measured from list[1], not list[2]";
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
  EXPECT_EQ(std::tuple(evicted->latitude, p.list().size(), p.history().size()), std::tuple(0.0, 10000u, 10u));
  EXPECT_DOUBLE_EQ(p.list()[0].latitude, north(20.0 * 10000).latitude);
  EXPECT_EQ(std::tuple(p.history()[0], p.history()[9]), std::tuple(p.list()[0], p.list()[9]));
  p.clear();
  EXPECT_TRUE(p.list().empty() && p.history().empty());
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

#include "map/projected_track.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <optional>
#include <vector>

namespace {

// n points 10 m apart going north, newest first, the newest at k * 10 m.
std::vector<geo_coordinate_t> track(int newest, int n) {
  std::vector<geo_coordinate_t> t;
  for (int k = newest; k > newest - n; --k) t.push_back({48.0 + k * 10.0 / meters_per_lat, 11.0});
  return t;
}

TEST(projected_track, a_change_is_found_only_where_the_newer_track_grew_from_the_older) {
  const auto older = track(0, 100);
  auto moved_head = older;
  moved_head[0].longitude += 1e-5;
  auto two_new_one_moved = track(2, 2);
  two_new_one_moved.insert(two_new_one_moved.end(), older.begin() + 1, older.end() - 3);
  auto middle_changed = older;
  middle_changed[50].latitude += 1e-5;
  const std::vector<geo_coordinate_t> none;
  const struct {
    const char* what;
    std::vector<geo_coordinate_t> newer;
    std::optional<track_change_t> change;
  } cases[] = {
      {"the same", older, track_change_t{0, 0, 100}},
      {"one new point", track(1, 101), track_change_t{1, 0, 100}},
      {"the head moved", moved_head, track_change_t{1, 1, 99}},
      {"the oldest dropped", track(1, 100), track_change_t{1, 0, 99}},
      {"two new, head moved, three dropped", two_new_one_moved, track_change_t{2, 1, 96}},
      {"eight new", track(8, 108), track_change_t{8, 0, 100}},
      {"nine new: drawn anew", track(9, 109), std::nullopt},
      {"a point in the middle changed", middle_changed, std::nullopt},
      {"empty", none, std::nullopt},
  };
  for (const auto& c : cases) EXPECT_EQ(track_change(c.newer, older), c.change) << c.what;
  EXPECT_EQ(track_change(older, none), std::nullopt);
}

TEST(projected_track, a_grown_track_has_the_points_and_runs_of_one_projected_anew) {
  const auto older = track(0, 300);
  const projected_track_t before(older);
  auto newer = track(3, 2);
  newer.insert(newer.end(), older.begin() + 1, older.end() - 5);
  const auto change = track_change(newer, older);
  ASSERT_TRUE(change);
  const projected_track_t grown(newer, before, *change);
  const projected_track_t anew(newer);
  EXPECT_TRUE(std::equal(grown.points().begin(), grown.points().end(), anew.points().begin(), anew.points().end(),
                         [](map_point_t a, map_point_t b) { return a.x == b.x && a.y == b.y; }));
  EXPECT_EQ(grown.runs().size(), anew.runs().size());
  EXPECT_TRUE(grown.whole());
  newer.front().latitude = NAN;
  EXPECT_FALSE(projected_track_t(newer, before, *change).whole()) << "a new point that cannot be placed";
}

TEST(projected_track, runs_bound_their_points_with_the_one_they_share_with_the_next) {
  for (const int n : {0, 1, 2, 33, 34, 65, 200}) {
    const projected_track_t t(track(0, n));
    const std::size_t size = t.points().size();
    const std::size_t runs = size < 2 ? 0 : (size - 2) / projected_track_t::run_points + 1;
    ASSERT_EQ(t.runs().size(), runs) << n;
    for (std::size_t i = 0; runs > 0 && i < size; ++i) {
      // Every point lies in its run, and a run's first point in the run before too.
      const std::size_t r = std::min(i / projected_track_t::run_points, runs - 1);
      const map_rect_t dot{t.points()[i].x, t.points()[i].y, 0, 0};
      const bool shared = r > 0 && i == r * projected_track_t::run_points;
      EXPECT_TRUE(overlaps(t.runs()[r], dot) && (!shared || overlaps(t.runs()[r - 1], dot))) << n << ": " << i;
    }
  }
  auto gap = track(0, 3);
  gap[1].latitude = NAN;
  EXPECT_TRUE(projected_track_t(gap).points().size() == 2 && !projected_track_t(gap).whole());
}

}  // namespace

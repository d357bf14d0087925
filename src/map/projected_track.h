#pragma once

#include <cstddef>
#include <optional>
#include <vector>

#include "map/geo.h"
#include "map/map_widget_api.h"

// How a newer track (newest first) grew from an older one: `added` new points, then the older
// track's points from index `replaced` on, `kept` of them. The older's first `replaced` points
// (a head that moved) and its points after the kept ones (the oldest, dropped) are gone.
struct track_change_t {
  std::size_t added = 0;
  std::size_t replaced = 0;
  std::size_t kept = 0;
  bool operator==(const track_change_t&) const = default;
};

// The change from older to newer when newer is older with at most max_added points put before a
// head that moved at most max_replaced times, perhaps less its oldest points; nothing otherwise.
std::optional<track_change_t> track_change(const std::vector<geo_coordinate_t>& newer,
                                           const std::vector<geo_coordinate_t>& older);

// A track's coordinates as map points, with the bounds of each run of run_points segments so that
// a repaint of a small area walks only the runs that reach it. A track that grew from an older
// one takes the older's map points instead of projecting them again: at 10 fixes a second only
// the new head is projected, however long the track.
class projected_track_t {
public:
  static constexpr std::size_t run_points = 32;   // segments per run
  static constexpr std::size_t max_added = 8;     // new points before the shared ones
  static constexpr std::size_t max_replaced = 2;  // moved heads

  projected_track_t() = default;
  // Every placeable coordinate projected; the others are skipped.
  explicit projected_track_t(const std::vector<geo_coordinate_t>& coordinates);
  // The newer track, from the older's projection where change says so. change must describe
  // coordinates against the older's coordinates, and the older must be whole().
  projected_track_t(const std::vector<geo_coordinate_t>& coordinates, const projected_track_t& older,
                    const track_change_t& change);

  const std::vector<map_point_t>& points() const { return points_; }
  // Bounds of points [r * run_points, (r + 1) * run_points], the last point shared with the next run.
  const std::vector<map_rect_t>& runs() const { return runs_; }
  // Every coordinate was placeable: points()[i] is the map point of coordinate i.
  bool whole() const { return whole_; }

private:
  void bound_runs();

  std::vector<map_point_t> points_;
  std::vector<map_rect_t> runs_;
  bool whole_ = true;
};

// True when the rectangles share any point, edges included.
bool overlaps(const map_rect_t& a, const map_rect_t& b);

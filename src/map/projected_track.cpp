#include "map/projected_track.h"

#include <algorithm>
#include <cmath>

namespace {

bool placeable(geo_coordinate_t c) {
  return std::isfinite(c.latitude) && std::isfinite(c.longitude);
}

}  // namespace

std::optional<track_change_t> track_change(const std::vector<geo_coordinate_t>& newer,
                                           const std::vector<geo_coordinate_t>& older) {
  for (std::size_t added = 0; added <= projected_track_t::max_added && added < newer.size(); ++added) {
    const std::size_t kept = newer.size() - added;
    for (std::size_t replaced = 0; replaced <= projected_track_t::max_replaced; ++replaced) {
      if (replaced + kept > older.size()) break;
      if (newer[added] == older[replaced] && newer.back() == older[replaced + kept - 1] &&
          std::equal(newer.begin() + static_cast<std::ptrdiff_t>(added), newer.end(),
                     older.begin() + static_cast<std::ptrdiff_t>(replaced)))
        return track_change_t{added, replaced, kept};
    }
  }
  return std::nullopt;
}

projected_track_t::projected_track_t(const std::vector<geo_coordinate_t>& coordinates) {
  points_.reserve(coordinates.size());
  for (const auto& c : coordinates) {
    if (placeable(c))
      points_.push_back(map_point_for(c));
    else
      whole_ = false;
  }
  bound_runs();
}

projected_track_t::projected_track_t(const std::vector<geo_coordinate_t>& coordinates, const projected_track_t& older,
                                     const track_change_t& change) {
  points_.reserve(change.added + change.kept);
  for (std::size_t i = 0; i < change.added; ++i) {
    if (placeable(coordinates[i]))
      points_.push_back(map_point_for(coordinates[i]));
    else
      whole_ = false;
  }
  const auto first = older.points_.begin() + static_cast<std::ptrdiff_t>(change.replaced);
  points_.insert(points_.end(), first, first + static_cast<std::ptrdiff_t>(change.kept));
  bound_runs();
}

void projected_track_t::bound_runs() {
  runs_.clear();
  if (points_.size() < 2) return;
  runs_.reserve((points_.size() - 2) / run_points + 1);
  for (std::size_t first = 0; first + 1 < points_.size(); first += run_points) {
    const std::size_t end = std::min(first + run_points + 1, points_.size());
    double x0 = points_[first].x, x1 = x0, y0 = points_[first].y, y1 = y0;
    for (std::size_t i = first + 1; i < end; ++i) {
      x0 = std::min(x0, points_[i].x);
      x1 = std::max(x1, points_[i].x);
      y0 = std::min(y0, points_[i].y);
      y1 = std::max(y1, points_[i].y);
    }
    runs_.push_back({x0, y0, x1 - x0, y1 - y0});
  }
}

bool overlaps(const map_rect_t& a, const map_rect_t& b) {
  return a.x <= b.x + b.width && b.x <= a.x + a.width && a.y <= b.y + b.height && b.y <= a.y + a.height;
}

#include "map/map_path.h"

namespace {

// The spacing a new fixed point needs from the newest fixed one at this HDOP.
double spacing(double hdop) {
  if (hdop >= 2.0) return map_path_t::max_spacing;
  if (hdop >= 0.7) return map_path_t::add_distance * hdop;
  return map_path_t::min_spacing;
}

}  // namespace

std::optional<geo_coordinate_t> map_path_t::add_point(double latitude, double longitude, double hdop) {
  const geo_coordinate_t c{latitude, longitude};
  history_.push_front(c);
  if (history_.size() > history_length) history_.pop_back();

  if (list_.size() >= 2 && flat_distance(list_[1], c) < spacing(hdop)) {
    const auto old_head = list_[0];
    list_[0] = c;
    return old_head;
  }
  list_.push_front(c);
  if (list_.size() > limit) return list_.pop_back();
  return std::nullopt;
}

void map_path_t::clear() {
  list_.clear();
  history_.clear();
}

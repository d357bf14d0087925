#include "map/map_view.h"

#include <algorithm>
#include <cmath>
#include <memory>
#include <vector>

namespace {

bool placeable(geo_coordinate_t c) {
  return std::isfinite(c.latitude) && std::isfinite(c.longitude);
}

}  // namespace

map_view_t::map_view_t(map_cfg_t& cfg, map_widget_api_t& view, main_queue_t& queue)
    : cfg_(cfg), view_(view), queue_(queue), date_overlay_(queue.now_s()), date_region_(queue.now_s()) {}

void map_view_t::region_will_change(bool) {
  lock_region_ = true;
  date_region_ = queue_.now_s() + delay_region_update;
}

void map_view_t::region_did_change(bool) {
  queue_.post([this] {
    lock_region_ = false;
    cfg_.notify();
  });
}

void map_view_t::make(std::optional<geo_coordinate_t> device_location) {
  view_.set_delegate(this);
  view_.set_shows_compass(true);
  view_.set_shows_scale(true);
  view_.set_follows_heading(true);
  if (device_location && placeable(*device_location)) view_.set_region(*device_location, distance, distance, true);
  view_.set_camera_min_distance(camera_min_distance);
  view_.set_shows_user_location(false);
}

void map_view_t::update(const geo_coordinate_t& position, const ring_t<geo_coordinate_t>& track,
                        const annotation_ref_t& marker) {
  if (lock_region_) return;

  if (cfg_.reset) {
    queue_.post([&cfg = cfg_] { cfg.reset = false; });
    view_.remove_annotations(view_.annotations());
    view_.remove_overlays(view_.overlays());
    annotations_.clear();
  }

  if (mode_old_ != cfg_.mode_sat) {
    mode_old_ = cfg_.mode_sat;
    view_.set_map_type(cfg_.mode_sat ? map_type_t::hybrid_flyover : map_type_t::standard);
  }

  // No position yet (or one a map cannot place): nothing is placed, drawn or marked.
  if (position.latitude == 0.0 || position.longitude == 0.0 || !placeable(position)) return;

  const double now = queue_.now_s();
  if (!cfg_.region_set) {
    queue_.post([&cfg = cfg_] { cfg.region_set = true; });
    date_region_ = now + delay_region_first;
    date_overlay_ = now + delay_overlay;
    view_.set_region(position, distance, distance, view_.in_window());
  } else if (date_region_ < now) {
    const auto p = map_point_for(position);
    const auto r = view_.visible_map_rect();
    const auto inner = r.inset(0.125 * std::min(r.width, r.height));
    if (!inner.contains(p)) {
      date_region_ = now + delay_region_update;
      date_overlay_ = now + delay_overlay;
      const auto outer = r.inset(-8.0 * std::max(r.width, r.height));
      view_.set_centre(position, outer.contains(p));  // a far jump is not animated
    }
  }

  if (date_overlay_ < now) {
    date_overlay_ = now + delay_overlay;
    draw_overlays(position, track);
  }
  show_marker(marker);
}

// The position dot keeps the same size on screen at every zoom level: not an accuracy circle.
// The new overlays go in before the old ones leave, so the map never shows none.
void map_view_t::draw_overlays(const geo_coordinate_t& position, const ring_t<geo_coordinate_t>& track) {
  double f = std::min(view_.frame_width(), view_.frame_height());
  if (f == 0.0) f = default_frame;
  const auto r = view_.visible_map_rect();
  auto circle = std::make_shared<map_overlay_t>();
  circle->kind = map_overlay_t::kind_t::circle;
  circle->centre = position;
  circle->radius_m = std::min(r.width, r.height) * pi_2 / f;
  std::vector<overlay_ref_t> fresh = {circle};
  if (!track.empty()) {
    auto line = std::make_shared<map_overlay_t>();
    line->kind = map_overlay_t::kind_t::polyline;
    line->points.reserve(track.size());
    for (std::size_t i = 0; i < track.size(); ++i)
      if (placeable(track[i])) line->points.push_back(track[i]);
    fresh.push_back(line);
  }
  const auto old = view_.overlays();
  view_.add_overlays(fresh);
  if (!old.empty()) view_.remove_overlays(old);
}

// The head of the list is never shown: the position dot stands in for it. When the list is full,
// the evicted oldest marker leaves and the marker that has just become fixed is shown too.
void map_view_t::show_marker(const annotation_ref_t& marker) {
  const auto previous_head = annotations_.list().empty() ? nullptr : annotations_.list()[0];
  const auto dropped = annotations_.add_annotation(marker);
  if (dropped) view_.remove_annotation(dropped);
  const bool evicted = dropped && dropped != previous_head;
  if ((!dropped || evicted) && annotations_.list().size() >= 2) view_.add_annotation(annotations_.list()[1]);
}

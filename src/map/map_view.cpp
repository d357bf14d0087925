#include "map/map_view.h"

#include <algorithm>
#include <cmath>
#include <iterator>

namespace {

bool placeable(geo_coordinate_t c) { return std::isfinite(c.latitude) && std::isfinite(c.longitude); }

}  // namespace

map_cfg_t::map_cfg_t(map_widget_api_t& view, main_queue_t& queue)
    : view(view), date_overlay(queue.now_s()), date_region(queue.now_s()), queue(queue) {}

void map_coordinator_t::region_will_change(bool) {
  cfg_.lock_region = true;
  cfg_.date_region = cfg_.queue.now_s() + map_cfg_t::delay_region_update;
}

void map_coordinator_t::region_did_change(bool) {
  cfg_.queue.post([&cfg = cfg_] {
    cfg.lock_region = false;
    cfg.notify();
  });
}

map_widget_api_t& map_view_t::make(map_coordinator_t& coordinator, std::optional<geo_coordinate_t> device_location) const {
  auto& view = map_cfg.view;
  view.set_delegate(&coordinator);
  view.set_shows_compass(true);
  view.set_shows_scale(true);
  view.set_follows_heading(true);
  if (device_location && placeable(*device_location)) view.set_region(*device_location, distance, distance, true);
  view.set_camera_min_distance(camera_min_distance);
  view.set_shows_user_location(false);
  return view;
}

void map_view_t::update() const {
  auto& cfg = map_cfg;
  auto& view = cfg.view;
  if (cfg.lock_region) return;

  if (cfg.reset) {
    cfg.queue.post([&cfg] { cfg.reset = false; });
    view.remove_annotations(view.annotations());
    view.remove_overlays(view.overlays());
    annotations.clear();
  }

  if (cfg.mode_old != cfg.mode_sat) {
    cfg.mode_old = cfg.mode_sat;
    view.set_map_type(cfg.mode_sat ? map_type_t::hybrid_flyover : map_type_t::standard);
  }

  // No position yet (or one a map cannot place): nothing is placed, drawn or marked.
  if (!annotation || annotation->coordinate.latitude == 0.0 || annotation->coordinate.longitude == 0.0) return;
  if (!placeable(annotation->coordinate) || !placeable(current_point)) return;

  const double now = cfg.queue.now_s();
  if (!cfg.region_set) {
    cfg.queue.post([&cfg] { cfg.region_set = true; });
    cfg.date_region = now + map_cfg_t::delay_region_first;
    cfg.date_overlay = now + map_cfg_t::delay_overlay;
    view.set_region(current_point, distance, distance, view.in_window());
  } else if (cfg.date_region < now) {
    const auto p = map_point_for(current_point);
    const auto r = view.visible_map_rect();
    const auto inner = r.inset(0.125 * std::min(r.width, r.height));
    if (!inner.contains(p)) {
      cfg.date_region = now + map_cfg_t::delay_region_update;
      cfg.date_overlay = now + map_cfg_t::delay_overlay;
      const auto outer = r.inset(-8.0 * std::max(r.width, r.height));
      view.set_centre(current_point, outer.contains(p));  // a far jump is not animated
    }
  }

  if (cfg.date_overlay < now) {
    double f = std::min(view.frame_width(), view.frame_height());
    if (f == 0.0) f = default_frame;
    const auto r = view.visible_map_rect();
    const double m = std::min(r.width, r.height);
    // The same size on screen at every zoom level: a position dot, not an accuracy circle.
    auto circle = std::make_shared<map_overlay_t>();
    circle->kind = map_overlay_t::kind_t::circle;
    circle->centre = current_point;
    circle->radius_m = m * pi_2 / f;
    auto line = std::make_shared<map_overlay_t>();
    line->kind = map_overlay_t::kind_t::polyline;
    line->points.reserve(path.size());
    std::copy_if(path.begin(), path.end(), std::back_inserter(line->points), placeable);
    cfg.ui_overlays = {circle, line};
    cfg.date_overlay = now + map_cfg_t::delay_overlay;

    std::vector<overlay_ref_t> fresh = {circle};
    if (!path.empty()) fresh.push_back(line);
    const auto old = view.overlays();
    view.add_overlays(fresh);  // new ones first, so the map never shows none
    if (!old.empty()) view.remove_overlays(old);
  }

  // The head of the list is never shown: the position circle stands in for it. When the list is
  // full, the evicted oldest marker leaves and the marker that has just become fixed is shown too.
  const auto previous_head = annotations.list().empty() ? nullptr : annotations.list()[0];
  const auto dropped = annotations.add_annotation(annotation);
  if (dropped) view.remove_annotation(dropped);
  const bool evicted = dropped && dropped != previous_head;
  if ((!dropped || evicted) && annotations.list().size() >= 2) view.add_annotation(annotations.list()[1]);
}

#include "map/annotations.h"

annotation_ref_t make_annotation(std::string_view text, geo_coordinate_t coordinate, annotation_ref_t& spare) {
  annotation_ref_t a;
  if (spare && spare.use_count() == 1) {
    a = std::move(spare);
  } else {
    a = std::make_shared<point_annotation_t>();
  }
  spare.reset();
  a->title.assign(text);
  a->subtitle.assign(text);
  a->coordinate = coordinate;
  return a;
}

annotation_ref_t annotations_t::add_annotation(annotation_ref_t a) {
  if (list_.size() >= 2 && flat_distance(list_[1]->coordinate, a->coordinate) < add_distance) {
    std::swap(list_[0], a);
    return a;
  }
  list_.push_front(std::move(a));
  if (list_.size() > limit) return list_.pop_back();
  return nullptr;
}

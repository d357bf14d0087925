#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>

#include "core/ring.h"
#include "map/geo.h"

// A map marker. Lists hold it by reference: a marker that a list drops is removed from the map as
// that same object.
struct point_annotation_t {
  std::string title;
  std::string subtitle;
  geo_coordinate_t coordinate;
};
using annotation_ref_t = std::shared_ptr<point_annotation_t>;

// A new marker titled (and subtitled) with the text at the coordinate. A spare marker that nobody
// else holds any more is reused, so a decoder that only moves its head marker allocates nothing.
annotation_ref_t make_annotation(std::string_view text, geo_coordinate_t coordinate, annotation_ref_t& spare);

// Markers about 100 m apart, at most 200, newest first. The head follows the receiver; a new fixed
// entry is left behind once the receiver is 100 m from the newest fixed one.
class annotations_t {
public:
  static constexpr double add_distance = 100.0;  // m, spacing of the fixed entries
  static constexpr std::size_t limit = 200;      // entries

  annotations_t() : list_(limit + 1) {}

  // Offers a marker; returns the one that left the list (the overwritten head or the evicted
  // oldest entry), or null.
  annotation_ref_t add_annotation(annotation_ref_t a);
  void clear() { list_.clear(); }

  const ring_t<annotation_ref_t>& list() const { return list_; }

private:
  ring_t<annotation_ref_t> list_;
};

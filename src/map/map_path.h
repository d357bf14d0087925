#pragma once

#include <cstddef>
#include <optional>

#include "core/ring.h"
#include "map/geo.h"

// The track: positions thinned by a spacing that grows with the HDOP, at most 10 000, newest
// first; and the last 10 positions offered, unthinned.
class map_path_t {
public:
  static constexpr double add_distance = 5.0;        // m of spacing per unit of HDOP
  static constexpr double min_spacing = 3.5;         // m, for an HDOP below 0.7
  static constexpr double max_spacing = 10.0;        // m, for an HDOP of 2.0 and more
  static constexpr std::size_t limit = 10000;        // track points
  static constexpr std::size_t history_length = 10;  // raw positions

  map_path_t() : list_(limit + 1), history_(history_length + 1) {}

  // Offers a position; returns the coordinate that left the list (the overwritten head or the
  // evicted oldest point), or nothing.
  std::optional<geo_coordinate_t> add_point(double latitude, double longitude, double hdop);
  void clear();

  const ring_t<geo_coordinate_t>& list() const { return list_; }
  const ring_t<geo_coordinate_t>& history() const { return history_; }

private:
  ring_t<geo_coordinate_t> list_;
  ring_t<geo_coordinate_t> history_;
};

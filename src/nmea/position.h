#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string_view>

#include "map/geo.h"

// The position step that the GGA, GLL and RMC decoders share, from a sentence and from a record.

// A position as a sentence gives it: two magnitudes and their hemisphere letters.
struct sentence_position_t {
  double lat = 0.0;  // degrees, a magnitude
  double lon = 0.0;  // degrees, a magnitude
  std::string_view lat_dir;
  std::string_view lon_dir;
  bool given = false;  // both coordinate fields hold text; an empty one reads as 0 and fixes nothing

  // The position as a map places it: negative in the south and the west.
  geo_coordinate_t map_coordinate() const;
};

// Reads the four fields "ddmm.mmmm,N,dddmm.mmmm,E". A letter field that is not one of its two
// letters keeps the current letter. Nothing when a coordinate is unreadable or beyond 90 (180)
// degrees.
std::optional<sentence_position_t> read_position(std::span<const std::string_view> fields, std::string_view lat_dir,
                                                 std::string_view lon_dir);

// Stores a sentence's position in a decoder's lat, lon and letters.
template <class Decoder>
void store_position(Decoder& decoder, const sentence_position_t& p) {
  decoder.lat_dir = p.lat_dir;
  decoder.lon_dir = p.lon_dir;
  decoder.lat = p.lat;
  decoder.lon = p.lon;
}

// A record's position (1e-7 degree) in signed degrees; nothing when its latitude or its longitude
// is 0, as a receiver without a fix reports them.
std::optional<geo_coordinate_t> record_position(std::int32_t lat, std::int32_t lon);

// Stores a record's position in a decoder's lat and lon, signed as it stands; the letters stay.
template <class Decoder>
void store_position(Decoder& decoder, geo_coordinate_t c) {
  decoder.lat = c.latitude;
  decoder.lon = c.longitude;
}

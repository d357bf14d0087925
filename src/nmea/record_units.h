#pragma once

#include <cstdint>

// The scales the decoders apply to UBX record fields.

inline constexpr double mm_per_s_per_knot = 514.444444;  // ground speed, mm/s to knots
inline constexpr double kph_per_mm_per_s = 0.0036;       // ground speed, mm/s to km/h
inline constexpr std::uint16_t pdop_no_marker = 9999;    // 0.01 units: from a position DOP of 99.99 no marker

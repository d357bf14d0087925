#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

class gps_gngga_t;

// How far the receiver's solution uses corrections.
enum class rtk_mode_t { none, dgnss, float_rtk, fixed };

// From the last fix: a GGA quality (2 DGNSS, 5 float, 4 fixed) or, after a NAV-PVT record, its
// flags (bit 1 differential, bits 6-7 the carrier solution: 1 float, 2 fixed).
rtk_mode_t rtk_mode(const gps_gngga_t& gga, std::uint8_t pvt_flags);
std::string_view rtk_text(rtk_mode_t mode);

// The receiver's position as a GGA sentence for a caster that places a network's virtual base
// near it; nothing until the receiver has a fix.
std::optional<std::string> upstream_gga(const gps_gngga_t& gga);

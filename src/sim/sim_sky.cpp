#include "sim/sim_sky.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <numbers>

namespace {

constexpr int used_elevation_min = 15;  // degrees: lower satellites stay out of the fix

// What each system brings to the simulated sky.
struct constellation_t {
  gnss_system_t system;
  std::string_view name;  // as --gnss lists it
  int satellites;
  int first_number;
  int number_step;
  gnss_signal_t second_band;  // NMEA signal id of the band every third satellite adds
};
constexpr constellation_t constellations[] = {
    {gnss_system_t::gps, "gps", 10, 2, 3, 8},      // L5 Q
    {gnss_system_t::glonass, "glo", 8, 65, 3, 3},  // L2 OF
    {gnss_system_t::galileo, "gal", 8, 1, 4, 1},   // E5a
    {gnss_system_t::beidou, "bds", 8, 6, 5, 5},    // B2a
    {gnss_system_t::qzss, "qzss", 2, 2, 2, 5},     // L2 CM
};

}  // namespace

std::optional<gnss_system_set_t> parse_gnss_list(std::string_view list) {
  gnss_system_set_t systems = 0;
  for (;;) {
    const auto comma = list.find(',');
    const auto name = list.substr(0, comma);
    const auto* c = std::find_if(std::begin(constellations), std::end(constellations),
                                 [name](const constellation_t& c) { return c.name == name; });
    if (c == std::end(constellations)) return std::nullopt;
    systems |= bit_of(c->system);
    if (comma == std::string_view::npos) return systems;
    list = list.substr(comma + 1);
  }
}

// Each satellite rises and sets slowly on a phase of its own, its C/N0 following its elevation.
std::vector<sim_satellite_t> sim_sky(gnss_system_set_t systems, double t) {
  std::vector<sim_satellite_t> sky;
  for (std::size_t k = 0; k < std::size(constellations); ++k) {
    const auto& c = constellations[k];
    if ((systems & bit_of(c.system)) == 0) continue;
    for (int i = 0; i < c.satellites; ++i) {
      const double phase = i * 1.1 + static_cast<double>(k) * 0.7 + t / 900.0;
      sim_satellite_t s;
      s.system = c.system;
      s.number = c.first_number + c.number_step * i;
      // Up and down at an even pace, so that the sky is evenly filled from the horizon up.
      const double height = std::fabs(std::fmod(phase / std::numbers::pi, 2.0) - 1.0);
      s.elevation = static_cast<int>(5 + 80 * height);
      s.azimuth =
          static_cast<int>(std::fmod(i * 360.0 / c.satellites + static_cast<double>(k) * 23.0 + t / 20.0, 360.0));
      s.used = s.elevation >= used_elevation_min;
      const int cn0_of_elevation = s.elevation / 3;  // whole dB-Hz
      const int cn0 = static_cast<int>(20 + cn0_of_elevation + 5 * std::sin(t / 7.0 + i + static_cast<double>(k)));
      s.bands.push_back({primary_signal(c.system), cn0});
      if (i % 3 == 0) s.bands.push_back({c.second_band, cn0 - 4});
      sky.push_back(std::move(s));
    }
  }
  return sky;
}

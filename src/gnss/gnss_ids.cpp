#include "gnss/gnss_ids.h"

#include <iterator>

namespace {

constexpr std::uint8_t no_ubx_id = 0xFF;

// One row per band, or per UBX signal where UBX splits a band into components (Galileo E1 B and
// C are one band). The one table for both ways of naming a signal.
struct signal_row_t {
  gnss_system_t system;
  gnss_signal_t nmea_id;
  std::uint8_t ubx_id;
  std::string_view name;
};

using S = gnss_system_t;
constexpr signal_row_t signal_rows[] = {
    {S::gps, 1, 0, "L1 C/A"},
    {S::gps, 2, no_ubx_id, "L1 P(Y)"},
    {S::gps, 3, no_ubx_id, "L1 M"},
    {S::gps, 4, no_ubx_id, "L2 P(Y)"},
    {S::gps, 5, 4, "L2 CM"},
    {S::gps, 6, 3, "L2 CL"},
    {S::gps, 7, 6, "L5 I"},
    {S::gps, 8, 7, "L5 Q"},
    {S::glonass, 1, 0, "L1 OF"},
    {S::glonass, 2, no_ubx_id, "L1 P"},
    {S::glonass, 3, 2, "L2 OF"},
    {S::glonass, 4, no_ubx_id, "L2 P"},
    {S::galileo, 1, 3, "E5a"},
    {S::galileo, 1, 4, "E5a"},
    {S::galileo, 2, 5, "E5b"},
    {S::galileo, 2, 6, "E5b"},
    {S::galileo, 3, no_ubx_id, "E5a+b"},
    {S::galileo, 4, no_ubx_id, "E6-A"},
    {S::galileo, 5, no_ubx_id, "E6-BC"},
    {S::galileo, 6, no_ubx_id, "E1-A"},
    {S::galileo, 7, 0, "E1"},
    {S::galileo, 7, 1, "E1"},
    {S::beidou, 1, 0, "B1I"},
    {S::beidou, 1, 1, "B1I"},
    {S::beidou, 2, no_ubx_id, "B1Q"},
    {S::beidou, 3, 5, "B1C"},
    {S::beidou, 4, no_ubx_id, "B1A"},
    {S::beidou, 5, 7, "B2a"},
    {S::beidou, 6, no_ubx_id, "B2b"},
    {S::beidou, 7, no_ubx_id, "B2a+b"},
    {S::beidou, 8, no_ubx_id, "B3I"},
    {S::beidou, 9, no_ubx_id, "B3Q"},
    {S::beidou, 10, no_ubx_id, "B3A"},
    {S::beidou, 11, 2, "B2I"},
    {S::beidou, 11, 3, "B2I"},
    {S::beidou, 12, no_ubx_id, "B2Q"},
    {S::qzss, 1, 0, "L1 C/A"},
    {S::qzss, 2, no_ubx_id, "L1C D"},
    {S::qzss, 3, no_ubx_id, "L1C P"},
    {S::qzss, 4, 1, "L1S"},
    {S::qzss, 5, 4, "L2 CM"},
    {S::qzss, 6, 5, "L2 CL"},
    {S::qzss, 7, 8, "L5 I"},
    {S::qzss, 8, 9, "L5 Q"},
    {S::qzss, 9, no_ubx_id, "L6D"},
    {S::qzss, 10, no_ubx_id, "L6E"},
    {S::navic, 1, 0, "L5"},
    {S::navic, 2, no_ubx_id, "S"},
    {S::navic, 3, no_ubx_id, "L5 RS"},
    {S::navic, 4, no_ubx_id, "S RS"},
    {S::navic, 5, no_ubx_id, "L1"},
    {S::sbas, 1, 0, "L1 C/A"},
    {S::sbas, 7, no_ubx_id, "L5 I"},
};

constexpr std::string_view system_names[gnss_system_count] = {"GPS",  "GLONASS", "Galileo", "BeiDou",
                                                              "QZSS", "NavIC",   "SBAS"};

}  // namespace

std::string_view system_name(gnss_system_t system) {
  return system_names[index_of(system)];
}

std::string_view signal_name(gnss_system_t system, gnss_signal_t signal) {
  for (const auto& row : signal_rows)
    if (row.system == system && row.nmea_id == signal) return row.name;
  return {};
}

std::optional<gnss_signal_t> ubx_signal(gnss_system_t system, std::uint8_t sig_id) {
  for (const auto& row : signal_rows)
    if (row.system == system && row.ubx_id == sig_id) return row.nmea_id;
  return std::nullopt;
}

std::uint8_t ubx_sig_id(gnss_system_t system, gnss_signal_t signal) {
  for (const auto& row : signal_rows)
    if (row.system == system && row.nmea_id == signal && row.ubx_id != no_ubx_id) return row.ubx_id;
  return no_ubx_id;
}

std::optional<gnss_system_t> talker_system(std::string_view talker) {
  if (talker == "GP") return S::gps;
  if (talker == "GL") return S::glonass;
  if (talker == "GA") return S::galileo;
  if (talker == "GB" || talker == "BD") return S::beidou;
  if (talker == "GQ") return S::qzss;
  if (talker == "GI") return S::navic;
  return std::nullopt;
}

std::optional<gnss_system_t> nmea_system(std::uint64_t system_id) {
  if (system_id < 1 || system_id > 6) return std::nullopt;
  return static_cast<gnss_system_t>(system_id - 1);
}

// UBX gnssIds in their order; IMES (4) is no satellite system.
constexpr std::optional<gnss_system_t> ubx_systems[] = {S::gps,       S::sbas, S::galileo, S::beidou,
                                                        std::nullopt, S::qzss, S::glonass, S::navic};

std::optional<gnss_system_t> ubx_system(std::uint8_t gnss_id) {
  return gnss_id < std::size(ubx_systems) ? ubx_systems[gnss_id] : std::nullopt;
}

std::uint8_t ubx_gnss_id(gnss_system_t system) {
  for (std::size_t id = 0; id < std::size(ubx_systems); ++id)
    if (ubx_systems[id] == system) return static_cast<std::uint8_t>(id);
  return no_ubx_id;
}

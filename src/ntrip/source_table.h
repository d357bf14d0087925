#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "map/geo.h"

// One mountpoint of a caster's source table (an STR line).
struct source_entry_t {
  std::string mountpoint;
  std::string identifier;  // often the place
  std::string format;      // "RTCM 3.2"
  std::string details;     // message types with rates: "1005(10),1077(1)"
  int carrier = 0;         // 0 none, 1 L1, 2 L1 and L2
  std::string systems;     // "GPS+GLO+GAL+BDS"
  std::string country;
  geo_coordinate_t position;
  bool nmea = false;                 // the mountpoint wants the receiver's position (a network, VRS)
  std::optional<double> distance_m;  // from the current fix, once known
  bool operator==(const source_entry_t&) const = default;
};

// The STR lines of a source table, in their order; other lines (CAS, NET, ENDSOURCETABLE) and STR
// lines without a mountpoint are skipped. Fields that do not read as numbers read as 0.
std::vector<source_entry_t> parse_source_table(std::string_view text);

// Sets each entry's distance from the fix and puts the nearest first; without a fix the order stays.
// Entries without a position (0, 0) go last.
void sort_by_distance(std::vector<source_entry_t>& entries, std::optional<geo_coordinate_t> fix);

// "RTCM 3.2  L1+L2  GPS+GLO  12.3 km" for a list row.
std::string entry_summary(const source_entry_t& entry);

#include "ntrip/source_table.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

#include "nmea/fields.h"
#include "ntrip/geodesy.h"

namespace {

// STR;mountpoint;identifier;format;format-details;carrier;nav-system;network;country;latitude;
// longitude;nmea;solution;generator;compression;authentication;fee;bitrate;misc
enum field_t : std::size_t {
  f_mountpoint = 1,
  f_identifier,
  f_format,
  f_details,
  f_carrier,
  f_systems,
  f_network,
  f_country,
  f_lat,
  f_lon,
  f_nmea,
  f_count
};

std::vector<std::string_view> split(std::string_view line, char separator) {
  std::vector<std::string_view> fields;
  for (;;) {
    const auto at = line.find(separator);
    fields.push_back(line.substr(0, at));
    if (at == std::string_view::npos) return fields;
    line.remove_prefix(at + 1);
  }
}

double number(std::string_view text) {
  const auto v = parse_double(text);
  return v && std::isfinite(*v) ? *v : 0.0;
}

bool has_position(const source_entry_t& e) {
  return e.position.latitude != 0.0 || e.position.longitude != 0.0;
}

}  // namespace

std::vector<source_entry_t> parse_source_table(std::string_view text) {
  std::vector<source_entry_t> entries;
  for (auto line : split(text, '\n')) {
    if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
    if (!line.starts_with("STR;")) continue;
    auto fields = split(line, ';');
    if (fields[f_mountpoint].empty()) continue;
    fields.resize(std::max<std::size_t>(fields.size(), f_count));
    source_entry_t e;
    e.mountpoint = fields[f_mountpoint];
    e.identifier = fields[f_identifier];
    e.format = fields[f_format];
    e.details = fields[f_details];
    e.carrier = static_cast<int>(parse_unsigned(fields[f_carrier], 2).value_or(0));
    e.systems = fields[f_systems];
    e.country = fields[f_country];
    e.position = {number(fields[f_lat]), number(fields[f_lon])};
    e.nmea = fields[f_nmea] == "1";
    entries.push_back(std::move(e));
  }
  return entries;
}

void sort_by_distance(std::vector<source_entry_t>& entries, std::optional<geo_coordinate_t> fix) {
  if (!fix) return;
  for (auto& e : entries) {
    e.distance_m = has_position(e) ? std::optional(surface_distance_m(*fix, e.position)) : std::nullopt;
  }
  std::stable_sort(entries.begin(), entries.end(), [](const source_entry_t& a, const source_entry_t& b) {
    if (a.distance_m.has_value() != b.distance_m.has_value()) return a.distance_m.has_value();
    return a.distance_m.value_or(0.0) < b.distance_m.value_or(0.0);
  });
}

std::string entry_summary(const source_entry_t& e) {
  static constexpr const char* carriers[] = {"no carrier", "L1", "L1+L2"};
  std::string out = e.format + "  " + carriers[std::clamp(e.carrier, 0, 2)] + "  " + e.systems;
  if (e.distance_m) {
    char km[32];
    std::snprintf(km, sizeof km, "  %.1f km", *e.distance_m / 1000.0);
    out += km;
  }
  if (e.nmea) out += "  (sends position)";
  return out;
}

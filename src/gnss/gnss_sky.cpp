#include "gnss/gnss_sky.h"

#include <algorithm>

#include "nmea/fields.h"
#include "nmea/sentence.h"

namespace {

constexpr std::size_t tag_length = 6;  // "$GPGSV"

// A whole number up to max, or nothing; the caller tells an empty field from a bad one.
std::optional<std::uint16_t> read_number(std::string_view field, std::uint16_t max) {
  const auto v = parse_unsigned(field, max);
  if (!v) return std::nullopt;
  return static_cast<std::uint16_t>(*v);
}

// A signal id is one hexadecimal digit: BeiDou's reach B2I at 0xB.
std::optional<gnss_signal_t> read_signal_id(std::string_view field) {
  if (field.size() != 1) return std::nullopt;
  const char c = field[0];
  if (c >= '0' && c <= '9') return static_cast<gnss_signal_t>(c - '0');
  if (c >= 'A' && c <= 'F') return static_cast<gnss_signal_t>(c - 'A' + 10);
  return std::nullopt;
}

void set_signal(sky_satellite_t& satellite, gnss_signal_t id, std::uint8_t cn0, double now) {
  auto& tracked = satellite.tracked;
  const auto it = std::find_if(tracked.begin(), tracked.end(), [id](const sky_signal_t& s) { return s.id == id; });
  if (cn0 == 0) {
    if (it != tracked.end()) tracked.erase(it);
  } else if (it != tracked.end()) {
    it->cn0 = cn0;
    it->time = now;
  } else {
    tracked.push_back({id, cn0, false, now});
  }
}

}  // namespace

std::uint8_t sky_satellite_t::best_cn0() const {
  std::uint8_t best = 0;
  for (const auto& s : tracked) best = std::max(best, s.cn0);
  return best;
}

void gnss_sky_t::reset() {
  satellites.modify([](table_t& table) { table.clear(); });
  dop = sky_dop_t{};
  ageing_.clear();
  gsa_run_systems_ = 0;
  sig_seen_ = false;
}

// Every sentence ends a run of GSA sentences but another GSA.
void gnss_sky_t::update(std::span<const std::string_view> f) {
  const std::string_view tag = f.empty() || f[0].size() != tag_length ? std::string_view() : f[0];
  const auto kind = tag.substr(std::min<std::size_t>(3, tag.size()));
  if (kind != "GSA") gsa_run_systems_ = 0;
  if (kind != "GSA" && kind != "GSV") return;
  const auto talker = tag.substr(1, 2);
  const auto system = talker_system(talker);
  if (!system && talker != "GN") return;
  if (kind == "GSA") {
    update_gsa(f, system);
  } else {
    update_gsv(f, system);
  }
}

sky_counts_t gnss_sky_t::counts() const {
  sky_counts_t out{};
  for (const auto& [key, satellite] : *satellites) {
    auto& c = out[index_of(key.system)];
    ++c.in_view;
    c.used += satellite.used ? 1 : 0;
    c.tracked += static_cast<unsigned>(satellite.tracked.size());
  }
  return out;
}

double gnss_sky_t::expire() {
  const double now = clock_.now_s();
  ageing_.expire(satellites, now, [](const sky_satellite_t& s) { return s.time; });
  return now;
}

sky_satellite_t& gnss_sky_t::report(table_t& table, sky_key_t key, double now) {
  auto& satellite = table[key];
  satellite.time = now;
  ageing_.reported(now);
  std::erase_if(satellite.tracked, [now](const sky_signal_t& s) { return s.time < now - satellite_valid_periode; });
  return satellite;
}

// $GAGSV,2,1,08,02,45,123,38,07,12,234,40,11,67,345,44,19,23,056,33,7*7B
//        count number in-view (number elevation azimuth C/N0) x 1 to 4 [signal id]
void gnss_sky_t::update_gsv(std::span<const std::string_view> f, std::optional<gnss_system_t> talker) {
  const std::size_t n = f.size();
  if (n < 4 || (n - 4) % 4 > 1) return;
  const auto field = [&](std::size_t i) { return i + 1 == n ? strip_checksum(f[i]) : f[i]; };

  const auto count = parse_unsigned(field(1), 9);
  if (!count || !parse_unsigned(field(2), *count) || !parse_unsigned(field(3), UINT8_MAX)) return;
  std::optional<gnss_signal_t> signal_id;
  if ((n - 4) % 4 == 1) {
    signal_id = read_signal_id(field(n - 1));
    if (!signal_id) return;
  }

  const double now = expire();
  satellites.modify([&](table_t& table) {
    for (std::size_t at = 4; at + 4 <= n; at += 4) {
      const auto number_field = field(at), elevation_field = field(at + 1), azimuth_field = field(at + 2),
                 cn0_field = field(at + 3);
      if (number_field.empty()) continue;
      const auto number = read_number(number_field, number_max);
      if (!number || *number == 0) return;
      const auto system = numbered_system(talker, *number);
      if (!system) return;

      const auto elevation = read_number(elevation_field, elevation_max);
      if (!elevation_field.empty() && !elevation) return;
      const auto azimuth = read_number(azimuth_field, azimuth_max);
      if (!azimuth_field.empty() && !azimuth) return;
      const auto cn0 = read_number(cn0_field, cn0_max);
      if (!cn0_field.empty() && !cn0) return;

      const gnss_signal_t signal = signal_id && *signal_id != 0 ? *signal_id : primary_signal(*system);
      if (signal_name(*system, signal).empty()) continue;

      auto& satellite = report(table, {*system, *number}, now);
      satellite.placed = elevation && azimuth;
      satellite.elevation = static_cast<std::int8_t>(elevation.value_or(0));
      satellite.azimuth = azimuth.value_or(0);
      set_signal(satellite, signal, static_cast<std::uint8_t>(cn0.value_or(0)), now);
    }
  });
}

// $GNGSA,A,3,05,13,15,,,,,,,,,,1.85,1.02,1.54,1*0D
//        mode type number x 12 PDOP HDOP VDOP [system id]
void gnss_sky_t::update_gsa(std::span<const std::string_view> f, std::optional<gnss_system_t> talker) {
  const std::size_t n = f.size();
  if (n != 18 && n != 19) return;
  const auto field = [&](std::size_t i) { return i + 1 == n ? strip_checksum(f[i]) : f[i]; };

  std::optional<gnss_system_t> stated = talker;
  if (n == 19) {
    const auto id = parse_unsigned(field(18), UINT8_MAX);
    stated = id ? nmea_system(*id) : std::nullopt;
    if (!stated) return;
  }
  sky_dop_t read = *dop;
  if (!store_decimal(field(15), dop_max, read.pdop) || !store_decimal(field(16), dop_max, read.hdop) ||
      !store_decimal(field(17), dop_max, read.vdop))
    return;
  dop = read;

  const double now = expire();
  satellites.modify([&](table_t& table) {
    // A system stated by its id has its marks replaced even when the sentence lists no satellite.
    if (n == 19) clear_used(table, *stated);
    for (std::size_t i = 3; i <= 14; ++i) {
      if (field(i).empty()) continue;
      const auto number = read_number(field(i), number_max);
      if (!number || *number == 0) return;
      const auto system = numbered_system(stated, *number);
      if (!system) return;
      mark_used(table, {*system, *number}, now);
    }
  });
}

void gnss_sky_t::update_dop(const gps_dop_t& r) {
  constexpr double hundredths = 100.0;
  dop = {r.gDOP / hundredths, r.pDOP / hundredths, r.tDOP / hundredths, r.vDOP / hundredths,
         r.hDOP / hundredths, r.nDOP / hundredths, r.eDOP / hundredths};
}

void gnss_sky_t::update_sat(const gps_sat_t& r) {
  constexpr int elevation_known = 90;  // degrees either way; beyond, the receiver does not know it
  const double now = expire();
  satellites.modify([&](table_t& table) {
    for (const auto& sv : r.entries) {
      const auto system = ubx_system(sv.gnssId);
      if (!system || sv.svId == 0) continue;
      auto& satellite = report(table, {*system, sv.svId}, now);
      satellite.placed = sv.elev >= -elevation_known && sv.elev <= elevation_known && sv.azim >= 0 &&
                         sv.azim <= static_cast<int>(azimuth_max);
      satellite.elevation = satellite.placed ? sv.elev : std::int8_t{0};
      satellite.azimuth = satellite.placed ? static_cast<std::uint16_t>(sv.azim) : std::uint16_t{0};
      satellite.used = (sv.flags & gps_sat_sv_t::flag_used) != 0;
      satellite.health = static_cast<std::uint8_t>((sv.flags >> gps_sat_sv_t::health_shift) & 0x03);
      satellite.quality = static_cast<std::uint8_t>(sv.flags & gps_sat_sv_t::quality_mask);
      satellite.residual_dm = sv.prRes;
      if (!sig_seen_) set_signal(satellite, primary_signal(*system), sv.cno, now);
    }
  });
}

void gnss_sky_t::update_sig(const gps_sig_t& r) {
  sig_seen_ = true;
  const double now = expire();
  satellites.modify([&](table_t& table) {
    for (const auto& sv : r.entries) {
      const auto system = ubx_system(sv.gnssId);
      const auto signal = system ? ubx_signal(*system, sv.sigId) : std::nullopt;
      if (!signal || sv.svId == 0) continue;
      auto& satellite = report(table, {*system, sv.svId}, now);
      set_signal(satellite, *signal, sv.cno, now);
      for (auto& s : satellite.tracked)
        if (s.id == *signal) s.used = (sv.sigFlags & gps_sig_sv_t::flag_pr_used) != 0;
    }
  });
}

void gnss_sky_t::clear_used(table_t& table, gnss_system_t system) {
  const auto bit = static_cast<std::uint8_t>(1u << index_of(system));
  if (gsa_run_systems_ & bit) return;
  gsa_run_systems_ |= bit;
  const auto first = table.lower_bound({system, 0});
  const auto last = table.upper_bound({system, UINT16_MAX});
  for (auto it = first; it != last; ++it) it->second.used = false;
}

void gnss_sky_t::mark_used(table_t& table, sky_key_t key, double now) {
  clear_used(table, key.system);
  report(table, key, now).used = true;
}

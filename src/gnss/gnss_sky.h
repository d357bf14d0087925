#pragma once

#include <array>
#include <cstdint>
#include <limits>
#include <map>
#include <optional>
#include <span>
#include <string_view>
#include <utility>
#include <vector>

#include "core/main_queue.h"
#include "core/observable.h"
#include "gnss/gnss_ids.h"
#include "nmea/gps_protocol.h"
#include "nmea/report_ageing.h"
#include "ubx/gps_protocol_sky.h"

// A satellite of any system, by its system and its number as the receiver gives it.
struct sky_key_t {
  gnss_system_t system = gnss_system_t::gps;
  std::uint16_t number = 0;
  bool operator==(const sky_key_t&) const = default;
  // By system, then number: a system's satellites stand together.
  bool operator<(const sky_key_t& o) const { return std::pair(system, number) < std::pair(o.system, o.number); }
};

// One signal of a satellite that the receiver tracks.
struct sky_signal_t {
  gnss_signal_t id = 0;
  std::uint8_t cn0 = 0;  // dB-Hz, above 0
  bool used = false;     // in the fix, where the receiver says so for each signal
  double time = 0.0;     // s, when it was last reported
  bool operator==(const sky_signal_t&) const = default;
};

struct sky_satellite_t {
  double time = 0.0;             // s, when anything last reported it
  bool placed = false;           // elevation and azimuth are known
  std::int8_t elevation = 0;     // degrees above the horizon; below it is negative
  std::uint16_t azimuth = 0;     // degrees from true north
  bool used = false;             // in the fix
  std::uint8_t health = 0;       // from UBX: 0 unknown, 1 healthy, 2 unhealthy
  std::uint8_t quality = 0;      // from UBX: 0 no signal to 7 code and carrier locked
  std::int16_t residual_dm = 0;  // from UBX: pseudorange residual, 0.1 m
  std::vector<sky_signal_t> tracked;

  // The strongest signal's C/N0, 0 without one.
  std::uint8_t best_cn0() const;
};

// Dilutions of precision; NaN until a receiver reports one.
struct sky_dop_t {
  static constexpr double unknown = std::numeric_limits<double>::quiet_NaN();
  double gdop = unknown, pdop = unknown, tdop = unknown, vdop = unknown, hdop = unknown, ndop = unknown, edop = unknown;
};

// What one system contributes: satellites in view, satellites used, signals tracked.
struct sky_count_t {
  unsigned in_view = 0, used = 0, tracked = 0;
  bool operator==(const sky_count_t&) const = default;
};
using sky_counts_t = std::array<sky_count_t, gnss_system_count>;

// The satellites of every system on every signal, from the GSV and GSA sentences of every talker
// (NMEA 2.3 to 4.11) and from the UBX records NAV-SAT, NAV-SIG and NAV-DOP. A satellite is kept
// until it has gone unreported for 10 s, a signal until it has for 10 s when its satellite is next
// reported. A GSA sentence lists the used satellites of its system: the first GSA of a run of them
// that names a system replaces that system's used marks. NAV-SAT gives each satellite's C/N0 as its
// first band's until NAV-SIG, which gives every signal, has been seen.
class gnss_sky_t final : public observable_t, public gps_protocol_t, public gps_protocol_sky_t {
public:
  static constexpr double satellite_valid_periode = 10.0;  // s a satellite or signal stays unreported
  static constexpr std::uint16_t number_max = 999;         // the widest satellite number of a sentence
  static constexpr std::uint8_t elevation_max = 90;        // degrees
  static constexpr std::uint16_t azimuth_max = 360;        // degrees
  static constexpr std::uint8_t cn0_max = 99;              // dB-Hz
  static constexpr double dop_max = 99.99;

  explicit gnss_sky_t(const time_source_t& clock) : clock_(clock) {}

  void reset() override;
  void update(std::span<const std::string_view> fields) override;
  void update_dop(const gps_dop_t& record) override;
  void update_sat(const gps_sat_t& record) override;
  void update_sig(const gps_sig_t& record) override;

  sky_counts_t counts() const;

  published_t<std::map<sky_key_t, sky_satellite_t>> satellites{*this, {}};
  published_t<sky_dop_t> dop{*this, {}};

private:
  using table_t = std::map<sky_key_t, sky_satellite_t>;

  void update_gsv(std::span<const std::string_view> f, std::optional<gnss_system_t> talker);
  void update_gsa(std::span<const std::string_view> f, std::optional<gnss_system_t> talker);
  // The satellite's entry, made if new, reported now: its signals unreported too long are dropped.
  sky_satellite_t& report(table_t& table, sky_key_t key, double now);
  // Marks the satellite used, after clearing its system's marks when this GSA run has not yet.
  void mark_used(table_t& table, sky_key_t key, double now);
  void clear_used(table_t& table, gnss_system_t system);
  double expire();

  const time_source_t& clock_;
  report_ageing_t ageing_{satellite_valid_periode};
  std::uint8_t gsa_run_systems_ = 0;  // bit per system whose used marks this run of GSA replaced
  bool sig_seen_ = false;             // a NAV-SIG record came: signals come from it alone
};

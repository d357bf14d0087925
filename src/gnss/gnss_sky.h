#pragma once

#include <array>
#include <cstdint>
#include <limits>
#include <optional>
#include <span>
#include <string_view>

#include "core/main_queue.h"
#include "core/observable.h"
#include "gnss/gnss_ids.h"
#include "gnss/sky_history.h"
#include "gnss/sky_table.h"
#include "nmea/gps_protocol.h"
#include "ubx/gps_protocol_sky.h"

// Dilutions of precision; NaN until a receiver reports one.
struct sky_dop_t {
  static constexpr double unknown = std::numeric_limits<double>::quiet_NaN();
  double gdop = unknown, pdop = unknown, tdop = unknown, vdop = unknown, hdop = unknown, ndop = unknown, edop = unknown;
};

// The latest sky records the receiver sent, each as it came, for their texts in the log.
struct sky_records_t {
  std::optional<gps_dop_t> dop;
  std::optional<gps_sat_t> sat;
  std::optional<gps_sig_t> sig;
};

// What one system contributes: satellites in view, satellites used, signals tracked.
struct sky_count_t {
  unsigned in_view = 0, used = 0, tracked = 0;
  bool operator==(const sky_count_t&) const = default;
};
using sky_counts_t = std::array<sky_count_t, gnss_system_count>;

// The satellites of every system on every signal, from the GSV and GSA sentences of every talker
// (NMEA 2.3 to 4.11) and from the UBX records NAV-SAT, NAV-SIG and NAV-DOP. A satellite, and each
// of its signals, is kept until it has gone unreported for 10 s. A GSA sentence lists the used satellites of its
// system: the first GSA of a run of them that names a system replaces that system's used marks. NAV-SAT gives each
// satellite's C/N0 as its first band's until NAV-SIG, which gives every signal, has been seen.
class gnss_sky_t final : public observable_t, public gps_protocol_t, public gps_protocol_sky_t {
public:
  static constexpr double satellite_valid_periode = 10.0;  // s a satellite or signal stays unreported
  static constexpr int number_max = 999;                   // the widest satellite number of a sentence
  static constexpr int elevation_max = 90;                 // degrees
  static constexpr int azimuth_max = 360;                  // degrees
  static constexpr int cn0_max = 99;                       // dB-Hz
  static constexpr double dop_max = 99.99;

  explicit gnss_sky_t(const time_source_t& clock) : clock_(clock) {}

  void reset() override;
  void update(std::span<const std::string_view> fields) override;
  void update_dop(const gps_dop_t& record) override;
  void update_sat(const gps_sat_t& record) override;
  void update_sig(const gps_sig_t& record) override;

  sky_counts_t counts() const;
  // A sample a second of the counts, the DOPs and the strongest signals, taken as reports come.
  const sky_history_t& history() const { return history_; }
  // Kept as they come, with the table's notice: a NAV-SAT or NAV-SIG changes the table and a NAV-DOP the DOPs.
  const sky_records_t& records() const { return records_; }

  published_t<sky_table_t> satellites{*this, {}};
  published_t<sky_dop_t> dop{*this, {}};

private:
  using table_t = sky_table_t;

  void update_gsv(std::span<const std::string_view> f, std::optional<gnss_system_t> talker);
  void update_gsa(std::span<const std::string_view> f, std::optional<gnss_system_t> talker);
  // The satellite's entry, made if new, reported now; null when the table is full.
  sky_satellite_t* report(table_t& table, sky_key_t key, double now);
  // Marks the satellite used, after clearing its system's marks when this GSA run has not yet.
  void mark_used(table_t& table, sky_key_t key, double now);
  void clear_used(table_t& table, gnss_system_t system);
  double expire();
  // Takes the history's sample when one is due.
  void sample(double now);

  const time_source_t& clock_;
  double oldest_ = std::numeric_limits<double>::infinity();  // nothing kept was reported before this
  std::uint8_t gsa_run_systems_ = 0;                         // bit per system whose used marks this run of GSA replaced
  sky_history_t history_;
  sky_records_t records_;
  bool sig_seen_ = false;  // a NAV-SIG record came: signals come from it alone
};

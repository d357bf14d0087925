#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "core/colour.h"
#include "core/console.h"
#include "core/main_queue.h"
#include "core/observable.h"
#include "link/connection.h"
#include "ntrip/geodesy.h"
#include "ntrip/ntrip_client.h"
#include "ntrip/rtcm_stats.h"
#include "ntrip/rtk_state.h"
#include "ntrip/source_table.h"

// The corrections source beside the receiver link: an NTRIP mountpoint whose stream goes to the
// receiver as it arrives, counted by RTCM message type, with the base station, the age of the last
// correction and the receiver's RTK state. It also fetches casters' source tables. Main thread.
// Observable: a notice comes before each change of what it shows, and once a second while a source
// is wanted, so ages shown stay current.
class corrections_t final : public observable_t, private ntrip_events_t {
public:
  static constexpr double tick_s = 1.0;          // between rate and age updates
  static constexpr double gga_period_s = 10.0;   // between positions sent to a network mountpoint
  static constexpr double stale_after_s = 10.0;  // a correction older than this is a warning

  corrections_t(connection_t& hub, main_queue_t& queue, console_t& console, const ntrip_client_t::make_tcp_t& make_tcp);

  // Streams the mountpoint to the receiver; send_gga: the mountpoint wants the receiver's position.
  void connect(const ntrip_address_t& address, bool send_gga);
  // Fetches the caster's source table into `table`, nearest mountpoint first.
  void fetch_table(const ntrip_address_t& caster);
  void disconnect();

  // A corrections source was asked for (it may be failing).
  bool asked() const { return asked_; }
  bool enabled() const { return client_.enabled(); }
  bool send_gga() const { return send_gga_; }
  // A source table is on its way.
  bool table_pending() const { return table_client_.enabled(); }
  const ntrip_address_t& address() const { return client_.address(); }
  const rtcm_stats_t& stats() const { return stats_; }
  std::uint64_t bytes_per_s() const { return bytes_per_s_; }
  std::uint64_t gga_sent() const { return gga_sent_; }
  // Seconds since the last good frame; nothing before the first.
  std::optional<double> age_s() const;
  bool stale() const;
  rtk_mode_t rtk() const;
  // The base station's position and its distance from the receiver's fix.
  std::optional<geodetic_t> base() const;
  std::optional<double> base_distance_m() const;
  // "RTK fixed  age 0.8 s", "no RTK", "corrections stopped 12 s ago" for a status bar.
  std::string rtk_status() const;
  colour_t rtk_colour() const;

  published_t<std::string> status{*this, "offline"};
  published_t<colour_t> status_colour{*this, colour_t::primary};
  published_t<std::vector<source_entry_t>> table{*this, {}};
  published_t<std::string> table_status{*this, ""};

private:
  void ntrip_up(const std::string& what, bool version2) override;
  void ntrip_down(const std::string& text, bool retry) override;
  void ntrip_data(std::span<const std::uint8_t> bytes) override;
  void ntrip_table(std::string_view text) override;
  void tick(std::uint64_t request);
  std::optional<geo_coordinate_t> fix() const;
  void say(const std::string& text);

  connection_t& hub_;
  main_queue_t& queue_;
  console_t& console_;
  // The source table's client reports here, apart from the stream's.
  struct table_events_t final : ntrip_events_t {
    explicit table_events_t(corrections_t& owner) : owner(owner) {}
    void ntrip_up(const std::string&, bool) override {}
    void ntrip_down(const std::string& text, bool) override { owner.table_status = text; }
    void ntrip_data(std::span<const std::uint8_t>) override {}
    void ntrip_table(std::string_view text) override { owner.ntrip_table(text); }
    corrections_t& owner;
  };
  table_events_t table_events_{*this};
  ntrip_client_t client_;
  ntrip_client_t table_client_;
  rtcm_stats_t stats_;
  bool asked_ = false;
  bool send_gga_ = false;
  std::uint64_t request_ = 0;  // counts connects and disconnects; a tick serves one
  std::uint64_t bytes_at_tick_ = 0;
  std::uint64_t bytes_per_s_ = 0;
  std::uint64_t gga_sent_ = 0;
  double next_gga_s_ = 0.0;
  std::shared_ptr<bool> alive_ = std::make_shared<bool>(true);
};

#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <string_view>

#include "core/main_queue.h"
#include "core/observable.h"
#include "nmea/gps_protocol.h"
#include "nmea/report_ageing.h"

// GSA: fix mode, fix type, the PRNs used in the solution (each kept until it has gone unreported
// for 10 s) and the three DOP values.
class gps_gngsa_t final : public gps_decoder_t {
public:
  static constexpr double PRN_valid_periode = 10.0;  // s a PRN stays without a new report
  static constexpr double dop_max = 99.99;
  static constexpr std::uint8_t prn_limit = 100;  // PRNs from here on end the PRN fields

  explicit gps_gngsa_t(const time_source_t& clock) : clock_(clock) {}

  void reset() override;
  void update(std::span<const std::string_view> fields) override;
  void update_posllh(const gps_posllh_t& record) override;
  void update_pvt(const gps_pvt_t& record) override;

  // The fix type from the NMEA or the NAV-PVT table by pvt_mode; "invalid" when not listed.
  std::string_view fix_type_text() const;
  // "Auto", "Manual" or "invalid".
  std::string_view fix_mode_text() const;
  // The PRNs in ascending order, one-digit ones padded to two columns: " 3  7 12".
  std::string PRN_text() const;

  std::string_view fix_mode_c = "A";
  std::uint8_t fix_type_i = 1;
  published_t<std::map<std::uint8_t, double>> PRN_arr{*this, {}};  // PRN -> time last listed
  double pdop_d = 0.0;
  double hdop_d = 0.0;
  double vdop_d = 0.0;
  bool pvt_mode = false;

private:
  const time_source_t& clock_;
  report_ageing_t ageing_{PRN_valid_periode};
};

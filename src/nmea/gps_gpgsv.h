#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <string_view>

#include "core/main_queue.h"
#include "core/observable.h"
#include "nmea/gps_protocol.h"
#include "nmea/report_ageing.h"

// One report of one satellite. Readers may keep it: it never changes while anyone else holds it.
struct gps_gpgsv_satellite_t {
  bool valid = false;  // the report gave both elevation and azimuth
  double time = 0.0;   // s, when the report was decoded
  std::uint8_t prn = 0;
  std::uint8_t snr = 0;        // dB-Hz
  std::uint8_t elevation = 0;  // degrees above the horizon
  std::uint16_t azimuth = 0;   // degrees from true north

  // " 7  elevation 45  azimuth  23  SNR 38"
  std::string description() const;
};
using satellite_ref_t = std::shared_ptr<const gps_gpgsv_satellite_t>;

// GSV: the satellites in view, each kept until it has gone unreported for 10 s.
class gps_gpgsv_t final : public gps_decoder_t {
public:
  static constexpr double satellite_valid_periode = 10.0;  // s a satellite stays without a report
  static constexpr std::uint8_t sentence_count_max = 9;
  static constexpr std::uint8_t in_view_max = 36;
  static constexpr std::uint8_t prn_limit = 100;
  static constexpr std::uint8_t elevation_max = 90;  // degrees
  static constexpr std::uint16_t azimuth_max = 360;  // degrees
  static constexpr std::uint8_t snr_limit = 100;     // dB-Hz

  explicit gps_gpgsv_t(const time_source_t& clock) : clock_(clock) {}

  void reset() override;
  void update(std::span<const std::string_view> fields) override;
  void update_posllh(const gps_posllh_t&) override {}
  void update_pvt(const gps_pvt_t& record) override;

  std::uint8_t sentence_count = 0;
  std::uint8_t sentence_last = 0;
  published_t<std::uint8_t> satellites_in_view{*this, 0};
  published_t<std::map<std::uint8_t, satellite_ref_t>> satellite_arr{*this, {}};

private:
  // Enters a report, reusing the old entry's storage when no reader holds it.
  void enter(const gps_gpgsv_satellite_t& report);

  const time_source_t& clock_;
  report_ageing_t ageing_{satellite_valid_periode};
};

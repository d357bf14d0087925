#pragma once

#include <string_view>

#include "core/observable.h"
#include "nmea/gps_protocol.h"

// VTG: track made good and ground speed, each from its own field; neither is converted into the
// other.
class gps_gnvtg_t final : public gps_decoder_t {
public:
  static constexpr double true_track_max = 360.0;  // degrees
  static constexpr double value_max = 999.9;       // degrees magnetic, knots, km/h

  void reset() override;
  void update(std::span<const std::string_view> fields) override;
  void update_posllh(const gps_posllh_t&) override {}
  void update_pvt(const gps_pvt_t& record) override;

  published_t<double> true_track_mode_deg{*this, 0.0};
  published_t<double> magnetic_track_mode_deg{*this, 0.0};
  published_t<double> speed_knots{*this, 0.0};
  published_t<double> speed_kph{*this, 0.0};
};

#pragma once

#include <string_view>

#include "core/observable.h"
#include "map/annotations.h"
#include "nmea/gps_protocol.h"
#include "nmea/time_date.h"

// RMC: time, date, status, position, speed over ground, track and magnetic variation; places
// markers titled with the date.
class gps_gnrmc_t final : public gps_decoder_t {
public:
  static constexpr double speed_max = 999.9;      // knots
  static constexpr double track_max = 360.0;      // degrees
  static constexpr double variation_max = 999.9;  // degrees

  void reset() override;
  void update(std::span<const std::string_view> fields) override;
  void update_posllh(const gps_posllh_t& record) override;
  void update_pvt(const gps_pvt_t& record) override;

  time_hms_t time;  // changed in place: no notice of its own
  date_ymd_t date;  // likewise
  published_t<double> lat{*this, 0.0};
  published_t<double> lon{*this, 0.0};
  published_t<double> speed_knots{*this, 0.0};
  double track_angle = 0.0;
  double magnetic_variation = 0.0;  // a magnitude from RMC, signed from NAV-PVT
  std::string_view lat_dir = "N";
  std::string_view lon_dir = "E";
  std::string_view data_status = "A";
  annotations_t map_annotations;

private:
  void place_marker(geo_coordinate_t where);
  annotation_ref_t spare_marker_;
};

#pragma once

#include <cstdint>
#include <string_view>

#include "core/observable.h"
#include "map/annotations.h"
#include "map/map_path.h"
#include "nmea/gps_protocol.h"
#include "nmea/motion.h"
#include "nmea/time_date.h"

// The main fix state: GGA sentences and the NAV-POSLLH and NAV-PVT records. Keeps the last fix,
// two short histories of movement, the fix markers and the system's one track.
class gps_gngga_t final : public gps_decoder_t {
public:
  static constexpr double hdop_max = 99.99;       // largest readable HDOP
  static constexpr double hdop_no_marker = 99.0;  // from this HDOP on no marker is placed
  static constexpr std::int64_t sat_count_max = 36;

  void reset() override;
  void update(std::span<const std::string_view> fields) override;
  void update_posllh(const gps_posllh_t& record) override;
  void update_pvt(const gps_pvt_t& record) override;

  // The fix quality (GGA) or fix type (NAV-PVT) as text; "invalid" outside the table.
  std::string_view fix_text() const;
  // A new marker titled with the time of the fix ("12:35:19") at the last fix.
  annotation_ref_t time_annotation() const;

  time_hms_t time;  // changed in place: no notice of its own
  published_t<double> lat{*this, 0.0};
  published_t<double> lon{*this, 0.0};
  std::int64_t fix_i = 0;
  std::int64_t sat_count_i = 0;
  double hdop_d = 0.0;
  double alt_d = 0.0;
  double mean_sea_level_d = 0.0;
  motion_history_t direction_history{};  // rad clockwise from north, newest first
  motion_history_t magnitude_history{};  // m, newest first
  bool pvt_mode = false;
  std::string_view lat_dir = "N";
  std::string_view lon_dir = "E";
  annotations_t map_annotations;
  map_path_t map_path;
  // The last fix as a map places it, north and east positive: a sentence's magnitudes signed by
  // their letters, a record's values as they stand.
  geo_coordinate_t map_fix;

private:
  void push_motion(double previous_lat, double previous_lon);
  void place_marker();

  annotation_ref_t spare_marker_;
};

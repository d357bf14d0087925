#pragma once

#include <cstdint>
#include <random>
#include <span>
#include <string>
#include <vector>

#include "sim/sim_rtk.h"

// What the simulated receiver does.
struct sim_config_t {
  std::uint64_t seed = 1;
  double lat = 48.1173;                   // degrees, start and centre of the loop; south negative
  double lon = 11.5167;                   // degrees; west negative
  double loop_radius_m = 150.0;           // m
  double speed_mps = 1.4;                 // m/s, a walk
  bool ubx = false;                       // NAV-PVT and NAV-POSLLH frames instead of sentences
  double bad_checksum_rate = 0.0;         // share of sentences or frames sent with a wrong checksum
  double garbage_rate = 0.0;              // share of sentences followed by a junk line, of frames by junk bytes
  std::int64_t start_utc_s = 1767268800;  // 2026-01-01 12:00:00
  double epoch_s = 1.0;                   // simulated seconds per epoch (1 / rate)
  // The systems of a multi-GNSS sky (bits of sim/sim_sky.h): NMEA 4.11 talkers with system and
  // signal ids, or with ubx NAV-SAT, NAV-SIG and NAV-DOP frames once a second. 0: GPS alone.
  std::uint8_t gnss = 0;
  // The fix goes to RTK float and fixed while corrections arrive (sim/sim_rtk.h); without it every
  // fix is autonomous.
  bool rtk = false;
};

// What it has injected so far.
struct sim_counts_t {
  std::uint64_t sentences = 0;  // sentences sent, good and bad
  std::uint64_t bad_checksums = 0;
  std::uint64_t garbage_lines = 0;  // junk lines, or runs of junk bytes between frames
  std::uint64_t frames = 0;         // UBX frames
};

// A moving receiver: one epoch after another, each the bytes a receiver sends in one second
// (or one 1/rate). The stream depends only on the configuration and the epoch number.
class sim_engine_t {
public:
  static constexpr int satellite_count = 12;

  explicit sim_engine_t(const sim_config_t& config);

  // The bytes of the next epoch.
  std::string next_epoch();
  const sim_counts_t& counts() const { return counts_; }
  // Corrections reached the receiver during the current epoch.
  void corrections_arrived() { rtk_.corrections_at(now_s_); }
  // A new rate from the next epoch on; the simulated time runs on without a jump.
  void set_epoch_s(double epoch_s);

private:
  struct position_t {
    double lat, lon, course_deg, speed_mps;
  };
  position_t position(double t) const;
  void add_sentence(std::string& out, const std::string& body);
  void add_frame(std::string& out, std::span<const std::uint8_t> image);
  void add_text_epoch(std::string& out, double t);
  void add_ubx_epoch(std::string& out, double t);
  // Multi-GNSS: a GSA for each system, then a GSV group for each system and signal.
  void add_gnss_sentences(std::string& out, double t, double hdop);
  // Multi-GNSS: NAV-SAT, NAV-SIG and NAV-DOP of the epoch.
  void add_sky_frames(std::string& out, double t, std::uint32_t itow);
  double uniform();

  sim_config_t config_;
  std::mt19937_64 rng_;
  std::uint64_t epoch_ = 0;
  std::uint64_t rate_epoch_ = 0;  // the epoch at which epoch_s last changed
  double rate_t_ = 0.0;           // and its time
  sim_counts_t counts_;
  sim_rtk_t rtk_;
  double now_s_ = 0.0;  // the time of the epoch sent last
};

#include "sim/rtcm_encoder.h"

#include <cmath>
#include <cstdint>
#include <numbers>
#include <vector>

#include "core/crc24q.h"

namespace {

constexpr std::uint8_t preamble = 0xD3;
constexpr int msm_signals = 2;  // two signals per satellite: L1 and L2 (or E5b, B2I)
constexpr std::uint32_t ms_per_day = 86400000;
constexpr std::uint32_t ms_per_week = 7 * ms_per_day;
constexpr double ecef_unit_m = 0.0001;
constexpr std::uint64_t cn0_40_dbhz = 640;  // in MSM7's 1/16 dB-Hz

// Appends big-endian bit fields to a payload.
class bit_writer_t {
public:
  void put(std::uint64_t value, unsigned bits) {
    for (unsigned i = bits; i-- > 0;) {
      if (used_ % 8 == 0) bytes_.push_back(0);
      if ((value >> i) & 1u) bytes_.back() |= static_cast<std::uint8_t>(0x80u >> (used_ % 8));
      ++used_;
    }
  }
  void put_signed(std::int64_t value, unsigned bits) { put(static_cast<std::uint64_t>(value), bits); }
  const std::vector<std::uint8_t>& bytes() const { return bytes_; }

private:
  std::vector<std::uint8_t> bytes_;
  std::size_t used_ = 0;
};

struct ecef_t {
  double x, y, z;
};

ecef_t ecef(const rtcm_base_t& base) {
  constexpr double a = 6378137.0, f = 1.0 / 298.257223563, e2 = f * (2.0 - f);
  const double lat = base.lat * std::numbers::pi / 180.0, lon = base.lon * std::numbers::pi / 180.0;
  const double n = a / std::sqrt(1.0 - e2 * std::sin(lat) * std::sin(lat));
  return {(n + base.height_m) * std::cos(lat) * std::cos(lon), (n + base.height_m) * std::cos(lat) * std::sin(lon),
          (n * (1.0 - e2) + base.height_m) * std::sin(lat)};
}

std::int64_t units(double metres) {
  return std::llround(metres / ecef_unit_m);
}

}  // namespace

std::string rtcm_encoder_t::frame(std::span<const std::uint8_t> payload) {
  std::vector<std::uint8_t> f{preamble, static_cast<std::uint8_t>((payload.size() >> 8) & 0x03),
                              static_cast<std::uint8_t>(payload.size() & 0xFF)};
  f.insert(f.end(), payload.begin(), payload.end());
  const auto crc = crc24q(f);
  f.push_back(static_cast<std::uint8_t>(crc >> 16));
  f.push_back(static_cast<std::uint8_t>(crc >> 8));
  f.push_back(static_cast<std::uint8_t>(crc));
  return {f.begin(), f.end()};
}

std::string rtcm_encoder_t::epoch(std::uint32_t tow_ms) {
  tow_ms %= ms_per_week;
  // GLONASS dates its epochs by day of week and time of day (UTC+3 in truth; the offset does not
  // matter to a stream nobody solves).
  const std::uint32_t glonass = ((tow_ms / ms_per_day) << 27) | (tow_ms % ms_per_day);
  // One statement each: the random numbers are drawn in the same order whatever the compiler.
  std::string out = station();
  out += msm7(1077, tow_ms, 9);
  out += msm7(1087, glonass, 7);
  out += msm7(1097, tow_ms, 8);
  out += msm7(1127, tow_ms, 10);
  out += biases();
  return out;
}

// 1005: the antenna reference point, with the GPS, GLONASS and Galileo flags set.
std::string rtcm_encoder_t::station() {
  const auto p = ecef(base_);
  bit_writer_t w;
  w.put(1005, 12);
  w.put(base_.station_id, 12);
  w.put(0, 6);       // ITRF realisation year
  w.put(0b1110, 4);  // GPS, GLONASS, Galileo; a physical reference station
  w.put_signed(units(p.x), 38);
  w.put(0, 2);  // single receiver oscillator, reserved
  w.put_signed(units(p.y), 38);
  w.put(0, 2);  // quarter cycle indicator
  w.put_signed(units(p.z), 38);
  return frame(w.bytes());
}

// MSM7: the header with satellite, signal and cell masks, then per satellite its rough range and
// rate, then per cell its fine ranges, lock time, half-cycle flag, C/N0 and fine rate.
std::string rtcm_encoder_t::msm7(std::uint16_t type, std::uint32_t epoch_field, int satellites) {
  bit_writer_t w;
  w.put(type, 12);
  w.put(base_.station_id, 12);
  w.put(epoch_field, 30);
  w.put(type != 1127, 1);  // more messages of this epoch follow, except after the last system
  w.put(0, 3);             // issue of data station
  w.put(0, 7);             // reserved
  w.put(0, 2);             // clock steering
  w.put(0, 2);             // external clock
  w.put(0, 1);             // divergence-free smoothing
  w.put(0, 3);             // smoothing interval
  std::uint64_t satellite_mask = 0;
  for (int i = 0; i < satellites; ++i) satellite_mask |= std::uint64_t{1} << (63 - (2 + 3 * i));
  w.put(satellite_mask, 64);
  w.put((std::uint64_t{1} << 30) | (std::uint64_t{1} << 16), 32);  // two signals
  for (int i = 0; i < satellites * msm_signals; ++i) w.put(1, 1);  // every cell observed
  for (int i = 0; i < satellites; ++i) w.put(64 + random(5), 8);   // rough range, whole ms
  for (int i = 0; i < satellites; ++i) w.put(0, 4);                // extended information
  for (int i = 0; i < satellites; ++i) w.put(random(10), 10);      // rough range, 1/1024 ms
  for (int i = 0; i < satellites; ++i) w.put_signed(static_cast<std::int64_t>(random(10)) - 512, 14);  // rate, m/s
  const int cells = satellites * msm_signals;
  for (int i = 0; i < cells; ++i) w.put(random(20), 20);               // fine pseudorange
  for (int i = 0; i < cells; ++i) w.put(random(24), 24);               // fine phase range
  for (int i = 0; i < cells; ++i) w.put(700, 10);                      // lock time indicator
  for (int i = 0; i < cells; ++i) w.put(0, 1);                         // half-cycle ambiguity
  for (int i = 0; i < cells; ++i) w.put(cn0_40_dbhz + random(7), 10);  // C/N0 in 1/16 dB-Hz
  for (int i = 0; i < cells; ++i) w.put(random(15), 15);               // fine phase range rate
  return frame(w.bytes());
}

// 1230: GLONASS code-phase biases of the four FDMA signals, in 0.02 m.
std::string rtcm_encoder_t::biases() {
  bit_writer_t w;
  w.put(1230, 12);
  w.put(base_.station_id, 12);
  w.put(1, 1);       // aligned
  w.put(0, 3);       // reserved
  w.put(0b1111, 4);  // L1 C/A, L1 P, L2 C/A, L2 P
  for (int i = 0; i < 4; ++i) w.put_signed(static_cast<std::int64_t>(random(8)) - 128, 16);
  return frame(w.bytes());
}

// A linear congruential generator: the same seed gives the same stream on every platform.
std::uint64_t rtcm_encoder_t::random(unsigned bits) {
  state_ = state_ * 6364136223846793005u + 1442695040888963407u;
  return (state_ >> 20) & ((std::uint64_t{1} << bits) - 1);
}

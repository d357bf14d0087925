#pragma once

#include <cstdint>
#include <span>
#include <string>

// The reference station the simulated correction stream describes.
struct rtcm_base_t {
  std::uint16_t station_id = 1;
  double lat = 48.1173;  // degrees, north positive
  double lon = 11.5167;  // degrees, east positive
  double height_m = 600.0;
};

// Writes a plausible RTCM 3 correction stream: each epoch the station position (1005), MSM7
// observations of GPS, GLONASS, Galileo and BeiDou (1077, 1087, 1097, 1127) and the GLONASS code
// and phase biases (1230). Framing, lengths, masks and CRCs are exact; the observation values are
// pseudo-random numbers of the right widths, deterministic for a seed. Enough to test a client's
// framing and counting and to feed a caster, not to solve a position.
class rtcm_encoder_t {
public:
  rtcm_encoder_t(const rtcm_base_t& base, std::uint64_t seed) : base_(base), state_(seed | 1u) {}

  // The six messages of the epoch at tow_ms (ms into the GPS week), framed, in the order above.
  std::string epoch(std::uint32_t tow_ms);

  // A payload wrapped as a frame: preamble, length, payload, CRC-24Q.
  static std::string frame(std::span<const std::uint8_t> payload);

private:
  std::string station();
  std::string msm7(std::uint16_t type, std::uint32_t epoch_field, int satellites);
  std::string biases();
  std::uint64_t random(unsigned bits);

  rtcm_base_t base_;
  std::uint64_t state_;
};

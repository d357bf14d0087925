#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

// The satellite systems and their signals, and how NMEA sentences and UBX records name them.

// In the order the screens list them.
enum class gnss_system_t : std::uint8_t { gps, glonass, galileo, beidou, qzss, navic, sbas };
inline constexpr std::size_t gnss_system_count = 7;
inline constexpr std::array<gnss_system_t, gnss_system_count> gnss_systems = {
    gnss_system_t::gps,  gnss_system_t::glonass, gnss_system_t::galileo, gnss_system_t::beidou,
    gnss_system_t::qzss, gnss_system_t::navic,   gnss_system_t::sbas};

// "GPS", "GLONASS", "Galileo", "BeiDou", "QZSS", "NavIC", "SBAS".
std::string_view system_name(gnss_system_t system);
inline std::size_t index_of(gnss_system_t system) {
  return static_cast<std::size_t>(system);
}

// A signal is named by its NMEA 4.11 signal id within its system (1 for GPS L1 C/A, 8 for L5 Q);
// UBX signal ids are translated to it, so both streams key a signal alike.
using gnss_signal_t = std::uint8_t;

// The band the receiver tracks when a sentence names no signal (NMEA before 4.10, or signal id 0):
// Galileo's E1, every other system's first band.
inline gnss_signal_t primary_signal(gnss_system_t system) {
  return system == gnss_system_t::galileo ? 7 : 1;
}
// The band name of a signal ("L1 C/A", "E5a", "B2I"), or empty when the system has no such signal.
std::string_view signal_name(gnss_system_t system, gnss_signal_t signal);
// The signal of a UBX signal id, if the system has it.
std::optional<gnss_signal_t> ubx_signal(gnss_system_t system, std::uint8_t sig_id);

// The UBX gnssId of a system, and the UBX signal id of a signal (the first of a band that UBX
// splits into components); 0xFF for none.
std::uint8_t ubx_gnss_id(gnss_system_t system);
std::uint8_t ubx_sig_id(gnss_system_t system, gnss_signal_t signal);

// The system of a sentence's talker ("GP", "GL", "GA", "GB", "BD", "GQ", "GI"); nothing for "GN",
// whose satellites take their system from the system id or from their numbers.
std::optional<gnss_system_t> talker_system(std::string_view talker);
// The system of an NMEA 4.10 system id, 1 to 6.
std::optional<gnss_system_t> nmea_system(std::uint64_t system_id);
// The system of a UBX gnssId; nothing for IMES and unknown ids.
std::optional<gnss_system_t> ubx_system(std::uint8_t gnss_id);
// The system of a satellite: the stated one, except that GPS sentences (and GN ones without a
// system id) carry other systems' satellites in number ranges: GPS 1-32, SBAS 33-64 and 120-158,
// GLONASS 65-96, QZSS 193-200, BeiDou 201-263 and 401-463, Galileo 301-336. Nothing for a number
// outside them.
// Decoders ask this for every satellite they read: it is inline.
inline std::optional<gnss_system_t> numbered_system(std::optional<gnss_system_t> stated, std::uint64_t number) {
  using S = gnss_system_t;
  if (stated && stated != S::gps) return stated;
  const auto within = [number](std::uint64_t low, std::uint64_t high) { return number >= low && number <= high; };
  if (within(1, 32)) return S::gps;
  if (within(33, 64) || within(120, 158)) return S::sbas;
  if (within(65, 96)) return S::glonass;
  if (within(193, 200)) return S::qzss;
  if (within(201, 263) || within(401, 463)) return S::beidou;
  if (within(301, 336)) return S::galileo;
  return std::nullopt;
}

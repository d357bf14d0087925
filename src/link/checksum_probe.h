#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

// Finds the first NMEA sentence or UBX frame with a valid checksum in a byte stream that arrives
// in any chunks: the sign that a serial port runs at its receiver's baud rate. At a wrong rate a
// UART delivers noise, in which a printable sentence with a matching checksum, or a frame with a
// matching Fletcher checksum, practically never appears. Keeps only the bytes that may still
// begin one, so memory stays bounded whatever the noise.
class checksum_probe_t {
public:
  static constexpr std::size_t max_sentence = 82;       // bytes of "$" ... "*hh\r" before the LF
  static constexpr std::size_t max_ubx_payload = 4096;  // bytes; longer lengths are noise

  // Takes the next chunk; true once a valid sentence or frame has been seen.
  bool feed(std::span<const std::uint8_t> chunk);
  // From the start of the first valid sentence or frame to the end of the bytes fed: what the
  // receive path gets first, so nothing after the noise is lost.
  std::span<const std::uint8_t> from_first() const;
  // Forgets everything, for the next rate.
  void reset();

private:
  enum class verdict_t { valid, invalid, pending };
  verdict_t check_sentence(std::size_t at) const;
  verdict_t check_frame(std::size_t at) const;

  std::vector<std::uint8_t> bytes_;
  std::size_t scanned_ = 0;  // bytes before this begin nothing valid
  std::size_t found_ = 0;    // where the first valid one begins, once found
  bool seen_ = false;
};

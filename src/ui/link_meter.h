#pragma once

#include <cstdint>
#include <span>

#include "link/connection.h"
#include "link/receive_tap.h"

// Counts the bytes the hub receives: every chunk it decodes, whichever link or capture brought it.
class link_meter_t final : public receive_tap_t {
public:
  explicit link_meter_t(connection_t& hub) : hub_(hub) { hub_.add_tap(*this); }
  ~link_meter_t() override { hub_.remove_tap(*this); }
  link_meter_t(const link_meter_t&) = delete;
  link_meter_t& operator=(const link_meter_t&) = delete;

  void received(std::span<const std::uint8_t> bytes) override { bytes_ += bytes.size(); }
  // Bytes received since the start.
  std::uint64_t bytes() const { return bytes_; }

private:
  connection_t& hub_;
  std::uint64_t bytes_ = 0;
};

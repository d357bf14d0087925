#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <span>
#include <string>
#include <string_view>

#include "command/ubx_message.h"
#include "command/ubx_scanner.h"
#include "sim/sim_input.h"

// The simulator's configuration port, as a generation 9 receiver's: CFG-VALSET, VALGET and
// VALDEL for the items of the key table (ACK-NAK for any other key), CFG-RATE and CFG-MSG of the
// older receivers, and MON-VER with the simulator's own identity. A new measurement period is
// handed to `rate_changed`, which paces the stream.
class sim_receiver_t final : public sim_input_t {
public:
  static constexpr std::uint16_t min_meas_ms = 25;  // ms: the fastest rate accepted, 40 Hz

  using rate_changed_t = std::function<void(double period_s)>;
  sim_receiver_t(double period_s, bool ubx, rate_changed_t rate_changed);

  std::string received(std::string_view bytes) override;

  static receiver_identity_t identity();
  // The value of a table item now; 0 for one it does not hold.
  std::uint64_t value(std::uint32_t key) const;

private:
  void answer(ubx_id_t message, std::span<const std::uint8_t> payload);
  bool valset(std::span<const std::uint8_t> payload);
  bool valget(std::span<const std::uint8_t> payload);
  bool rate(std::span<const std::uint8_t> payload);
  void acknowledge(ubx_id_t message, bool accepted);
  void set_meas_ms(std::uint64_t meas_ms);

  std::map<std::uint32_t, std::uint64_t> values_;
  rate_changed_t rate_changed_;
  ubx_scanner_t scanner_;
  std::string out_;  // the answers to the bytes being read
};

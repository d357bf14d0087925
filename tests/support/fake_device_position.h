#pragma once

#include "map/device_position.h"

// A device position for tests: knows what the test says, and reports move() while started.
class fake_device_position_t final : public device_position_t {
public:
  explicit fake_device_position_t(std::optional<geo_coordinate_t> known) : known_(known) {}
  std::optional<geo_coordinate_t> last_known() const override { return known_; }
  void start(std::function<void(geo_coordinate_t)> on_position) override { on_position_ = std::move(on_position); }
  void stop() override { on_position_ = nullptr; }
  void move(geo_coordinate_t c) { on_position_ ? on_position_(c) : void(); }

private:
  std::optional<geo_coordinate_t> known_;
  std::function<void(geo_coordinate_t)> on_position_;
};

#pragma once

#include <memory>

#include "core/console.h"
#include "link/ble.h"
#include "platform/qt_ble_central.h"

// The Bluetooth LE central of the programs: the UART central's logic on the Qt stack it owns.
class qt_ble_link_t final : public ble_link_t {
public:
  qt_ble_link_t(ble_delegate_t& delegate, console_t& console)
      : stack_(std::make_unique<qt_ble_central_t>()), central_(delegate, *stack_, console, false, false) {}

  void connect(const std::string& name) override { central_.connect(name); }
  bool enabled() const override { return central_.enabled(); }
  void stop() override { central_.stop(); }
  void write(std::span<const std::uint8_t> bytes) override { central_.write(bytes); }
  std::string radio_status() const override { return central_.radio_status(); }
  colour_t radio_colour() const override { return central_.radio_colour(); }

  BLE& central() { return central_; }

private:
  std::unique_ptr<qt_ble_central_t> stack_;
  BLE central_;
};

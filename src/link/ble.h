#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>

#include "core/colour.h"
#include "core/console.h"
#include "core/main_queue.h"
#include "core/observable.h"
#include "link/ble_central_api.h"
#include "link/defaults.h"
#include "link/link.h"

// The last signal strength read from the peripheral, in dBm; 0 when unknown.
class rssi_t final : public observable_t {
public:
  published_t<std::int64_t> rssi{*this, 0};
  // Empty when unknown, else the value: "-67".
  std::string text() const { return rssi == 0 ? std::string() : std::to_string(rssi.get()); }
};

// The Bluetooth LE central for a receiver behind the Nordic UART Service: scans for a peripheral
// by its advertised name, connects, subscribes to the UART characteristic's notifications, hands
// their bytes to the hub, and rescans by itself when the peripheral is lost. Everything runs on the
// main thread.
class BLE final : public ble_link_t, private ble_central_events_t {
public:
  static constexpr std::string_view uuid_char_recv = "6E400003-B5A3-F393-E0A9-E50E24DCCA9E";  // notify
  static constexpr std::string_view uuid_char_send = "6E400002-B5A3-F393-E0A9-E50E24DCCA9E";  // write

  static constexpr double retry_delay = 4.0;  // s between a refused connect and the next scan

  BLE(link_events_t& events, std::unique_ptr<ble_central_api_t> manager, console_t& console, main_queue_t& queue,
      double retry_delay_s = retry_delay);
  ~BLE() override;

  // ble_link_t, for the hub.
  void connect(const std::string& name) override;
  bool enabled() const override { return enabled_; }
  void stop() override;
  void write(std::span<const std::uint8_t> bytes) override;
  std::string radio_status() const override { return status; }
  colour_t radio_colour() const override { return sta_fg; }
  std::string radio_state() const override { return radio_state_; }

  void start_scan();
  void disconnect_peripheral();
  void ble_reconnect();

  bool ready() const { return ble_peripheral && ble_char_recv && ble_char_send; }

  published_t<colour_t> sta_fg{*this, colour_t::primary};
  published_t<std::string> status{*this, "offline"};
  published_t<std::string> name_connect{*this, std::string(default_ble_name)};
  rssi_t rssi;
  std::uint64_t write_failures = 0;  // writes the peripheral refused

  std::optional<ble_peripheral_t> ble_peripheral;
  std::optional<ble_characteristic_t> ble_char_recv;
  std::optional<ble_characteristic_t> ble_char_send;
  std::optional<std::string> name_peripheral;
  std::optional<std::string> name_peripheral_reconnect;

private:
  void manager_state_changed(ble_manager_state_t state) override;
  void peripheral_discovered(const ble_peripheral_t& p) override;
  void peripheral_connected(const ble_peripheral_t& p) override;
  void connect_failed(const ble_peripheral_t& p, const std::string& error) override;
  void peripheral_disconnected(const ble_peripheral_t& p, const std::optional<std::string>& error) override;
  void services_discovered(const ble_peripheral_t& p, const std::vector<std::uint64_t>& services) override;
  void characteristics_discovered(const ble_peripheral_t& p,
                                  const std::vector<ble_characteristic_t>& characteristics) override;
  void value_updated(const ble_peripheral_t& p, const ble_characteristic_t& c,
                     std::optional<std::span<const std::uint8_t>> value) override;
  void value_written(const ble_peripheral_t& p, const ble_characteristic_t& c,
                     const std::optional<std::string>& error) override;
  void rssi_read(const ble_peripheral_t& p, int value) override;

  void connect_peripheral(const ble_peripheral_t& p);
  void check_ready();
  bool powered_on() const { return manager_->state() == ble_manager_state_t::powered_on; }

  link_events_t& events_;
  std::unique_ptr<ble_central_api_t> manager_;
  console_t& console_;
  main_queue_t& queue_;
  const double retry_delay_s_;
  bool enabled_ = false;
  std::uint64_t request_ = 0;  // counts the user's connects and stops; a delayed rescan serves one
  std::string radio_state_;
  std::shared_ptr<bool> alive_ = std::make_shared<bool>(true);  // guards the delayed rescan
};

#pragma once

#include <string>
#include <vector>

#include "link/ble_central_api.h"

// A Bluetooth stack for tests: records what the central asks ("scan", "connect 7", "write 2:abc")
// and lets the test send the stack's events.
class fake_ble_central_t final : public ble_central_api_t {
public:
  void set_events(ble_central_events_t* e) override { events = e; }
  ble_manager_state_t state() const override { return radio; }
  void scan() override { calls.push_back("scan"); }
  void stop_scan() override { calls.push_back("stop_scan"); }
  void connect(const ble_peripheral_t& p) override { calls.push_back("connect " + std::to_string(p.id)); }
  void cancel_connection(const ble_peripheral_t& p) override { calls.push_back("cancel " + std::to_string(p.id)); }
  void discover_services(const ble_peripheral_t&) override { calls.push_back("discover_services"); }
  void discover_characteristics(const ble_peripheral_t&, std::uint64_t s) override {
    calls.push_back("discover_characteristics " + std::to_string(s));
  }
  void read_value(const ble_peripheral_t&, const ble_characteristic_t& c) override {
    calls.push_back("read " + std::to_string(c.id));
  }
  void set_notify(const ble_peripheral_t&, const ble_characteristic_t& c, bool on) override {
    calls.push_back("notify " + std::to_string(c.id) + (on ? " on" : " off"));
  }
  std::size_t max_write_size(const ble_peripheral_t&) const override { return write_size; }
  void write_with_response(const ble_peripheral_t&, const ble_characteristic_t& c,
                           std::span<const std::uint8_t> bytes) override {
    writes.emplace_back(bytes.begin(), bytes.end());
    calls.push_back("write " + std::to_string(c.id));
  }
  void read_rssi(const ble_peripheral_t&) override { ++rssi_requests; }

  // The radio comes up (or changes) and says so.
  void set_radio(ble_manager_state_t s) {
    radio = s;
    events->manager_state_changed(s);
  }

  ble_central_events_t* events = nullptr;
  ble_manager_state_t radio = ble_manager_state_t::unknown;
  std::size_t write_size = 512;  // bytes per attribute value
  std::vector<std::string> calls;
  std::vector<std::string> writes;
  int rssi_requests = 0;
};

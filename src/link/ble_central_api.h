#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

// The Bluetooth LE central role as the UART central needs it, on any stack: a manager that scans
// and connects, peripherals with services and characteristics, and their events. Handles are
// plain values; the stack keeps the objects behind them.

// The manager's radio state.
enum class ble_manager_state_t : int {
  unknown = 0,
  resetting = 1,
  unsupported = 2,
  unauthorized = 3,
  powered_off = 4,
  powered_on = 5,
};

struct ble_peripheral_t {
  std::uint64_t id = 0;
  std::optional<std::string> name;  // the advertised name, when it has one
  std::string description;          // printable, for the console
  bool operator==(const ble_peripheral_t& other) const { return id == other.id; }
};

struct ble_characteristic_t {
  std::uint64_t id = 0;
  std::string uuid;  // upper-case, as 6E400003-B5A3-F393-E0A9-E50E24DCCA9E
  bool operator==(const ble_characteristic_t& other) const { return id == other.id; }
};

// What the stack reports, on the main thread.
class ble_central_events_t {
public:
  virtual ~ble_central_events_t() = default;
  virtual void manager_state_changed(ble_manager_state_t state) = 0;
  virtual void peripheral_discovered(const ble_peripheral_t& p) = 0;
  virtual void peripheral_connected(const ble_peripheral_t& p) = 0;
  // A connect that never succeeded: no disconnect follows.
  virtual void connect_failed(const ble_peripheral_t& p, const std::string& error) = 0;
  // error is empty when the program asked for the disconnect.
  virtual void peripheral_disconnected(const ble_peripheral_t& p, const std::optional<std::string>& error) = 0;
  virtual void services_discovered(const ble_peripheral_t& p, const std::vector<std::uint64_t>& services) = 0;
  virtual void characteristics_discovered(const ble_peripheral_t& p,
                                          const std::vector<ble_characteristic_t>& characteristics) = 0;
  // A notification; no value when it carries none. Read responses are not reported: the value a
  // read returns is the last one notified, not new data.
  virtual void value_updated(const ble_peripheral_t& p, const ble_characteristic_t& c,
                             std::optional<std::span<const std::uint8_t>> value) = 0;
  virtual void value_written(const ble_peripheral_t& p, const ble_characteristic_t& c,
                             const std::optional<std::string>& error) = 0;
  virtual void rssi_read(const ble_peripheral_t& p, int rssi) = 0;
};

// What the central asks of the stack.
class ble_central_api_t {
public:
  virtual ~ble_central_api_t() = default;
  virtual void set_events(ble_central_events_t* events) = 0;
  virtual ble_manager_state_t state() const = 0;
  virtual void scan() = 0;  // every peripheral, no service filter
  virtual void stop_scan() = 0;
  virtual void connect(const ble_peripheral_t& p) = 0;
  virtual void cancel_connection(const ble_peripheral_t& p) = 0;
  virtual void discover_services(const ble_peripheral_t& p) = 0;
  virtual void discover_characteristics(const ble_peripheral_t& p, std::uint64_t service) = 0;
  virtual void read_value(const ble_peripheral_t& p, const ble_characteristic_t& c) = 0;
  virtual void set_notify(const ble_peripheral_t& p, const ble_characteristic_t& c, bool on) = 0;
  // The largest value one write carries; longer writes are split.
  virtual std::size_t max_write_size(const ble_peripheral_t& p) const = 0;
  virtual void write_with_response(const ble_peripheral_t& p, const ble_characteristic_t& c,
                                   std::span<const std::uint8_t> bytes) = 0;
  virtual void read_rssi(const ble_peripheral_t& p) = 0;
};

#pragma once

#include <QBluetoothDeviceDiscoveryAgent>
#include <QBluetoothDeviceInfo>
#include <QBluetoothLocalDevice>
#include <QLowEnergyController>
#include <QLowEnergyService>
#include <QObject>
#include <deque>
#include <map>
#include <memory>

#include "link/ble_central_api.h"
#include "platform/bluez_adapters.h"

// The LE central on Qt Bluetooth (BlueZ over D-Bus on Linux, WinRT, CoreBluetooth): device
// discovery for advertised names, one controller for the connected peripheral, its services and
// characteristics, all events on the thread that created it. The adapter's power state maps onto
// the manager states: no adapter is "unsupported", powered off is "powered off"; the state reads
// "unknown" until the first one has been reported from the event loop. An adapter plugged in,
// pulled out, switched on or off later changes the state as it happens. Scans start from the event
// loop, so a peripheral is never reported from inside scan().
//
// Qt 6.4 cannot read the signal strength of a connected peripheral (and BlueZ does not offer it),
// so read_rssi does nothing and the RSSI stays 0, "unknown"; the strength seen while scanning is not
// used either.
class qt_ble_central_t final : public QObject, public ble_central_api_t {
public:
  static constexpr std::size_t max_attribute_value = 512;  // bytes one write may carry at most
  static constexpr std::size_t att_header = 3;             // bytes of an ATT write header within the MTU

  qt_ble_central_t();
  ~qt_ble_central_t() override;

  void set_events(ble_central_events_t* events) override;
  ble_manager_state_t state() const override { return state_; }
  void scan() override;
  void stop_scan() override;
  void connect(const ble_peripheral_t& p) override;
  void cancel_connection(const ble_peripheral_t& p) override;
  void discover_services(const ble_peripheral_t& p) override;
  void discover_characteristics(const ble_peripheral_t& p, std::uint64_t service) override;
  void read_value(const ble_peripheral_t& p, const ble_characteristic_t& c) override;
  void set_notify(const ble_peripheral_t& p, const ble_characteristic_t& c, bool on) override;
  std::size_t max_write_size(const ble_peripheral_t& p) const override;
  void write_with_response(const ble_peripheral_t& p, const ble_characteristic_t& c,
                           std::span<const std::uint8_t> bytes) override;
  void read_rssi(const ble_peripheral_t&) override {}

private:
  struct characteristic_entry_t {
    QLowEnergyService* service = nullptr;
    QLowEnergyCharacteristic characteristic;
  };
  ble_manager_state_t radio_state() const;
  void report_state();
  void watch_local_device();
  ble_peripheral_t peripheral_of(const QBluetoothDeviceInfo& info) const;
  const characteristic_entry_t* find(const ble_characteristic_t& c) const;
  ble_characteristic_t handle_of(QLowEnergyService* service, const QLowEnergyCharacteristic& c);

  ble_central_events_t* events_ = nullptr;
  ble_manager_state_t state_ = ble_manager_state_t::unknown;  // as last reported to the events
  bool state_reported_ = false;
  bool scanning_ = false;                   // scan() was called and stop_scan() has not been since
  QBluetoothLocalDevice* local_ = nullptr;  // the adapter Qt found when it was made, if any
  bluez_adapters_t adapters_;
  QBluetoothDeviceDiscoveryAgent agent_;
  std::map<std::uint64_t, QBluetoothDeviceInfo> seen_;
  ble_peripheral_t peripheral_;
  QLowEnergyController* controller_ = nullptr;
  bool cancelling_ = false;
  bool connected_ = false;  // the controller's connect succeeded
  QString last_error_;
  std::vector<QBluetoothUuid> services_;
  std::vector<QLowEnergyService*> service_objects_;
  std::map<std::uint64_t, characteristic_entry_t> characteristics_;
  std::deque<ble_characteristic_t> writes_;  // written and not yet confirmed, oldest first
  std::uint64_t next_characteristic_ = 1;
};

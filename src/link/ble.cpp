#include "link/ble.h"

#include <algorithm>

BLE::BLE(link_events_t& events, std::unique_ptr<ble_central_api_t> manager, console_t& console, main_queue_t& queue,
         double retry_delay_s)
    : events_(events), manager_(std::move(manager)), console_(console), queue_(queue), retry_delay_s_(retry_delay_s) {
  manager_->set_events(this);
}

BLE::~BLE() {
  *alive_ = false;
  manager_->set_events(nullptr);
}

void BLE::connect(const std::string& name) {
  ++request_;
  name_connect = name;
  enabled_ = true;
  start_scan();
}

void BLE::stop() {
  ++request_;
  enabled_ = false;
  if (powered_on()) manager_->stop_scan();
  disconnect_peripheral();
}

void BLE::write(std::span<const std::uint8_t> bytes) {
  if (!ready()) return;
  // One attribute value carries at most max_write_size bytes: longer writes go in order, in pieces.
  const std::size_t piece = std::max<std::size_t>(1, manager_->max_write_size(*ble_peripheral));
  for (std::size_t at = 0; at < bytes.size(); at += piece)
    manager_->write_with_response(*ble_peripheral, *ble_char_send,
                                  bytes.subspan(at, std::min(piece, bytes.size() - at)));
}

void BLE::manager_state_changed(ble_manager_state_t state) {
  if (state != ble_manager_state_t::powered_on) sta_fg = colour_t::red;
  switch (state) {
    case ble_manager_state_t::unknown:
      console_.print("ble_manager.state: 0 unknown");
      status = "BLE 0 unknown";
      break;
    case ble_manager_state_t::resetting:
      console_.print("ble_manager.state: 1 resetting");
      status = "BLE 1 resetting";
      break;
    case ble_manager_state_t::unsupported:
      console_.print("ble_manager.state: 2 unsupported");
      status = "BLE 2 unsupported";
      break;
    case ble_manager_state_t::unauthorized:
      console_.print("ble_manager.state: 3 unauthorized");
      status = "BLE 3 unauthorized";
      break;
    case ble_manager_state_t::powered_off:
      console_.print("ble_manager.state: 4 powered OFF");
      status = "BLE 4 powered OFF";
      break;
    case ble_manager_state_t::powered_on:
      status = "BLE 5 powered on";
      break;
    default:
      console_.print("ble_manager.state: " + std::to_string(static_cast<int>(state)) + " default?");
      return;
  }
  radio_state_ = status;
  if (state == ble_manager_state_t::powered_on) ble_reconnect();
}

void BLE::start_scan() {
  if (!enabled_ || !powered_on()) return;
  manager_->scan();
  sta_fg = colour_t::blue;
  status = "BLE scanning...";
  console_.print("BLE scanning...");
}

void BLE::peripheral_discovered(const ble_peripheral_t& p) {
  if (p.name && *p.name == name_connect.get()) {
    sta_fg = colour_t::green;
    status = "BLE found a " + name_connect.get() + " device";
    connect_peripheral(p);
  }
}

void BLE::connect_peripheral(const ble_peripheral_t& p) {
  name_peripheral_reconnect.reset();
  manager_->stop_scan();
  ble_peripheral = p;
  manager_->connect(p);
}

void BLE::peripheral_connected(const ble_peripheral_t& p) {
  console_.print("BLE connected: " + p.description);
  name_peripheral = p.name;
  status = "BLE connected: " + p.name.value_or("[no name]");
  manager_->read_rssi(p);
  manager_->discover_services(p);
}

// A connect that fails is handled as a loss: said, reported to the hub, and the peripheral is looked
// for again, so the link never rests at "found" with the scan stopped. The scan waits retry_delay_s:
// the stack reports a known peripheral at once, and one that refuses at once would be asked again
// and again without a pause.
void BLE::connect_failed(const ble_peripheral_t& p, const std::string& error) {
  if (!enabled_) return;
  console_.print("BLE connect failed: " + p.description);
  console_.print(error);
  events_.link_down(name_connect.get(), 0);
  disconnect_peripheral();
  name_peripheral_reconnect = name_connect.get();
  queue_.post_after(retry_delay_s_, [this, alive = std::weak_ptr<bool>(alive_), request = request_] {
    const auto still_alive = alive.lock();
    if (still_alive && *still_alive && request == request_ && !ble_peripheral) start_scan();
  });
}

void BLE::services_discovered(const ble_peripheral_t& p, const std::vector<std::uint64_t>& services) {
  for (const auto service : services) manager_->discover_characteristics(p, service);
}

void BLE::characteristics_discovered(const ble_peripheral_t& p,
                                     const std::vector<ble_characteristic_t>& characteristics) {
  for (const auto& c : characteristics) {
    manager_->read_value(p, c);
    if (c.uuid == uuid_char_recv) {
      ble_char_recv = c;
      manager_->set_notify(p, c, true);
      check_ready();
    } else if (c.uuid == uuid_char_send) {
      ble_char_send = c;
      manager_->set_notify(p, c, true);
      status = p.name.value_or("online");
      check_ready();
    }
  }
}

void BLE::check_ready() {
  if (!ready()) return;
  if (!enabled_) {
    disconnect_peripheral();
    return;
  }
  console_.print("");
  sta_fg = colour_t::secondary;
  events_.link_up(name_peripheral.value_or("(nil)"));
}

// Only the UART's TX characteristic carries the receiver's stream; a value of any other is no data.
void BLE::value_updated(const ble_peripheral_t& p, const ble_characteristic_t& c,
                        std::optional<std::span<const std::uint8_t>> value) {
  if (!ble_char_recv || !(c == *ble_char_recv)) return;
  manager_->read_rssi(p);
  if (value && !value->empty()) events_.link_bytes(*value);
}

void BLE::peripheral_disconnected(const ble_peripheral_t&, const std::optional<std::string>& error) {
  rssi.rssi = 0;
  if (!name_peripheral || name_peripheral_reconnect || !error) return;
  const auto name = *name_peripheral;
  console_.print("disconnected: " + name + " -----------------");
  console_.print(*error);
  events_.link_down(name, 0);
  disconnect_peripheral();
  name_peripheral_reconnect = name;
  start_scan();
}

void BLE::disconnect_peripheral() {
  name_peripheral.reset();
  if (ble_peripheral && powered_on()) {
    manager_->cancel_connection(*ble_peripheral);
    ble_peripheral.reset();
    ble_char_recv.reset();
    ble_char_send.reset();
  }
}

void BLE::ble_reconnect() {
  if (!enabled_) return;
  if (name_peripheral) {
    const auto name = *name_peripheral;
    console_.print("reconnect: " + name);
    disconnect_peripheral();
    name_peripheral_reconnect = name;
  }
  start_scan();
}

// A refused write loses its bytes: each is said and counted, so bridged bytes never vanish unseen.
void BLE::value_written(const ble_peripheral_t&, const ble_characteristic_t&, const std::optional<std::string>& error) {
  if (!error) return;
  ++write_failures;
  console_.print("BLE write: " + *error);
}

void BLE::rssi_read(const ble_peripheral_t&, int value) {
  rssi.rssi = value;
}

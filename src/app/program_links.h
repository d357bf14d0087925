#pragma once

#include <memory>

#include "core/console.h"
#include "core/main_queue.h"
#include "link/ble.h"
#include "link/gpsd_client.h"
#include "link/link_factory.h"
#include "link/serial_port.h"
#include "link/tcp_client.h"
#include "link/udp_listener.h"
#include "platform/qt_ble_central.h"

// The transports of the programs: the TCP client, the Bluetooth LE central on Qt Bluetooth, and the
// serial, UDP and gpsd links.
class program_links_t final : public link_factory_t {
public:
  program_links_t(main_queue_t& queue, console_t& console) : queue_(queue), console_(console) {}

  std::unique_ptr<tcp_link_t> make_tcp(link_events_t& events) override {
    return std::make_unique<tcp_client_t>(events, queue_, console_);
  }
  std::unique_ptr<ble_link_t> make_ble(link_events_t& events) override {
    return std::make_unique<BLE>(events, std::make_unique<qt_ble_central_t>(), console_, queue_);
  }
  std::unique_ptr<source_link_t> make_source(const source_address_t& address, link_status_events_t& events) override {
    switch (address.kind) {
      case source_address_t::kind_t::serial:
        return bind_source(address, std::make_unique<serial_port_t>(events, queue_, console_));
      case source_address_t::kind_t::udp:
        return bind_source(address, std::make_unique<udp_listener_t>(events, queue_, console_));
      case source_address_t::kind_t::gpsd:
        return bind_source(address, std::make_unique<gpsd_client_t>(
                                        events, [this](link_events_t& tcp_events) { return make_tcp(tcp_events); }));
    }
    return nullptr;
  }

private:
  main_queue_t& queue_;
  console_t& console_;
};

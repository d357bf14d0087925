#pragma once

#include <memory>

#include "core/console.h"
#include "core/main_queue.h"
#include "link/ble.h"
#include "link/link_factory.h"
#include "link/tcp_client.h"
#include "platform/qt_ble_central.h"

// The transports of the programs: the TCP client and the Bluetooth LE central on Qt Bluetooth.
class program_links_t final : public link_factory_t {
public:
  program_links_t(main_queue_t& queue, console_t& console) : queue_(queue), console_(console) {}

  std::unique_ptr<tcp_link_t> make_tcp(link_events_t& events) override {
    return std::make_unique<tcp_client_t>(events, queue_, console_);
  }
  std::unique_ptr<ble_link_t> make_ble(link_events_t& events) override {
    return std::make_unique<BLE>(events, std::make_unique<qt_ble_central_t>(), console_);
  }

private:
  main_queue_t& queue_;
  console_t& console_;
};

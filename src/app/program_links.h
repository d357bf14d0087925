#pragma once

#include <memory>

#include "core/console.h"
#include "core/main_queue.h"
#include "link/link_factory.h"
#include "link/tcp_client.h"
#include "platform/qt_ble_link.h"

// The transports of the programs: the TCP client and the Bluetooth LE central on Qt Bluetooth.
class program_links_t final : public link_factory_t {
public:
  program_links_t(main_queue_t& queue, console_t& console) : queue_(queue), console_(console) {}

  std::unique_ptr<tcp_link_t> make_tcp(tcp_client_delegate_t& delegate) override {
    return std::make_unique<tcp_client_t>(delegate, queue_, console_, false, false);
  }
  std::unique_ptr<ble_link_t> make_ble(ble_delegate_t& delegate) override {
    return std::make_unique<qt_ble_link_t>(delegate, console_);
  }

private:
  main_queue_t& queue_;
  console_t& console_;
};

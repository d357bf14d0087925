#pragma once

#include <memory>

#include "core/console.h"
#include "core/main_queue.h"
#include "link/link_factory.h"
#include "link/offline_links.h"
#include "link/tcp_client.h"

// The transports of the programs: the real TCP client; the Bluetooth LE central stays offline
// until the program has one.
class program_links_t final : public link_factory_t {
public:
  program_links_t(main_queue_t& queue, console_t& console) : queue_(queue), console_(console) {}

  std::unique_ptr<tcp_link_t> make_tcp(tcp_client_delegate_t& delegate) override {
    return std::make_unique<tcp_client_t>(delegate, queue_, console_, false, false);
  }
  std::unique_ptr<ble_link_t> make_ble(ble_delegate_t&) override { return std::make_unique<offline_ble_t>(); }

private:
  main_queue_t& queue_;
  console_t& console_;
};

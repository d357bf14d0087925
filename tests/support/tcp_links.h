#pragma once

#include <memory>

#include "core/console.h"
#include "core/main_queue.h"
#include "link/link_factory.h"
#include "link/offline_links.h"
#include "link/tcp_client.h"

// The real TCP client, and a Bluetooth link that never comes up: for tests over loopback sockets.
struct tcp_links_t final : link_factory_t {
  tcp_links_t(main_queue_t& queue, console_t& console) : queue(queue), console(console) {}
  std::unique_ptr<tcp_link_t> make_tcp(link_events_t& events) override {
    return std::make_unique<tcp_client_t>(events, queue, console, timing);
  }
  std::unique_ptr<ble_link_t> make_ble(link_events_t&) override { return std::make_unique<offline_ble_t>(); }
  main_queue_t& queue;
  console_t& console;
  tcp_timing_t timing;
};

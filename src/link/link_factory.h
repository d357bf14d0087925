#pragma once

#include <memory>

#include "link/link.h"

// Creates the transports when the hub first uses them; each reports to the given events.
class link_factory_t {
public:
  virtual ~link_factory_t() = default;
  virtual std::unique_ptr<tcp_link_t> make_tcp(link_events_t& events) = 0;
  virtual std::unique_ptr<ble_link_t> make_ble(link_events_t& events) = 0;
};

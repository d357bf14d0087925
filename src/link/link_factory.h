#pragma once

#include <memory>

#include "link/link.h"
#include "link/link_status.h"
#include "link/source_address.h"
#include "link/source_link.h"

// Creates the transports when the hub first uses them; each reports to the given events.
class link_factory_t {
public:
  virtual ~link_factory_t() = default;
  virtual std::unique_ptr<tcp_link_t> make_tcp(link_events_t& events) = 0;
  virtual std::unique_ptr<ble_link_t> make_ble(link_events_t& events) = 0;
  // A serial port, UDP port or gpsd link for the address; nullptr where the program opens none.
  virtual std::unique_ptr<source_link_t> make_source(const source_address_t&, link_status_events_t&) { return nullptr; }
};

#pragma once

#include <cstdint>
#include <memory>

#include "link/gpsd_link.h"
#include "link/link.h"
#include "link/serial_link.h"
#include "link/source_address.h"
#include "link/udp_link.h"

// A serial port, a UDP port or a gpsd daemon, bound to its address, so that the hub opens, retries
// and stops any of them alike.
class source_link_t : public link_t {
public:
  // Starts an attempt at the address: 0 when started, -1 when the link is up already. Never blocks.
  virtual std::int32_t open() = 0;
  // The link is up.
  virtual bool valid() const = 0;
  virtual const source_address_t& address() const = 0;
};

// Each transport bound to an address of its kind.
std::unique_ptr<source_link_t> bind_source(const source_address_t& address, std::unique_ptr<serial_link_t> link);
std::unique_ptr<source_link_t> bind_source(const source_address_t& address, std::unique_ptr<udp_link_t> link);
std::unique_ptr<source_link_t> bind_source(const source_address_t& address, std::unique_ptr<gpsd_link_t> link);

#pragma once

#include <memory>

#include "link/ble_link.h"
#include "link/tcp_link.h"

// Creates the transports when the hub first uses them; each reports to the given delegate.
class link_factory_t {
public:
  virtual ~link_factory_t() = default;
  virtual std::unique_ptr<tcp_link_t> make_tcp(tcp_client_delegate_t& delegate) = 0;
  virtual std::unique_ptr<ble_link_t> make_ble(ble_delegate_t& delegate) = 0;
};

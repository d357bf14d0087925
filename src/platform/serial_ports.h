#pragma once

#include <string>
#include <vector>

#include "link/serial_port_list.h"

// The serial ports Qt Serial Port finds (USB adapters, CDC-ACM receivers, on-board UARTs), with
// their by-id names from by_id_dir.
class qt_serial_ports_t final : public serial_port_list_t {
public:
  explicit qt_serial_ports_t(std::string by_id_dir = serial_by_id_dir) : by_id_dir_(std::move(by_id_dir)) {}
  std::vector<serial_port_info_t> ports() const override;

private:
  std::string by_id_dir_;
};

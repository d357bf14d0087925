#include "platform/serial_ports.h"

#include <QSerialPortInfo>
#include <cstdio>

std::vector<serial_port_info_t> qt_serial_ports_t::ports() const {
  std::vector<serial_port_info_t> ports;
  for (const auto& port : QSerialPortInfo::availablePorts()) {
    serial_port_info_t info;
    info.path = port.systemLocation().toStdString();
    info.by_id = by_id_path(info.path, by_id_dir_);
    if (port.hasVendorIdentifier() && port.hasProductIdentifier()) {
      char id[16];
      std::snprintf(id, sizeof id, "%04x:%04x", port.vendorIdentifier(), port.productIdentifier());
      info.usb_id = id;
    }
    info.product = port.description().toStdString();
    ports.push_back(std::move(info));
  }
  return ports;
}

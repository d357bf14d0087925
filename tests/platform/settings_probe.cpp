// settings_probe save FILE: changes every persisted setting through the settings model.
// settings_probe show FILE: prints what a new start restores, one "key=value" per line.
#include <cstdio>
#include <string>

#include "core/console.h"
#include "link/config_connection.h"
#include "platform/qsettings_store.h"

int main(int argc, char** argv) {
  if (argc != 3) return 2;
  const std::string mode = argv[1];
  qsettings_store_t store(QString::fromLocal8Bit(argv[2]));
  stdout_console_t console;
  config_connection_t settings(store, console);
  if (mode == "save") {
    settings.set_enable_bridge(true);
    settings.set_enable_ble(false);
    settings.save_ble_name("nrf52840dk UART");
    settings.save_host("192.168.4.1");
    settings.save_port(10110);
    settings.save_source("serial:///dev/serial/by-id/usb-u-blox_AG_GNSS_receiver-if00");
    settings.set_enable_source(true);
    return 0;
  }
  std::printf("enable_bridge=%d\nenable_ble=%d\nble_name=%s\nhost=%s\nport=%u\nhistory_host=%zu\nhistory_port=%zu\n",
              settings.enable_bridge().get(), settings.enable_ble().get(), settings.ble_name->c_str(),
              settings.host->c_str(), settings.port.get(), settings.history_host->size(),
              settings.history_port->size());
  const auto source = settings.chosen_source();
  std::printf("enable_source=%d\nsource=%s\n", settings.enable_source().get(), source ? source->text().c_str() : "");
  return 0;
}

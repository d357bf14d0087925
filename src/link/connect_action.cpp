#include "link/connect_action.h"

#include "link/config_connection.h"
#include "link/connection.h"

void connect_or_disconnect(config_connection_t& settings, connection_t& hub) {
  if (hub.tcp_enabled() || hub.ble_enabled()) {
    hub.disconnect();
    return;
  }
  if (settings.enable_bridge()) {
    hub.connect_ble(settings.save_ble_name(settings.ble_name));
    const auto host = settings.save_host(settings.host);
    hub.connect_tcp(host, settings.save_port(settings.port));
  } else if (settings.enable_ble()) {
    hub.connect_ble(settings.save_ble_name(settings.ble_name));
  } else {
    const auto host = settings.save_host(settings.host);
    hub.connect_tcp(host, settings.save_port(settings.port));
  }
}

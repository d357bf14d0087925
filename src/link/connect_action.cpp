#include "link/connect_action.h"

#include "link/config_connection.h"
#include "link/connection.h"

used_links_t used_links(const config_connection_t& settings) {
  const bool bridge = settings.enable_bridge();
  return {bridge || !settings.enable_ble(), bridge || settings.enable_ble()};
}

bool any_link_enabled(const connection_t& hub) {
  return hub.tcp_enabled() || hub.ble_enabled() || hub.source_enabled();
}

std::string used_status(const config_connection_t& settings, const connection_t& hub) {
  if (settings.enable_source()) return hub.status_source;
  const auto used = used_links(settings);
  if (used.tcp && used.ble) return hub.status_tcp.get() + "  " + hub.status_ble.get();
  return used.tcp ? hub.status_tcp.get() : hub.status_ble.get();
}

void connect_or_disconnect(config_connection_t& settings, connection_t& hub) {
  if (any_link_enabled(hub)) {
    hub.disconnect();
    return;
  }
  if (settings.enable_source()) {
    if (const auto address = settings.chosen_source()) hub.connect_source(*address);
    return;
  }
  // Bluetooth first, so that with the bridge the peripheral is looked for while TCP connects.
  const auto used = used_links(settings);
  if (used.ble) hub.connect_ble(settings.save_ble_name(settings.ble_name));
  if (used.tcp) {
    const auto host = settings.save_host(settings.host);
    hub.connect_tcp(host, settings.save_port(settings.port));
  }
}

#pragma once

#include <string>

class config_connection_t;
class connection_t;

// The main screen's connect-or-disconnect action, shared with korvid-cli: disconnects when either
// link is enabled; otherwise records the settings' values in their histories and connects as the
// settings say (both links for the bridge, else BLE or TCP).
void connect_or_disconnect(config_connection_t& settings, connection_t& hub);

// The links the settings use: both for the bridge, else Bluetooth or TCP.
struct used_links_t {
  bool tcp = false;
  bool ble = false;
};
used_links_t used_links(const config_connection_t& settings);

// The status texts of the links the settings use, TCP first, two spaces apart.
std::string used_status(const config_connection_t& settings, const connection_t& hub);

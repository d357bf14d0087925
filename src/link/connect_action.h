#pragma once

#include <string>

class config_connection_t;
class connection_t;

// The main screen's connect-or-disconnect action, shared with korvid-cli: disconnects when any
// link is enabled; otherwise connects as the settings say: the newest serial, UDP or gpsd address
// when that switch is on, else (recording the values in their histories) both links for the
// bridge, else BLE or TCP.
void connect_or_disconnect(config_connection_t& settings, connection_t& hub);

// True while any link is wanted: TCP, Bluetooth, or a serial, UDP or gpsd link.
bool any_link_enabled(const connection_t& hub);

// The links the settings use: both for the bridge, else Bluetooth or TCP.
struct used_links_t {
  bool tcp = false;
  bool ble = false;
};
used_links_t used_links(const config_connection_t& settings);

// The status texts of the links the settings use, TCP first, two spaces apart; the serial, UDP or
// gpsd link's alone when the settings use it.
std::string used_status(const config_connection_t& settings, const connection_t& hub);

#pragma once

class config_connection_t;
class connection_t;

// The main screen's connect-or-disconnect action, shared with korvid-cli: disconnects when either
// link is enabled; otherwise records the settings' values in their histories and connects as the
// settings say (both links for the bridge, else BLE or TCP).
void connect_or_disconnect(config_connection_t& settings, connection_t& hub);

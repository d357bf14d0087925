#pragma once

#include <memory>

#include "app/program_links.h"
#include "core/console.h"
#include "link/command_settings.h"
#include "link/config_connection.h"
#include "link/connection.h"
#include "link/kv_store.h"
#include "link/receiver_console.h"
#include "map/map_view.h"
#include "ntrip/corrections.h"
#include "ntrip/corrections_settings.h"
#include "platform/qt_main_queue.h"
#include "platform/serial_ports.h"
#include "platform/tile_map_widget.h"
#include "ui/link_meter.h"
#include "ui/main_window.h"
#include "ui/session_controller.h"

// The window's object graph, built in the order the screens rely on: the settings (restored at
// once), the transports, the hub with the meter that counts its bytes, the map widget and the map
// settings, then the window that shares them. The corrections source sits beside the hub, which
// takes its stream to the receiver. Everything lives until the program ends.
class KorvidApp {
public:
  KorvidApp(kv_store_t& store, qt_main_queue_t& queue, console_t& console);

  config_connection_t cfg;
  program_links_t links;
  connection_t cnc;
  link_meter_t meter{cnc};
  corrections_settings_t corrections_settings;
  corrections_t corrections;
  qt_serial_ports_t serial_ports;  // listed in the settings dialog
  tile_map_widget_t& map;          // owned by the window, which places it in its map panel
  map_cfg_t map_cfg;
  main_window_t window;
  session_controller_t& session;  // owned by the window: recording and playing captures
  // The console dock's models: commands to the receiver and their settings.
  receiver_console_t commands;
  command_settings_t command_settings;

private:
  void add_console(main_queue_t& queue, console_t& console);
  std::vector<subscription_t> console_watch_;
};

// The user's cache folder for map tiles.
QString tile_cache_folder();

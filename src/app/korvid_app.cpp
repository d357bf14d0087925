#include "app/korvid_app.h"

#include <QStandardPaths>

#include "platform/qt_device_position.h"
#include "platform/tile_source.h"
#include "ui/config_connection_view.h"

QString tile_cache_folder() {
  return QStandardPaths::writableLocation(QStandardPaths::CacheLocation) + "/tiles";
}

KorvidApp::KorvidApp(kv_store_t& store, qt_main_queue_t& queue, console_t& console)
    : cfg(store, console),
      links(queue, console),
      cnc(queue, console, meter),
      map(*new tile_map_widget_t(configured_tile_sources(), tile_cache_folder(),
                                 std::make_unique<qt_device_position_t>())),
      window(cfg, cnc, map_cfg, map, queue, meter) {
  window.settings_view().set_port_list(&serial_ports);
}

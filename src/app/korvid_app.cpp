#include "app/korvid_app.h"

#include <QStandardPaths>

#include "platform/tile_source.h"
#include "ui/corrections_window.h"

QString tile_cache_folder() {
  return QStandardPaths::writableLocation(QStandardPaths::CacheLocation) + "/tiles";
}

KorvidApp::KorvidApp(kv_store_t& store, qt_main_queue_t& queue, console_t& console)
    : cfg(store, console),
      links(queue, console),
      cnc(queue, console, meter),
      corrections_settings(store),
      corrections(cnc, queue, console, [this](link_events_t& events) { return links.make_tcp(events); }),
      map(*new tile_map_widget_t(configured_tile_sources(), tile_cache_folder())),
      window(cfg, cnc, map_cfg, map, queue, meter),
      session(*new session_controller_t(window, cnc, queue, console)) {
  add_corrections(window, corrections, corrections_settings);
}

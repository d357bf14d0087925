// window_probe save FILE: arranges the window (size, docks, theme, history span) and saves its layout.
// window_probe show FILE: restores the layout in a new process and prints what it found.
#include <QApplication>
#include <QDockWidget>
#include <QSettings>
#include <QTemporaryDir>
#include <cstdio>

#include "link/config_connection.h"
#include "link/memory_kv_store.h"
#include "map/map_view.h"
#include "platform/tile_map_widget.h"
#include "support/recording_console.h"
#include "ui/main_window.h"
#include "ui/sky_history_view.h"
#include "ui/window_layout.h"
#include "view_hub.h"

int main(int argc, char** argv) {
  if (argc != 3) return 2;
  qputenv("QT_QPA_PLATFORM", "offscreen");
  QApplication app(argc, argv);
  const QString mode = argv[1];
  QSettings settings(argv[2], QSettings::IniFormat);
  memory_kv_store_t store;
  recording_console_t console;
  config_connection_t cfg(store, console);
  view_hub_t hub;
  QTemporaryDir cache;
  auto& map = *new tile_map_widget_t({}, cache.path());
  map_cfg_t map_cfg;
  main_window_t window(cfg, hub.hub, map_cfg, map, hub.queue, hub.meter);
  window.resize(400, 300);
  if (mode == "save") {
    window.resize(900, 560);
    window.show();
    window.sheets().show(sheet_id_t::log, true);
    QApplication::processEvents();
    window.addDockWidget(Qt::LeftDockWidgetArea, window.dock(sheet_id_t::log));
    window.sky_history().set_minutes(60);
    save_window_layout(window, settings);
    save_window_theme(true, settings);
    save_history_span(window, settings);
    return 0;
  }
  restore_window_layout(window, settings);
  restore_window_theme(window, settings);
  restore_history_span(window, settings);
  window.show();
  QApplication::processEvents();
  std::printf("size %dx%d dark %d history %d", window.width(), window.height(), window.dark(),
              window.sky_history().minutes());
  for (const sheet_id_t sheet : {sheet_id_t::log, sheet_id_t::satellites, sheet_id_t::details})
    std::printf(" | area %d shown %d", window.dockWidgetArea(window.dock(sheet)), window.sheets().shown(sheet));
  std::printf("\n");
  return 0;
}

#include "app/korvid_app.h"

#include <QStandardPaths>

#include "platform/qt_device_position.h"
#include "platform/tile_source.h"
#include "ui/config_connection_view.h"
#include "ui/console_dock.h"
#include "ui/corrections_window.h"
#include "ui/link_status_bar.h"

QString tile_cache_folder() {
  return QStandardPaths::writableLocation(QStandardPaths::CacheLocation) + "/tiles";
}

KorvidApp::KorvidApp(kv_store_t& store, qt_main_queue_t& queue, console_t& console)
    : cfg(store, console),
      links(queue, console),
      cnc(queue, console, links),
      corrections_settings(store),
      corrections(cnc, queue, console, [this](link_events_t& events) { return links.make_tcp(events); }),
      map(*new tile_map_widget_t(configured_tile_sources(), tile_cache_folder(),
                                 std::make_unique<qt_device_position_t>())),
      window(cfg, cnc, map_cfg, map, queue, meter),
      session(*new session_controller_t(window, cnc, queue, console)),
      commands(cnc, queue, console),
      command_settings(store) {
  window.settings_view().set_port_list(&serial_ports);
  add_corrections(window, corrections, corrections_settings);
  add_console(queue, console);
}

// The console as a dock (Ctrl+5), sharing in the Connection menu, the receiver's identity in the
// status bar's tooltip, and the read-only switch following the link the settings name.
void KorvidApp::add_console(main_queue_t& queue, console_t& console) {
  auto* dock = new console_dock_t(commands, command_settings, [this]() -> std::string {
    if (cfg.enable_source().get()) {
      if (const auto source = cfg.chosen_source()) return source->text();
    }
    return cfg.enable_ble().get() && !cfg.enable_bridge().get()
               ? "ble://" + cfg.ble_name.get()
               : "tcp://" + cfg.host.get() + ":" + std::to_string(cfg.port.get());
  });
  window.bind_sheet(sheet_id_t::console,
                    window.add_dock("console", QObject::tr("Co&nsole"), dock, 5, Qt::BottomDockWidgetArea));
  add_share_actions(window.connection_menu(), cnc, queue, console);
  // Notices come before the change is stored: read the settings on the next turn.
  console_watch_.push_back(cfg.subscribe([dock] {
    QMetaObject::invokeMethod(
        dock, [dock] { dock->follow_link(); }, Qt::QueuedConnection);
  }));
  console_watch_.push_back(commands.subscribe([this] {
    QMetaObject::invokeMethod(
        &window, [this] { window.status().set_identity(QString::fromStdString(commands.identity.get())); },
        Qt::QueuedConnection);
  }));
}

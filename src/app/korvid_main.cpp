#include <QApplication>
#include <QCoreApplication>
#include <QPalette>
#include <QStyleFactory>
#include <QTimer>
#include <cstdio>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "app/demo_sim.h"
#include "app/korvid_app.h"
#include "app/program_links.h"
#include "app/stop_signals.h"
#include "app/window_options.h"
#include "core/console.h"
#include "link/config_connection.h"
#include "link/connect_action.h"
#include "link/connection.h"
#include "link/memory_kv_store.h"
#include "platform/qsettings_store.h"
#include "platform/qt_main_queue.h"

namespace {

constexpr int usage_error = 2;
constexpr int summary_ms = 1000;  // headless: one summary line a second

bool has_display() {
  return !qEnvironmentVariableIsEmpty("DISPLAY") || !qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY") ||
         !qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM");
}

// "12:00:05  GPS  12 sats  HDOP 0.90  48.117300 N  11.516700 E  ALT 520.0  connected to ..."
void print_summary(const connection_t& hub) {
  const auto& g = hub.gga;
  std::printf("%02u:%02u:%02u  %.*s  %lld sats  HDOP %.2f  %.6f %.*s  %.6f %.*s  ALT %.1f  %s\n",
              static_cast<unsigned>(g.time.hh), static_cast<unsigned>(g.time.mm), static_cast<unsigned>(g.time.ss),
              static_cast<int>(g.fix_text().size()), g.fix_text().data(), static_cast<long long>(g.sat_count_i),
              g.hdop_d, g.lat.get(), static_cast<int>(g.lat_dir.size()), g.lat_dir.data(), g.lon.get(),
              static_cast<int>(g.lon_dir.size()), g.lon_dir.data(), g.alt_d, hub.status_tcp->c_str());
  std::fflush(stdout);
}

// The demo's settings live in memory: TCP to the simulator, as a user would set it up.
void connect_demo(config_connection_t& cfg, connection_t& hub, std::uint16_t port) {
  cfg.set_enable_bridge(false);
  cfg.set_enable_ble(false);
  cfg.host = "127.0.0.1";
  cfg.port = port;
  connect_or_disconnect(cfg, hub);
}

QPalette dark_palette() {
  QPalette p;
  p.setColor(QPalette::Window, QColor(28, 28, 30));
  p.setColor(QPalette::WindowText, Qt::white);
  p.setColor(QPalette::Base, QColor(44, 44, 46));
  p.setColor(QPalette::AlternateBase, QColor(58, 58, 60));
  p.setColor(QPalette::Text, Qt::white);
  p.setColor(QPalette::Button, QColor(44, 44, 46));
  p.setColor(QPalette::ButtonText, Qt::white);
  p.setColor(QPalette::Highlight, QColor(10, 132, 255));
  p.setColor(QPalette::HighlightedText, Qt::white);
  p.setColor(QPalette::PlaceholderText, QColor(142, 142, 147));
  p.setColor(QPalette::ToolTipBase, QColor(58, 58, 60));
  p.setColor(QPalette::ToolTipText, Qt::white);
  return p;
}

// What the window and the headless mode share: the settings store, in memory for a demo so that
// the user's stay untouched, and the demo's simulator.
struct session_t {
  memory_kv_store_t demo_store;
  std::unique_ptr<qsettings_store_t> user_store;
  std::unique_ptr<demo_sim_t> sim;

  // False, with a message, when the demo's simulator finds no port.
  bool start(const window_options_t& options) {
    if (!options.demo) {
      user_store = std::make_unique<qsettings_store_t>();
      return true;
    }
    sim = std::make_unique<demo_sim_t>(options.ubx);
    if (sim->started()) return true;
    std::fprintf(stderr, "korvid: the demo's simulator found no free port on 127.0.0.1\n");
    return false;
  }
  kv_store_t& store() { return user_store ? static_cast<kv_store_t&>(*user_store) : demo_store; }
};

// No display: the hub alone, a summary each second, until Ctrl-C.
int run_headless(int argc, char** argv, const window_options_t& options) {
  std::printf("korvid: no display found (DISPLAY and WAYLAND_DISPLAY are unset); running headless, Ctrl-C stops\n");
  QCoreApplication app(argc, argv);
  qt_main_queue_t queue(&app);
  stdout_console_t console;
  session_t session;
  if (!session.start(options)) return 1;
  config_connection_t cfg("Thingy:91 UART", config_connection_t::default_host.front(), 81, false, session.store(),
                          console);
  program_links_t links(queue, console);
  connection_t hub(queue, console, links);
  if (session.sim) {
    connect_demo(cfg, hub, session.sim->port());
  } else {
    connect_or_disconnect(cfg, hub);
  }
  QTimer ticks;
  QObject::connect(&ticks, &QTimer::timeout, &app, [&hub] { print_summary(hub); });
  ticks.start(summary_ms);
  stop_signal_watch_t stop_watch(app);
  app.exec();
  queue.close();
  hub.disconnect();
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  std::vector<std::string_view> args(argv + 1, argv + argc);
  const auto parsed = parse_window(args);
  if (!parsed.options) {
    std::fprintf(stderr, "korvid: %s (see --help)\n", parsed.error.c_str());
    return usage_error;
  }
  const auto& options = *parsed.options;
  if (options.help) {
    std::fputs(window_usage, stdout);
    return 0;
  }
  if (!has_display()) {
    if (options.screenshot.empty()) return run_headless(argc, argv, options);
    qputenv("QT_QPA_PLATFORM", "offscreen");
  }

  QApplication app(argc, argv);
  QApplication::setApplicationName("korvid");
  QApplication::setApplicationVersion(KORVID_VERSION);
  QApplication::setOrganizationName("Korvid");
  if (options.dark) {
    QApplication::setStyle(QStyleFactory::create("Fusion"));
    QApplication::setPalette(dark_palette());
  }
  qt_main_queue_t queue(&app);
  stdout_console_t console;
  session_t session;
  if (!session.start(options)) return 1;

  auto korvid = std::make_unique<KorvidApp>(session.store(), queue, console);
  auto& window = korvid->window;
  window.setWindowTitle(options.demo ? "Korvid (demo)" : "Korvid");
  window.resize(options.width, options.height);
  window.show();
  if (session.sim) connect_demo(korvid->cfg, korvid->cnc, session.sim->port());
  if (options.sheet) window.sheets().show(*options.sheet, true);

  int status = 0;
  if (!options.screenshot.empty()) {
    QTimer::singleShot(static_cast<int>(options.after_s * 1000), &app, [&] {
      if (!window.grab().save(QString::fromStdString(options.screenshot), "PNG")) {
        std::fprintf(stderr, "korvid: cannot write '%s'\n", options.screenshot.c_str());
        status = 1;
      }
      app.quit();
    });
  }
  const int loop = app.exec();
  // Threads waiting for the main thread give up from here on; then the links close.
  queue.close();
  korvid->cnc.disconnect();
  korvid.reset();
  return status != 0 ? status : loop;
}

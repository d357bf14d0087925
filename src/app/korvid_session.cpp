#include "app/korvid_session.h"

#include <QCoreApplication>
#include <QTimer>
#include <cstdio>

#include "app/program_links.h"
#include "app/stop_signals.h"
#include "core/console.h"
#include "link/connect_action.h"
#include "platform/qt_main_queue.h"
#include "session/capture_player.h"

namespace {

constexpr int summary_ms = 1000;  // headless: one summary line a second

// "12:00:05  GPS  12 sats  HDOP 0.90  48.117300 N  11.516700 E  ALT 520.0  127.0.0.1:10110"
void print_summary(const config_connection_t& cfg, const connection_t& hub) {
  const auto& g = hub.gga;
  std::printf("%02u:%02u:%02u  %.*s  %lld sats  HDOP %.2f  %.6f %.*s  %.6f %.*s  ALT %.1f  %s\n",
              static_cast<unsigned>(g.time.hh), static_cast<unsigned>(g.time.mm), static_cast<unsigned>(g.time.ss),
              static_cast<int>(g.fix_text().size()), g.fix_text().data(), static_cast<long long>(g.sat_count_i),
              g.hdop_d, g.lat.get(), static_cast<int>(g.lat_dir.size()), g.lat_dir.data(), g.lon.get(),
              static_cast<int>(g.lon_dir.size()), g.lon_dir.data(), g.alt_d, used_status(cfg, hub).c_str());
  std::fflush(stdout);
}

}  // namespace

bool korvid_session_t::start(const window_options_t& options) {
  if (!options.demo) {
    user_store_ = std::make_unique<qsettings_store_t>();
    return true;
  }
  sim_ = std::make_unique<demo_sim_t>(options.ubx, options.gnss);
  if (sim_->started()) return true;
  std::fprintf(stderr, "korvid: the demo's simulator found no free port on 127.0.0.1\n");
  return false;
}

kv_store_t& korvid_session_t::store() {
  return user_store_ ? static_cast<kv_store_t&>(*user_store_) : demo_store_;
}

void korvid_session_t::connect(config_connection_t& cfg, connection_t& hub) {
  if (sim_) {
    cfg.set_enable_bridge(false);
    cfg.set_enable_ble(false);
    cfg.host = "127.0.0.1";
    cfg.port = sim_->port();
  }
  connect_or_disconnect(cfg, hub);
}

int run_headless(int argc, char** argv, const window_options_t& options) {
  std::printf("korvid: no display found (DISPLAY and WAYLAND_DISPLAY are unset); running headless, Ctrl-C stops\n");
  QCoreApplication app(argc, argv);
  qt_main_queue_t queue(&app);
  stdout_console_t console;
  korvid_session_t session;
  if (!session.start(options)) return 1;
  config_connection_t cfg(session.store(), console);
  program_links_t links(queue, console);
  connection_t hub(queue, console, links);
  // A capture given on the command line plays at the receiver's pace instead of the link, and
  // the program ends with it.
  capture_player_t player(queue, hub.source_events(), [&hub] { hub.reset(); });
  const auto at_end = player.subscribe([&player, &app] {
    if (player.ended()) QTimer::singleShot(0, &app, &QCoreApplication::quit);
  });
  if (options.capture.empty()) {
    session.connect(cfg, hub);
  } else if (player.open(options.capture)) {
    player.play();
  } else {
    std::fprintf(stderr, "korvid: cannot read '%s'\n", options.capture.c_str());
    return 1;
  }
  QTimer ticks;
  QObject::connect(&ticks, &QTimer::timeout, &app, [&cfg, &hub] { print_summary(cfg, hub); });
  ticks.start(summary_ms);
  stop_signal_watch_t stop_watch(app);
  app.exec();
  queue.close();
  hub.disconnect();
  return 0;
}

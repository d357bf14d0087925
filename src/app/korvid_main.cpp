#include <QApplication>
#include <QDialog>
#include <QSettings>
#include <QTimer>
#include <cstdio>
#include <memory>
#include <string_view>
#include <vector>

#include "app/korvid_app.h"
#include "app/korvid_session.h"
#include "app/stop_signals.h"
#include "app/window_options.h"
#include "core/console.h"
#include "platform/qt_main_queue.h"
#include "ui/window_layout.h"

namespace {

constexpr int usage_error = 2;

bool has_display() {
  return !qEnvironmentVariableIsEmpty("DISPLAY") || !qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY") ||
         !qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM");
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
  qt_main_queue_t queue(&app);
  stdout_console_t console;
  korvid_session_t session;
  if (!session.start(options)) return 1;

  auto korvid = std::make_unique<KorvidApp>(session.store(), queue, console);
  auto& window = korvid->window;
  window.setWindowTitle(options.demo ? "Korvid (demo)" : "Korvid");
  window.resize(options.width, options.height);
  // The window comes back as the user left it; a demo and a screenshot read that but save nothing,
  // and a screenshot keeps the size it was asked for.
  QSettings layout;
  const bool saves = !options.demo && options.screenshot.empty();
  if (options.screenshot.empty()) restore_window_layout(window, layout);
  restore_window_theme(window, layout);
  restore_history_span(window, layout);
  if (options.dark) window.set_dark(true);
  window.on_theme_chosen = [&layout, saves](bool dark) {
    if (saves) save_window_theme(dark, layout);
  };
  window.show();
  if (options.demo) session.connect(korvid->cfg, korvid->cnc);
  if (options.corrections) korvid->corrections.connect(*options.corrections, false);
  if (!options.capture.empty()) korvid->session.open_capture(QString::fromStdString(options.capture));
  for (const sheet_id_t sheet : options.sheets) {
    if (sheet == sheet_id_t::details)
      window.sheets().toggle_fix_details();
    else
      window.sheets().show(sheet, true);
  }

  int status = 0;
  if (!options.screenshot.empty()) {
    QTimer::singleShot(static_cast<int>(options.after_s * 1000), &app, [&] {
      QWidget& shown = window.sheets().shown(sheet_id_t::settings) ? static_cast<QWidget&>(window.settings_dialog())
                                                                   : static_cast<QWidget&>(window);
      if (!shown.grab().save(QString::fromStdString(options.screenshot), "PNG")) {
        std::fprintf(stderr, "korvid: cannot write '%s'\n", options.screenshot.c_str());
        status = 1;
      }
      app.quit();
    });
  }
  // Ctrl-C in the terminal or a SIGTERM quits as the window's own Quit does: the links close.
  stop_signal_watch_t stop_watch(app);
  const int loop = app.exec();
  if (saves) {
    save_window_layout(window, layout);
    save_history_span(window, layout);
  }
  // Threads waiting for the main thread give up from here on; then the links close.
  queue.close();
  korvid->cnc.disconnect();
  korvid.reset();
  return status != 0 ? status : loop;
}

#include "ui/window_layout.h"

#include <QSettings>

#include "ui/main_window.h"
#include "ui/sky_history_view.h"

namespace {
const QString geometry_key = QStringLiteral("window/geometry");
const QString state_key = QStringLiteral("window/state");
const QString dark_key = QStringLiteral("window/dark");
const QString history_key = QStringLiteral("window/history_minutes");
constexpr int layout_version = 1;  // raised when the docks change in a way an old layout cannot hold
}  // namespace

void restore_window_layout(main_window_t& window, const QSettings& settings) {
  window.restoreGeometry(settings.value(geometry_key).toByteArray());
  window.restoreState(settings.value(state_key).toByteArray(), layout_version);
}

void save_window_layout(const main_window_t& window, QSettings& settings) {
  settings.setValue(geometry_key, window.saveGeometry());
  settings.setValue(state_key, window.saveState(layout_version));
}

// INI files keep no types: a bool comes back as the text "true" or "false".
void restore_window_theme(main_window_t& window, const QSettings& settings) {
  const QString dark = settings.value(dark_key).toString();
  if (dark == "true" || dark == "false") window.set_dark(dark == "true");
}

void save_window_theme(bool dark, QSettings& settings) {
  settings.setValue(dark_key, dark ? "true" : "false");
}

void restore_history_span(main_window_t& window, const QSettings& settings) {
  bool number = false;
  const int minutes = settings.value(history_key).toString().toInt(&number);
  if (number) window.sky_history().set_minutes(minutes);
}

void save_history_span(const main_window_t& window, QSettings& settings) {
  settings.setValue(history_key, window.sky_history().minutes());
}

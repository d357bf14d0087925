#include "ui/window_layout.h"

#include <QSettings>

#include "ui/main_window.h"

namespace {
const QString geometry_key = QStringLiteral("window/geometry");
const QString state_key = QStringLiteral("window/state");
const QString dark_key = QStringLiteral("window/dark");
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

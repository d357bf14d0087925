#pragma once

class QSettings;
class main_window_t;

// The window as the user left it: its geometry, where its docks stand and which are open, kept in
// the settings under "window/". A missing or unreadable entry leaves the window as it is.
void restore_window_layout(main_window_t& window, const QSettings& settings);
void save_window_layout(const main_window_t& window, QSettings& settings);

// The theme the user chose in the View menu, if he chose one: "window/dark".
void restore_window_theme(main_window_t& window, const QSettings& settings);
void save_window_theme(bool dark, QSettings& settings);

// The span of the history charts the user chose, in minutes: "window/history_minutes".
void restore_history_span(main_window_t& window, const QSettings& settings);
void save_history_span(const main_window_t& window, QSettings& settings);

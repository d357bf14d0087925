#pragma once

#include <QMainWindow>
#include <array>
#include <functional>
#include <vector>

#include "ui/open_sheets.h"
#include "ui/redraw.h"

class ContentView;
class config_connection_view;
class gnss_sky_panel;
class sky_history_view;
class QAction;
class QActionGroup;
class QDialog;
class QDockWidget;
class QMenu;
class config_connection_t;
class connection_t;
class link_meter_t;
class link_status_bar_t;
class main_queue_t;
class map_cfg_t;
class tile_map_widget_t;

// The desktop window: the main screen (the summary rows over the map) in the middle, the panels
// as docks beside or below it, the connection settings as a dialog, a menu bar with the usual
// shortcuts, and the status bar. Which panels are open is the model open_sheets_t; the docks and
// the dialog follow it, and it follows them when the user closes one.
class main_window_t final : public QMainWindow {
public:
  main_window_t(config_connection_t& cfg, connection_t& cnc, map_cfg_t& map_cfg, tile_map_widget_t& map,
                main_queue_t& queue, const link_meter_t& meter, QWidget* parent = nullptr);
  ~main_window_t() override;

  // Adds a panel as a dock: closable, floatable and tabbable, listed in the View menu with
  // Ctrl+key (1 to 9; 0: no shortcut), its place and visibility kept with the window's layout.
  // name identifies it in the saved layout. Other panels plug in with one call each.
  QDockWidget* add_dock(const QString& name, const QString& title, QWidget* content, int key,
                        Qt::DockWidgetArea area = Qt::RightDockWidgetArea);
  // Makes a dock added from outside one of the panels that open_sheets_t opens and closes.
  void bind_sheet(sheet_id_t sheet, QDockWidget* dock) { bind(sheet, dock); }
  // Adds a kind of link to the Connection menu: chosen tells whether the settings use it, choose
  // switches the settings to it.
  void add_link_kind(const QString& title, std::function<bool()> chosen, std::function<void()> choose);

  ContentView& content() const { return *content_; }
  open_sheets_t& sheets() { return sheets_; }
  link_status_bar_t& status() const { return *status_; }
  QDockWidget* dock(sheet_id_t sheet) const;
  QDialog& settings_dialog() const { return *settings_; }
  // The history charts of the Sky dock.
  sky_history_view& sky_history() const;
  config_connection_view& settings_view() const { return *settings_view_; }
  // The Connection menu, for entries that other parts of the program add.
  QMenu& connection_menu() const { return *connection_menu_; }
  // The action of a menu entry by its text without "&", for tests and the end-to-end run.
  QAction* action(const QString& text) const;

  // The dark theme: set by --dark, by the View menu, or by the desktop's own palette.
  bool dark() const;
  void set_dark(bool dark);
  // Called when the user switches the theme from the menu, to remember the choice.
  std::function<void(bool)> on_theme_chosen;

protected:
  void changeEvent(QEvent* event) override;

private:
  void build_menus();
  void bind(sheet_id_t sheet, QDockWidget* dock);
  void refresh();

  config_connection_t& cfg_;
  connection_t& cnc_;
  map_cfg_t& map_cfg_;
  open_sheets_t sheets_;
  ContentView* content_;
  link_status_bar_t* status_;
  QDialog* settings_;
  config_connection_view* settings_view_;
  gnss_sky_panel* sky_panel_;
  QMenu* connection_menu_ = nullptr;
  QMenu* view_menu_ = nullptr;
  QAction* docks_end_ = nullptr;  // the View menu's docks come before it
  QAction* kinds_end_ = nullptr;  // the Connection menu's link kinds come before it
  QActionGroup* kinds_ = nullptr;
  QAction* connect_ = nullptr;
  QAction* imagery_ = nullptr;
  QAction* dark_ = nullptr;
  std::vector<std::function<void()>> kind_checks_;
  std::array<QDockWidget*, 6> docks_{};  // by sheet_id_t; none for the settings
  redraw_t redraw_;
};

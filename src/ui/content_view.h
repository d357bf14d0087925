#pragma once

#include <QWidget>

#include "ui/open_sheets.h"
#include "ui/redraw.h"
#include "ui/text_runs.h"

class config_connection_t;
class connection_t;
class map_cfg_t;
class main_queue_t;
class map_panel_t;
class round_button_t;
class tile_map_widget_t;

// The main screen: the fix summary in rows of text over the map panel. The status button connects
// and disconnects; the time opens the log, the fix the satellites and details, the sliders the
// settings. The rows are arranged for a tall (portrait) or a wide (landscape) screen, decided again
// on every resize.
class ContentView final : public QWidget {
public:
  static constexpr double size_font = 14.0;
  static constexpr double size_padding_u = 4.0;
  static constexpr double size_padding_h = 12.0;
  static constexpr double size_padding_v = 16.0;

  ContentView(config_connection_t& cfg, connection_t& cnc, map_cfg_t& map_cfg, tile_map_widget_t& map,
              main_queue_t& queue, open_sheets_t& sheets, QWidget* parent = nullptr);
  ~ContentView() override;

  // The connect-or-disconnect action of the status button, also used by the settings sheet.
  void connect_or_disconnect();

  // Which panels are open beside the screen.
  open_sheets_t& sheets() { return sheets_; }
  bool portrait() const { return portrait_; }
  int refreshes() const { return redraw_.refreshes(); }

  // The screen's parts, for tests and screenshots.
  text_runs_t* time_date_button() const { return time_date_; }
  text_runs_t* status_button() const { return status_; }
  text_runs_t* fix_button() const { return fix_; }
  text_runs_t* hdop_label() const { return hdop_; }
  text_runs_t* speed_label() const { return speed_; }
  text_runs_t* sea_label() const { return sea_; }
  text_runs_t* latitude_label() const { return lat_; }
  text_runs_t* longitude_label() const { return lon_; }
  text_runs_t* altitude_label() const { return alt_; }
  round_button_t* reset_button() const { return reset_; }
  map_panel_t* map_panel() const { return map_panel_; }
  // The summary rows as the layout holds them, each a list of its items' accessible names.
  QList<QStringList> rows() const;

protected:
  void resizeEvent(QResizeEvent* event) override;
  void changeEvent(QEvent* event) override;

private:
  void build_rows();
  void refresh();

  config_connection_t& cfg_;
  connection_t& cnc_;
  map_cfg_t& map_cfg_;
  open_sheets_t& sheets_;
  bool portrait_;
  redraw_t redraw_;

  QWidget* summary_;
  text_runs_t* time_date_;
  text_runs_t* status_;
  text_runs_t* fix_;
  text_runs_t* hdop_;
  text_runs_t* speed_;
  text_runs_t* sea_;
  text_runs_t* lat_;
  text_runs_t* lon_;
  text_runs_t* alt_;
  round_button_t* reset_;
  map_panel_t* map_panel_;
};

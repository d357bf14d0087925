#pragma once

#include <QWidget>
#include <string>

#include "ui/redraw.h"

class QLabel;
class QPlainTextEdit;
class QPushButton;
class connection_t;
class open_sheets_t;

// The log of received lines with its header: the title, a "binary" mark while the stream carries
// UBX records, the filter switch (log every sentence or only GGA), "Clear" (empties the log and
// restarts the message counters) and "Close" (the window's Log entry has the backquote key).
class gps_log_view final : public QWidget {
public:
  static constexpr double header_font_size = 24.0;  // relative to the platform's font (font_size.h)
  static constexpr int padding = 8;                 // points around the header items and below the log
  static constexpr double text_font_size = 11.0;
  static constexpr double binary_font_size = 13.0;  // UBX record texts are short: shown larger

  gps_log_view(connection_t& cnc, open_sheets_t& sheets, QWidget* parent = nullptr);

  const QLabel& title_label() const { return *title_; }
  const QLabel& binary_label() const { return *binary_; }
  QPushButton& filter_button() const { return *filter_; }
  QPushButton& clear_button() const { return *clear_; }
  QPushButton& close_button() const { return *close_; }
  const QPlainTextEdit& log_text() const { return *text_; }

  QSize sizeHint() const override { return {640, 480}; }

protected:
  void changeEvent(QEvent* event) override;
  void showEvent(QShowEvent* event) override;

private:
  void refresh();
  void show_lines();
  void toggle_filter();

  connection_t& cnc_;
  open_sheets_t& sheets_;
  QLabel* title_;
  QLabel* binary_;
  QPushButton* filter_;
  QPushButton* clear_;
  QPushButton* close_;
  QPlainTextEdit* text_;
  std::string shown_;   // the log text last shown
  std::string joined_;  // reused to build the log text
  redraw_t redraw_{this, [this] { refresh(); }};
};

#pragma once

#include <QWidget>
#include <array>

#include "ui/redraw.h"

class QLabel;
class connection_t;
class progress_gauge_t;

// The DOP panel: fix mode, fix type and the number of satellites used; the PRNs used; and PDOP,
// HDOP and VDOP as numbers over bars coloured by their value.
class gps_dop_view final : public QWidget {
public:
  static constexpr int padding = 16;            // points around the panel
  static constexpr int dop_column_width = 200;  // points, centred
  static constexpr int bar_animation_ms = 800;

  enum dop_row_t { pdop, hdop, vdop };

  explicit gps_dop_view(connection_t& gps, QWidget* parent = nullptr);

  const QLabel& fix_mode_label() const { return *fix_mode_; }
  const QLabel& fix_type_label() const { return *fix_type_; }
  const QLabel& used_label() const { return *used_; }
  const QLabel& prn_label() const { return *prns_; }
  const QLabel& dop_value_label(dop_row_t row) const { return *dop_rows_[row].value; }
  const progress_gauge_t& dop_gauge(dop_row_t row) const { return *dop_rows_[row].gauge; }

protected:
  void changeEvent(QEvent* event) override;

private:
  struct dop_widgets_t {
    QLabel* value = nullptr;
    progress_gauge_t* gauge = nullptr;
  };
  void refresh();

  connection_t& gps_;
  QLabel* fix_mode_;
  QLabel* fix_type_;
  QLabel* used_;
  QLabel* prns_;
  std::array<dop_widgets_t, 3> dop_rows_;
  redraw_t redraw_{this, [this] { refresh(); }};
};

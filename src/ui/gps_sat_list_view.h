#pragma once

#include <QWidget>
#include <cstddef>
#include <cstdint>
#include <map>

#include "ui/redraw.h"

class QLabel;
class QVBoxLayout;
class connection_t;
class progress_gauge_t;

// The satellites in view, one row per satellite in PRN order: its description (PRN, elevation,
// azimuth and SNR in fixed columns) over a thin signal bar of SNR / 99. A satellite that is heard
// and placed is written in the primary colour, any other in the secondary colour.
class gps_sat_list_view final : public QWidget {
public:
  static constexpr double snr_full = 99.0;  // dB-Hz that fill the bar
  static constexpr int bar_animation_ms = 800;
  static constexpr double text_font_size = 13.0;  // relative to the platform's font (font_size.h)

  explicit gps_sat_list_view(connection_t& gps, QWidget* parent = nullptr);
  ~gps_sat_list_view() override;

  // The rows as shown, in order.
  std::size_t row_count() const { return rows_.size(); }
  const QLabel& row_label(std::size_t i) const;
  const progress_gauge_t& row_gauge(std::size_t i) const;

protected:
  void changeEvent(QEvent* event) override;

private:
  struct row_t {
    QWidget* box = nullptr;
    QLabel* text = nullptr;
    progress_gauge_t* gauge = nullptr;
  };
  void refresh();
  row_t make_row();
  const row_t& row_at(std::size_t i) const;

  connection_t& gps_;
  QVBoxLayout* layout_;
  std::map<std::uint8_t, row_t> rows_;  // by PRN, so in the order shown
  redraw_t redraw_{this, [this] { refresh(); }};
};

#pragma once

#include <QWidget>

#include "ui/redraw.h"

class QComboBox;
class gnss_sky_t;

// History charts of the sky over the last 1, 10 or 60 minutes (10 at first), a sample a second:
// the satellites in view (dashed) and used (solid) of each system, HDOP and PDOP, and the mean
// C/N0 of the four strongest signals. Each chart has its title, its legend and a value scale; the
// time runs to "now" on the right. The charts repaint when a sample comes, once a second, however
// often the sky changes.
class sky_history_view final : public QWidget {
public:
  static constexpr int span_minutes[] = {1, 10, 60};

  explicit sky_history_view(gnss_sky_t& sky, QWidget* parent = nullptr);

  // The span shown, in seconds; the selector sets it.
  double span_s() const;
  // The span in minutes, and a span chosen by its minutes: false, and nothing changed, for one the
  // selector does not offer.
  int minutes() const;
  bool set_minutes(int minutes);
  QComboBox* span_selector() const { return span_; }
  // The chart area: three charts stacked.
  QWidget* charts() const { return charts_; }
  // How often the charts were painted.
  int paints() const;

  QSize sizeHint() const override { return {640, 460}; }

private:
  void refresh();

  gnss_sky_t& sky_;
  QComboBox* span_;
  QWidget* charts_;
  std::size_t samples_seen_ = 0;
  double newest_seen_ = -1.0;
  redraw_t redraw_{this, [this] { refresh(); }};
};

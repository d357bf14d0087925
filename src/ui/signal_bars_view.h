#pragma once

#include <QRectF>
#include <QString>
#include <QWidget>
#include <vector>

#include "gnss/sky_table.h"
#include "ui/redraw.h"

class gnss_sky_t;

// The C/N0 of every signal of every satellite as bars, grouped by system, on a scale of 0 to
// 55 dB-Hz with the usual bands behind them: below 20 weak, 20 to 35 usable, above 35 good. A
// satellite's bars stand together with its number under them, in its system's colour: filled when
// it is used in the fix, outlined when not; a band other than the system's first is hatched.
// Hovering over a bar names the satellite and the signal.
class signal_bars_view final : public QWidget {
public:
  static constexpr double cn0_top = 55.0;     // dB-Hz at the top of the scale
  static constexpr double weak_below = 20.0;  // dB-Hz
  static constexpr double good_above = 35.0;  // dB-Hz

  // One bar as drawn.
  struct bar_t {
    sky_key_t key;
    gnss_signal_t signal = 0;
    int cn0 = 0;
    bool used = false;
    QRectF rect;  // the whole column the bar may fill, from 0 to the top of the scale
  };

  explicit signal_bars_view(gnss_sky_t& sky, QWidget* parent = nullptr);

  // The plot area and the bars laid out in it, for the current size.
  QRectF plot_area() const;
  std::vector<bar_t> bars() const;
  // The height in widget coordinates of a C/N0.
  double y_of(double cn0) const;

  QSize sizeHint() const override { return {640, 260}; }
  QSize minimumSizeHint() const override { return {300, 180}; }

protected:
  void paintEvent(QPaintEvent* event) override;
  bool event(QEvent* event) override;

private:
  void paint_scale(QPainter& painter) const;
  void paint_bars(QPainter& painter, const std::vector<bar_t>& bars) const;

  gnss_sky_t& sky_;
  redraw_t redraw_{this, [this] { update(); }};
};

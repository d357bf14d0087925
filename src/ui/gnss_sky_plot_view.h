#pragma once

#include <QPointF>
#include <QRectF>
#include <QString>
#include <QWidget>
#include <vector>

#include "gnss/sky_table.h"
#include "ui/redraw.h"

class gnss_sky_t;

// The sky plot of every system: the zenith in the centre and the horizon on the rim, rings at 30
// and 60 degrees labelled with their elevation, the compass letters outside the rim where no
// satellite can hide them. Each satellite is its system's marker, filled when used in the fix and
// outlined when not, with its number beside it where it is free to read; a legend below names the systems with their
// used and visible counts. Hovering over a satellite shows its system, number, signals, elevation and azimuth. Fits a
// dock or a sheet: it scales to the space it is given.
class gnss_sky_plot_view final : public QWidget {
public:
  static constexpr double marker_size = 12.0;  // points
  static constexpr int legend_height = 44;     // points below the plot

  explicit gnss_sky_plot_view(gnss_sky_t& sky, QWidget* parent = nullptr);

  // The plot's centre and the horizon's radius in widget coordinates.
  QPointF centre() const;
  double radius() const;
  // Where a satellite is drawn, relative to the widget.
  QPointF position(const sky_satellite_t& satellite) const;
  // The tooltip text of the satellite at (near) a point, empty for none.
  QString text_at(QPointF point) const;
  // Each placed satellite's number and where it stands: beside its marker on the right, the left,
  // above or below, the first of these that covers no marker and no number placed before it (the
  // right when none is free).
  struct number_label_t {
    QString text;
    QRectF box;
  };
  std::vector<number_label_t> number_labels() const;

  QSize sizeHint() const override { return {400, 440}; }
  QSize minimumSizeHint() const override { return {240, 280}; }

protected:
  void paintEvent(QPaintEvent* event) override;
  bool event(QEvent* event) override;

private:
  void paint_guides(QPainter& painter) const;
  void paint_satellites(QPainter& painter) const;
  void paint_legend(QPainter& painter) const;

  gnss_sky_t& sky_;
  redraw_t redraw_{this, [this] { update(); }};
};

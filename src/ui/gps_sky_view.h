#pragma once

#include <QFont>
#include <QPointF>
#include <QString>
#include <QVariantAnimation>
#include <QWidget>

#include "ui/redraw.h"

class connection_t;
class gps_heading_t;
struct gps_gpgsv_satellite_t;

// The satellite pictograph and a count after it: "🛰 12".
QString satellite_count_text(unsigned count);
// The font with a colour-emoji family behind it, so the satellite pictograph renders whatever the
// system font is.
QFont with_emoji_fallback(QFont font);

// The sky plot: every satellite in view placed by elevation and azimuth on a square plot that
// turns with the compass heading so that its north stays north. The distance from the centre is
// radius * sin(elevation): a satellite at the zenith sits on the rim, one on the horizon at the
// centre. The cardinal letters stand outside the rim, where no satellite can cover them; the rings
// are labelled with their elevation. A click on the plot does nothing: the panel it stands in closes by its own
// controls.
class gps_sky_view final : public QWidget {
public:
  static constexpr int plot_size = 352;         // points, square
  static constexpr double plot_radius = 176.0;  // points from the centre to the rim
  static constexpr int letter_margin = 24;      // points around the plot for the cardinal letters
  static constexpr int side = plot_size + 2 * letter_margin;
  static constexpr double dot_size = 8.0;           // points
  static constexpr double letter_padding = 4.0;     // points around each cardinal letter
  static constexpr int rotation_duration_ms = 400;  // ease-in-out turn to a new heading

  gps_sky_view(connection_t& gps, gps_heading_t& compass, QWidget* parent = nullptr);

  // The centre of a satellite's dot relative to the plot centre before the plot is turned
  // (x to the right, y downward).
  static QPointF dot_offset(const gps_gpgsv_satellite_t& satellite);
  // The plot's rotation in degrees, clockwise on screen: -heading. drawn_rotation() is the
  // rotation painted right now, which moves towards rotation() while the turn animates.
  double rotation() const { return target_rotation_; }
  double drawn_rotation() const { return drawn_rotation_; }
  // The satellites-in-view label.
  QString count_text() const { return count_text_; }

  QSize sizeHint() const override { return {side, side}; }
  QSize minimumSizeHint() const override { return sizeHint(); }

protected:
  void paintEvent(QPaintEvent* event) override;
  void changeEvent(QEvent* event) override;

private:
  void refresh();
  QPointF plot_centre() const;
  void paint_guides(QPainter& painter) const;
  void paint_letters(QPainter& painter) const;
  void paint_ring_labels(QPainter& painter) const;
  void paint_satellites(QPainter& painter) const;

  connection_t& gps_;
  gps_heading_t& compass_;
  QString count_text_;
  double target_rotation_ = 0.0;
  double drawn_rotation_ = 0.0;
  QVariantAnimation turn_;
  redraw_t redraw_{this, [this] { refresh(); }};
};

#pragma once

#include <QColor>
#include <QPixmap>
#include <QString>

// The screens' pictograms, drawn from the program's own SVGs in the colour asked for:
// "clear" (a waste bin), "sliders", "location" and "location_fill" (the location arrow in a
// circle) and "map_fill" (a folded map).
QPixmap icon_pixmap(const QString& name, const QColor& colour, int size, qreal device_pixel_ratio = 1.0);

// One control's pictogram, drawn again only when its name, colour, size or pixel ratio changes:
// controls repaint on every animation frame, and rendering an SVG each time would dominate.
class icon_cache_t {
public:
  const QPixmap& get(const QString& name, const QColor& colour, int size, qreal device_pixel_ratio);

private:
  QString name_;
  QColor colour_;
  int size_ = 0;
  qreal ratio_ = 0.0;
  QPixmap pixmap_;
};

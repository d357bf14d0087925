#pragma once

#include <QColor>
#include <QPixmap>
#include <QString>

// The screens' pictograms, drawn from the program's own SVGs in the colour asked for:
// "reset" (circular arrows around an exclamation mark), "sliders", "location" and
// "location_fill" (the location arrow in a circle), "map_fill" (a folded map) and
// "arrow_up_fill" (an up arrow in a filled circle).
QPixmap icon_pixmap(const QString& name, const QColor& colour, int size, qreal device_pixel_ratio = 1.0);

#pragma once

#include <QColor>
#include <QPalette>
#include <QPointF>
#include <QString>

#include "gnss/gnss_ids.h"

class QPainter;

// How the views of every system tell the systems apart: by a shape, which carries the system for
// any eye, and by a colour from a palette that colour-blind readers can tell apart, which repeats it.

// The system's colour, lighter on a dark theme.
QColor system_colour(gnss_system_t system, const QPalette& palette);
// The system's marker centred on a point, `size` points across: filled, or outlined in the colour.
void draw_system_marker(QPainter& painter, gnss_system_t system, QPointF centre, double size, bool filled,
                        const QPalette& palette);
QString system_text(gnss_system_t system);

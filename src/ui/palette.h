#pragma once

#include <QColor>
#include <QPalette>

#include "core/colour.h"

class QPainter;
class QRectF;
class QWidget;

// The semantic colours of the models as the current theme draws them: labels take the palette's
// text colour (dimmed for secondary and tertiary), the named colours their light or dark variant.
// Every colour that writes text is made readable on the window's background: where a colour
// would fall short of a contrast of min_text_contrast, it is darkened (light theme) or lightened
// (dark theme) until it reaches it, and returned opaque.
bool is_dark(const QPalette& palette);
// The dark theme's palette, for the Fusion style.
QPalette dark_palette();
QColor colour_of(colour_t c, const QPalette& palette);

// The WCAG contrast ratio of a colour drawn over a background (1 to 21); the colour's alpha is
// composed over the background first.
double contrast_ratio(const QColor& colour, const QColor& background);
inline constexpr double min_text_contrast = 4.5;

// The keyboard focus on a round control: a ring in the highlight colour just inside its edge.
void draw_focus_ring(QPainter& painter, const QRectF& bounds, const QPalette& palette);

// Draws a widget's text in the colour: its foreground role (WindowText for a label, ButtonText for
// a button, Text for a line edit). A widget that has the colour already is left alone.
void set_text_colour(QWidget& widget, const QColor& colour);

#pragma once

#include <QColor>
#include <QPalette>

#include "core/colour.h"

class QWidget;

// The semantic colours of the models as the current theme draws them: labels take the palette's
// text colour (dimmed for secondary and tertiary), the named colours their light or dark variant.
bool is_dark(const QPalette& palette);
// The dark theme's palette, for the Fusion style.
QPalette dark_palette();
QColor colour_of(colour_t c, const QPalette& palette);

// Draws a widget's text in the colour: its foreground role (WindowText for a label, ButtonText for
// a button, Text for a line edit). A widget that has the colour already is left alone.
void set_text_colour(QWidget& widget, const QColor& colour);

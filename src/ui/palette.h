#pragma once

#include <QColor>
#include <QPalette>

#include "core/colour.h"

// The semantic colours of the models as the current theme draws them: labels take the palette's
// text colour (dimmed for secondary and tertiary), the named colours their light or dark variant.
bool is_dark(const QPalette& palette);
QColor colour_of(colour_t c, const QPalette& palette);

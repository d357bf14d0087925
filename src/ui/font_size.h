#pragma once

#include <QFont>

// The screens give their text sizes in points of a layout made for a 13-pixel body text. On a
// desktop they are drawn relative to the platform's font, so a user who enlarged the desktop's
// font gets every text of the window enlarged alike.
inline constexpr double layout_body_size = 13.0;

// The font at size / layout_body_size of its own size.
QFont relative_font(QFont font, double size);
// The platform's fixed-pitch font at the size relative_font gives the platform font.
QFont relative_fixed_font(const QFont& platform, double size);

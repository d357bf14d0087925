#include "ui/font_size.h"

#include <QFontDatabase>
#include <algorithm>
#include <cmath>

QFont relative_font(QFont font, double size) {
  const double factor = size / layout_body_size;
  if (font.pointSizeF() > 0.0)
    font.setPointSizeF(font.pointSizeF() * factor);
  else
    font.setPixelSize(std::max(1, static_cast<int>(std::lround(font.pixelSize() * factor))));
  return font;
}

QFont relative_fixed_font(const QFont& platform, double size) {
  QFont mono = QFontDatabase::systemFont(QFontDatabase::FixedFont);
  if (platform.pointSizeF() > 0.0)
    mono.setPointSizeF(platform.pointSizeF());
  else
    mono.setPixelSize(platform.pixelSize());
  return relative_font(mono, size);
}

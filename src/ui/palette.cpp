#include "ui/palette.h"

#include <QPainter>
#include <QWidget>
#include <algorithm>
#include <cmath>

namespace {

QColor with_alpha(QColor c, double alpha) {
  c.setAlphaF(static_cast<float>(alpha));
  return c;
}

QColor over(const QColor& c, const QColor& background) {
  const double a = c.alphaF();
  const auto mix = [a](double top, double bottom) { return top * a + bottom * (1.0 - a); };
  return QColor::fromRgbF(static_cast<float>(mix(c.redF(), background.redF())),
                          static_cast<float>(mix(c.greenF(), background.greenF())),
                          static_cast<float>(mix(c.blueF(), background.blueF())));
}

double luminance(const QColor& c) {
  const auto linear = [](double v) { return v <= 0.04045 ? v / 12.92 : std::pow((v + 0.055) / 1.055, 2.4); };
  return 0.2126 * linear(c.redF()) + 0.7152 * linear(c.greenF()) + 0.0722 * linear(c.blueF());
}

// Moves the colour towards black or white in small steps until it can be read on the background.
QColor readable(const QColor& c, const QColor& background) {
  constexpr double step = 0.05;
  const QColor extreme = luminance(background) > 0.18 ? Qt::black : Qt::white;
  QColor shown = over(c, background);
  for (double t = step; contrast_ratio(shown, background) < min_text_contrast && t <= 1.0; t += step)
    shown = over(with_alpha(extreme, t), over(c, background));
  return shown;
}

// The colour as the platform names it, before any adjustment for contrast.
QColor named_colour(colour_t c, const QPalette& palette) {
  const bool dark = is_dark(palette);
  const QColor label = palette.color(QPalette::WindowText);
  switch (c) {
    case colour_t::primary:
      return label;
    case colour_t::secondary:
      return with_alpha(label, 0.6);
    case colour_t::tertiary:
      return with_alpha(label, 0.3);
    case colour_t::accent:
      return palette.color(QPalette::Highlight);
    case colour_t::blue:
      return dark ? QColor(10, 132, 255) : QColor(0, 122, 255);
    case colour_t::green:
      return dark ? QColor(48, 209, 88) : QColor(52, 199, 89);
    case colour_t::orange:
      return dark ? QColor(255, 159, 10) : QColor(255, 149, 0);
    case colour_t::red:
      return dark ? QColor(255, 69, 58) : QColor(255, 59, 48);
    case colour_t::purple:
      return dark ? QColor(191, 90, 242) : QColor(175, 82, 222);
    case colour_t::fill:
      return dark ? QColor(120, 120, 128, 92) : QColor(120, 120, 128, 51);
    case colour_t::background:
      return palette.color(QPalette::Window);
  }
  return label;
}

}  // namespace

bool is_dark(const QPalette& palette) {
  return palette.color(QPalette::Window).lightnessF() < 0.5;
}

QPalette dark_palette() {
  QPalette p;
  p.setColor(QPalette::Window, QColor(28, 28, 30));
  p.setColor(QPalette::WindowText, Qt::white);
  p.setColor(QPalette::Base, QColor(44, 44, 46));
  p.setColor(QPalette::AlternateBase, QColor(58, 58, 60));
  p.setColor(QPalette::Text, Qt::white);
  p.setColor(QPalette::Button, QColor(44, 44, 46));
  p.setColor(QPalette::ButtonText, Qt::white);
  p.setColor(QPalette::Highlight, QColor(10, 132, 255));
  p.setColor(QPalette::HighlightedText, Qt::white);
  p.setColor(QPalette::PlaceholderText, QColor(142, 142, 147));
  p.setColor(QPalette::ToolTipBase, QColor(58, 58, 60));
  p.setColor(QPalette::ToolTipText, Qt::white);
  return p;
}

double contrast_ratio(const QColor& colour, const QColor& background) {
  const double a = luminance(over(colour, background));
  const double b = luminance(background);
  return (std::max(a, b) + 0.05) / (std::min(a, b) + 0.05);
}

QColor colour_of(colour_t c, const QPalette& palette) {
  const QColor named = named_colour(c, palette);
  if (c == colour_t::fill || c == colour_t::background || c == colour_t::primary) return named;
  return readable(named, palette.color(QPalette::Window));
}

void draw_focus_ring(QPainter& painter, const QRectF& bounds, const QPalette& palette) {
  constexpr double width = 2.0;
  const QRectF ring = bounds.adjusted(width / 2, width / 2, -width / 2, -width / 2);
  painter.save();
  painter.setPen(QPen(palette.color(QPalette::Highlight), width));
  painter.setBrush(Qt::NoBrush);
  painter.drawRoundedRect(ring, ring.height() / 2, ring.height() / 2);
  painter.restore();
}

void set_text_colour(QWidget& widget, const QColor& colour) {
  const QPalette::ColorRole role = widget.foregroundRole();
  QPalette palette = widget.palette();
  if (palette.color(role) == colour) return;
  palette.setColor(role, colour);
  widget.setPalette(palette);
}

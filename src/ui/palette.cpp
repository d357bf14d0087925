#include "ui/palette.h"

#include <QWidget>

namespace {

QColor with_alpha(QColor c, double alpha) {
  c.setAlphaF(static_cast<float>(alpha));
  return c;
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

QColor colour_of(colour_t c, const QPalette& palette) {
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

void set_text_colour(QWidget& widget, const QColor& colour) {
  const QPalette::ColorRole role = widget.foregroundRole();
  QPalette palette = widget.palette();
  if (palette.color(role) == colour) return;
  palette.setColor(role, colour);
  widget.setPalette(palette);
}

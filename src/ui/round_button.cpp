#include "ui/round_button.h"

#include <QPainter>

#include "ui/icons.h"
#include "ui/palette.h"

namespace {
constexpr int padding = 8;  // around the pictogram
}

round_button_t::round_button_t(const QString& icon, int icon_size, colour_t colour, bool flat, QWidget* parent)
    : QAbstractButton(parent), icon_name_(icon), icon_size_(icon_size), colour_(colour), flat_(flat) {
  setCursor(Qt::PointingHandCursor);
  setFocusPolicy(Qt::TabFocus);
  resize(sizeHint());
}

void round_button_t::set_icon_name(const QString& icon) {
  if (icon == icon_name_) return;
  icon_name_ = icon;
  update();
}

QSize round_button_t::sizeHint() const {
  const int side = icon_size_ + (flat_ ? 0 : 2 * padding);
  return {side, side};
}

void round_button_t::paintEvent(QPaintEvent*) {
  QPainter p(this);
  p.setRenderHint(QPainter::Antialiasing);
  if (!flat_) {
    const QRectF r = QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5);
    p.setPen(QPen(QColor(0, 0, 0, 30), 1));
    p.setBrush(colour_of(colour_t::background, palette()));
    p.drawRoundedRect(r, r.height() / 2, r.height() / 2);
  }
  if (hasFocus()) draw_focus_ring(p, QRectF(rect()), palette());
  if (isDown()) p.setOpacity(0.5);
  const QPixmap& icon = icon_.get(icon_name_, colour_of(colour_, palette()), icon_size_, devicePixelRatioF());
  p.drawPixmap(QPointF((width() - icon_size_) / 2.0, (height() - icon_size_) / 2.0), icon);
}

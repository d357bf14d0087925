#include "ui/course_arrow.h"

#include <QPainter>
#include <cmath>

#include "ui/icons.h"
#include "ui/palette.h"

double course_angle(const motion_history_t& bearings) {
  double sum = 0.0;
  double weights = 0.0;
  for (std::size_t k = 0; k < bearings.size(); ++k) {
    const double w = std::sqrt(std::pow(0.5, static_cast<double>(k)));
    sum += w * bearings[k];
    weights += w;
  }
  return weights > 0.0 ? sum / weights : std::nan("");
}

course_arrow_t::course_arrow_t(QWidget* parent) : QAbstractButton(parent) {
  setCursor(Qt::PointingHandCursor);
  setFocusPolicy(Qt::TabFocus);
  resize(sizeHint());
  animation_.setDuration(animation_ms);
  animation_.setEasingCurve(QEasingCurve::InOutQuad);
  QObject::connect(&animation_, &QVariantAnimation::valueChanged, this, [this](const QVariant& v) {
    drawn_ = v.toDouble();
    // At 10 fixes a second the arrow is nearly always easing; repainting it (and the map under
    // it) on every animation frame for a turn too small to see would cost more than the rest of
    // the window together.
    if (std::abs(drawn_ - painted_) >= repaint_step_degrees || drawn_ == target_) update();
  });
}

void course_arrow_t::set_angle(double radians) {
  const double degrees = std::isfinite(radians) ? radians * 180.0 / 3.14159265358979323846 : 0.0;
  if (shown_once_ && degrees == target_) return;
  target_ = degrees;
  if (shown_once_ && isVisible()) {
    animation_.stop();
    animation_.setStartValue(drawn_);
    animation_.setEndValue(degrees);
    animation_.start();
  } else {
    drawn_ = degrees;
    update();
  }
  shown_once_ = true;
}

void course_arrow_t::paintEvent(QPaintEvent*) {
  QPainter p(this);
  p.setRenderHint(QPainter::Antialiasing);
  p.setRenderHint(QPainter::SmoothPixmapTransform);
  const QRectF r = QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5);
  p.setPen(QPen(QColor(0, 0, 0, 30), 1));
  p.setBrush(colour_of(colour_t::background, palette()));
  p.drawRoundedRect(r, r.height() / 2, r.height() / 2);
  if (isDown()) p.setOpacity(0.5);
  p.translate(width() / 2.0, height() / 2.0);
  p.rotate(drawn_);  // clockwise on screen
  painted_ = drawn_;
  const QPixmap& icon = icon_.get("arrow_up_fill", colour_of(colour_t::secondary, palette()), icon_size, devicePixelRatioF());
  p.drawPixmap(QPointF(-icon_size / 2.0, -icon_size / 2.0), icon);
}

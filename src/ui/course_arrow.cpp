#include "ui/course_arrow.h"

#include <QPainter>
#include <cmath>

#include "ui/palette.h"

// Angles are averaged as unit vectors: the plain mean of 179 and -179 degrees is 0, north, where a
// receiver heading west is going 180.
double course_angle(const motion_history_t& bearings) {
  double east = 0.0;
  double north = 0.0;
  for (std::size_t k = 0; k < bearings.size(); ++k) {
    const double w = std::sqrt(std::pow(0.5, static_cast<double>(k)));
    east += w * std::sin(bearings[k]);
    north += w * std::cos(bearings[k]);
  }
  return bearings.empty() ? std::nan("") : std::atan2(east, north);
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
  if (hasFocus()) draw_focus_ring(p, r, palette());
  if (isDown()) p.setOpacity(0.5);
  p.translate(width() / 2.0, height() / 2.0);
  p.rotate(drawn_);  // clockwise on screen
  painted_ = drawn_;
  // The disc in the secondary colour, the arrow cut out of it in the background colour: light on
  // dark in one theme, dark on light in the other, never white on a light disc.
  const double scale = icon_size / 24.0;  // the arrow is drawn on a 24-point grid
  p.scale(scale, scale);
  p.setPen(Qt::NoPen);
  p.setBrush(colour_of(colour_t::secondary, palette()));
  p.drawEllipse(QPointF(), 11.0, 11.0);
  QPen stroke(colour_of(colour_t::background, palette()), 2.2, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin);
  p.setPen(stroke);
  p.drawLine(QPointF(0, 6), QPointF(0, -5.5));
  p.drawPolyline(QPolygonF({QPointF(-5.2, -0.4), QPointF(0, -5.6), QPointF(5.2, -0.4)}));
}

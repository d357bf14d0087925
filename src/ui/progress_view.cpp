#include "ui/progress_view.h"

#include <QPainter>
#include <QPainterPath>
#include <cmath>

float clamped_progress(float progress) {
  if (progress > 1.0f) return 1.0f;
  if (progress < 0.0f) return 0.0f;
  if (std::isnan(progress)) return 0.0f;
  return progress;
}

progress_gauge_t::progress_gauge_t(QWidget* parent) : QWidget(parent) {
  setAttribute(Qt::WA_TransparentForMouseEvents);
  animation_.setEasingCurve(QEasingCurve::InOutQuad);
  QObject::connect(&animation_, &QVariantAnimation::valueChanged, this, [this](const QVariant& v) {
    drawn_ = v.toDouble();
    update();
  });
}

void progress_gauge_t::show_value(const progress_view_t& value) {
  // Screens hand over a value on every refresh; a gauge repaint also repaints what lies under it
  // (the map), so an unchanged or hidden gauge is not drawn again.
  if (shown_once_ && value == value_) return;
  const bool resized = !shown_once_ || value.width != value_.width || value.height != value_.height;
  const bool was_drawn = shown_once_ && value_.opacity > 0.0;
  const double target = clamped_progress(value.progress);
  value_ = value;
  if (resized) {
    setSizePolicy(value.width ? QSizePolicy::Fixed : QSizePolicy::Expanding, QSizePolicy::Fixed);
    updateGeometry();
  }
  if (value.animation && was_drawn && value.opacity > 0.0 && target != drawn_ && isVisible()) {
    animation_.stop();
    animation_.setDuration(*value.animation);
    animation_.setStartValue(drawn_);
    animation_.setEndValue(target);
    animation_.start();
  } else {
    animation_.stop();
    drawn_ = target;
  }
  shown_once_ = true;
  if (was_drawn || value.opacity > 0.0) update();
}

QSize progress_gauge_t::sizeHint() const {
  const int w = value_.width ? static_cast<int>(std::ceil(*value_.width)) : 0;
  return {w, static_cast<int>(std::ceil(value_.height))};
}

void progress_gauge_t::paintEvent(QPaintEvent*) {
  if (value_.opacity <= 0.0) return;
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setOpacity(value_.opacity);
  const double w = value_.width ? *value_.width : width();
  const double h = value_.height;
  const QRectF frame((width() - w) / 2.0, (height() - h) / 2.0, w, h);
  QPainterPath clip;
  const double r = std::min(value_.corner_radius, h / 2.0);
  clip.addRoundedRect(frame, r, r);
  painter.setClipPath(clip);
  painter.fillRect(frame, value_.track);
  const double filled = frame.width() * drawn_;
  const QRectF bar = value_.reverse ? QRectF(frame.right() - filled, frame.top(), filled, h)
                                    : QRectF(frame.left(), frame.top(), filled, h);
  painter.fillRect(bar, value_.colour);
}

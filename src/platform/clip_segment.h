#pragma once

#include <QPointF>
#include <QRectF>

// Cuts the segment a-b to the part inside the rectangle (Liang-Barsky). Returns false, leaving the
// points as they were, when no part of it is inside. An end inside the rectangle is left exactly as
// it was, so a caller can tell by comparison which end was moved.
inline bool clip_segment(const QRectF& r, QPointF& a, QPointF& b) {
  const double dx = b.x() - a.x();
  const double dy = b.y() - a.y();
  const double p[4] = {-dx, dx, -dy, dy};
  const double q[4] = {a.x() - r.left(), r.right() - a.x(), a.y() - r.top(), r.bottom() - a.y()};
  double t0 = 0.0;
  double t1 = 1.0;
  for (int i = 0; i < 4; ++i) {
    if (p[i] == 0.0) {
      if (q[i] < 0.0) return false;  // parallel to this edge and beyond it
      continue;
    }
    const double t = q[i] / p[i];
    if (p[i] < 0.0) {
      if (t > t1) return false;
      if (t > t0) t0 = t;
    } else {
      if (t < t0) return false;
      if (t < t1) t1 = t;
    }
  }
  const QPointF from = a;
  if (t1 < 1.0) b = from + t1 * QPointF(dx, dy);
  if (t0 > 0.0) a = from + t0 * QPointF(dx, dy);
  return true;
}

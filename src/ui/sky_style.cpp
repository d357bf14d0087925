#include "ui/sky_style.h"

#include <QPainter>
#include <QPainterPath>
#include <QPolygonF>
#include <cmath>
#include <numbers>

#include "ui/palette.h"

namespace {

constexpr int dark_lighter_percent = 135;
constexpr double outline_width = 1.6;  // points, for an outlined marker

// A regular polygon of `corners` corners on a circle of radius r, the first at `start` radians.
QPolygonF regular(QPointF c, double r, int corners, double start) {
  QPolygonF polygon;
  for (int k = 0; k < corners; ++k) {
    const double a = start + 2.0 * std::numbers::pi * k / corners;
    polygon << QPointF(c.x() + r * std::cos(a), c.y() + r * std::sin(a));
  }
  return polygon;
}

}  // namespace

QColor system_colour(gnss_system_t system, const QPalette& palette) {
  // The Okabe-Ito palette, which readers with any common colour-vision deficiency tell apart.
  static const QColor colours[gnss_system_count] = {
      QColor(0x00, 0x72, 0xB2),  // GPS: blue
      QColor(0xD5, 0x5E, 0x00),  // GLONASS: vermilion
      QColor(0x00, 0x9E, 0x73),  // Galileo: bluish green
      QColor(0xE6, 0x9F, 0x00),  // BeiDou: orange
      QColor(0xCC, 0x79, 0xA7),  // QZSS: reddish purple
      QColor(0x56, 0xB4, 0xE9),  // NavIC: sky blue
      QColor(0x88, 0x88, 0x88),  // SBAS: grey
  };
  const QColor c = colours[index_of(system)];
  return is_dark(palette) ? c.lighter(dark_lighter_percent) : c;
}

QString system_text(gnss_system_t system) {
  const auto name = system_name(system);
  return QString::fromLatin1(name.data(), static_cast<int>(name.size()));
}

// GPS a circle, GLONASS a square, Galileo a diamond, BeiDou a triangle pointing up, QZSS one
// pointing down, NavIC a hexagon, SBAS a cross.
void draw_system_marker(QPainter& painter, gnss_system_t system, QPointF c, double size, bool filled,
                        const QPalette& palette) {
  const double r = size / 2.0;
  const double pi = std::numbers::pi;
  QPainterPath path;
  switch (system) {
    case gnss_system_t::gps:
      path.addEllipse(c, r, r);
      break;
    case gnss_system_t::glonass:
      path.addRect(QRectF(c.x() - r * 0.9, c.y() - r * 0.9, r * 1.8, r * 1.8));
      break;
    case gnss_system_t::galileo:
      path.addPolygon(regular(c, r * 1.15, 4, -pi / 2));
      break;
    case gnss_system_t::beidou:
      path.addPolygon(regular(c + QPointF(0, r * 0.15), r * 1.15, 3, -pi / 2));
      break;
    case gnss_system_t::qzss:
      path.addPolygon(regular(c - QPointF(0, r * 0.15), r * 1.15, 3, pi / 2));
      break;
    case gnss_system_t::navic:
      path.addPolygon(regular(c, r * 1.05, 6, 0));
      break;
    case gnss_system_t::sbas: {
      const double arm = r * 0.35;
      path.addRect(QRectF(c.x() - r, c.y() - arm, 2 * r, 2 * arm));
      path.addRect(QRectF(c.x() - arm, c.y() - r, 2 * arm, 2 * r));
      path.setFillRule(Qt::WindingFill);
      path = path.simplified();
      break;
    }
  }
  path.closeSubpath();
  const QColor colour = system_colour(system, palette);
  painter.save();
  if (filled) {
    painter.setPen(Qt::NoPen);
    painter.setBrush(colour);
  } else {
    painter.setPen(QPen(colour, outline_width));
    painter.setBrush(colour_of(colour_t::background, palette));
  }
  painter.drawPath(path);
  painter.restore();
}

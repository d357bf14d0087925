#include "synthetic_tiles.h"

#include <QDir>
#include <QPainter>
#include <QPainterPath>
#include <cmath>

#include "map/map_widget_api.h"

namespace {

constexpr int tile = 256;
constexpr double block = 1 << 9;  // map points between streets: about 75 m at the equator

}  // namespace

QImage synthetic_tile(int z, int x, int y) {
  QImage image(tile, tile, QImage::Format_RGB32);
  image.fill(QColor(242, 239, 233));
  QPainter p(&image);
  p.setRenderHint(QPainter::Antialiasing);
  const double span = map_world_size / (1 << z);  // map points per tile
  const double scale = tile / span;                // pixels per map point
  const double x0 = x * span;
  const double y0 = y * span;
  auto to_px = [&](double mx, double my) { return QPointF((mx - x0) * scale, (my - y0) * scale); };

  // Parks: every seventh block.
  const double b = block * scale;
  if (b >= 6) {
    for (double gx = std::floor(x0 / block) * block; gx < x0 + span; gx += block)
      for (double gy = std::floor(y0 / block) * block; gy < y0 + span; gy += block) {
        const auto i = static_cast<long long>(gx / block) * 31 + static_cast<long long>(gy / block) * 17;
        if (i % 7 == 0) p.fillRect(QRectF(to_px(gx, gy), QSizeF(b, b)).adjusted(b * 0.08, b * 0.08, -b * 0.08, -b * 0.08), QColor(205, 235, 176));
      }
  }
  // The river: a sine wave across the world's middle latitudes.
  QPainterPath river;
  for (int i = 0; i <= 64; ++i) {
    const double mx = x0 + span * i / 64.0;
    const double my = map_world_size * 0.3509 + 3000.0 * std::sin(mx / 9000.0);
    i == 0 ? river.moveTo(to_px(mx, my)) : river.lineTo(to_px(mx, my));
  }
  p.setPen(QPen(QColor(170, 211, 223), std::max(2.0, 900.0 * scale), Qt::SolidLine, Qt::RoundCap));
  p.drawPath(river);
  // Streets: white with a grey casing, once they are wide enough to see.
  const double width = std::max(0.6, 40.0 * scale);
  if (b >= 3) {
    for (const QColor& c : {QColor(210, 205, 196), QColor(255, 255, 255)}) {
      p.setPen(QPen(c, c == Qt::white ? width : width + 1.5));
      for (double gx = std::floor(x0 / block) * block; gx <= x0 + span; gx += block) p.drawLine(to_px(gx, y0), to_px(gx, y0 + span));
      for (double gy = std::floor(y0 / block) * block; gy <= y0 + span; gy += block) p.drawLine(to_px(x0, gy), to_px(x0 + span, gy));
    }
  }
  return image;
}

QString write_synthetic_tiles(const QString& dir, geo_coordinate_t centre, int from_z, int to_z, int reach) {
  const map_point_t c = map_point_for(centre);
  for (int z = from_z; z <= to_z; ++z) {
    const double span = map_world_size / (1 << z);
    const int cx = static_cast<int>(c.x / span);
    const int cy = static_cast<int>(c.y / span);
    for (int x = cx - reach; x <= cx + reach; ++x) {
      QDir().mkpath(QString("%1/%2/%3").arg(dir).arg(z).arg(x));
      for (int y = cy - reach; y <= cy + reach; ++y)
        synthetic_tile(z, x, y).save(QString("%1/%2/%3/%4.png").arg(dir).arg(z).arg(x).arg(y));
    }
  }
  return "file://" + dir + "/{z}/{x}/{y}.png";
}

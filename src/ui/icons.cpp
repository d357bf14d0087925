#include "ui/icons.h"

#include <QFile>
#include <QPainter>
#include <QSvgRenderer>

const QPixmap& icon_cache_t::get(const QString& name, const QColor& colour, int size, qreal device_pixel_ratio) {
  if (pixmap_.isNull() || name != name_ || colour != colour_ || size != size_ || device_pixel_ratio != ratio_) {
    pixmap_ = icon_pixmap(name, colour, size, device_pixel_ratio);
    name_ = name;
    colour_ = colour;
    size_ = size;
    ratio_ = device_pixel_ratio;
  }
  return pixmap_;
}

QPixmap icon_pixmap(const QString& name, const QColor& colour, int size, qreal device_pixel_ratio) {
  QFile file(":/icons/" + name + ".svg");
  QPixmap pixmap(QSize(size, size) * device_pixel_ratio);
  pixmap.setDevicePixelRatio(device_pixel_ratio);
  pixmap.fill(Qt::transparent);
  if (!file.open(QIODevice::ReadOnly)) return pixmap;
  QByteArray svg = file.readAll();
  svg.replace("currentColor", colour.name(QColor::HexRgb).toLatin1());
  QSvgRenderer renderer(svg);
  QPainter painter(&pixmap);
  painter.setOpacity(colour.alphaF());
  renderer.render(&painter, QRectF(0, 0, size, size));
  return pixmap;
}

#include "platform/qt_compass.h"

#include <QCompass>
#include <QSensor>

qt_compass_t::qt_compass_t(gps_heading_t& heading, QObject* parent) : QObject(parent), heading_(heading) {
  if (QSensor::defaultSensorForType(QCompass::sensorType).isEmpty()) return;
  compass_ = new QCompass(this);
  QObject::connect(compass_, &QCompass::readingChanged, this, [this] {
    if (const QCompassReading* r = compass_->reading()) heading_.update(r->azimuth());
  });
  if (!compass_->start()) {
    delete compass_;
    compass_ = nullptr;
  }
}

qt_compass_t::~qt_compass_t() = default;

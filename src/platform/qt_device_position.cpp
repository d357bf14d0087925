#include "platform/qt_device_position.h"

#include <QGeoPositionInfoSource>

namespace {

std::optional<geo_coordinate_t> coordinate_of(const QGeoPositionInfo& info) {
  const auto c = info.coordinate();
  if (!c.isValid()) return std::nullopt;
  return geo_coordinate_t{c.latitude(), c.longitude()};
}

}  // namespace

qt_device_position_t::qt_device_position_t() : source_(QGeoPositionInfoSource::createDefaultSource(&context_)) {}

qt_device_position_t::~qt_device_position_t() = default;

std::optional<geo_coordinate_t> qt_device_position_t::last_known() const {
  if (!source_) return std::nullopt;
  return coordinate_of(source_->lastKnownPosition());
}

void qt_device_position_t::start(std::function<void(geo_coordinate_t)> on_position) {
  if (!source_) return;
  QObject::disconnect(source_, &QGeoPositionInfoSource::positionUpdated, &context_, nullptr);
  QObject::connect(source_, &QGeoPositionInfoSource::positionUpdated, &context_,
                   [on_position = std::move(on_position)](const QGeoPositionInfo& info) {
                     if (const auto c = coordinate_of(info)) on_position(*c);
                   });
  source_->startUpdates();
}

void qt_device_position_t::stop() {
  if (source_) source_->stopUpdates();
}

#pragma once

#include <QObject>
#include <QPointer>

#include "map/device_position.h"

class QGeoPositionInfoSource;

// The platform's default Qt Positioning source (GeoClue on Linux), when there is one; without one
// nothing is ever known. Created with the window, so that a position the platform already knows
// can place the map before the user turns the location display on.
class qt_device_position_t final : public device_position_t {
public:
  qt_device_position_t();
  ~qt_device_position_t() override;

  std::optional<geo_coordinate_t> last_known() const override;
  void start(std::function<void(geo_coordinate_t)> on_position) override;
  void stop() override;

private:
  QObject context_;  // owns the source and the connection to it
  QPointer<QGeoPositionInfoSource> source_;
};

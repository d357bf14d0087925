#pragma once

#include <QObject>
#include <memory>

#include "map/gps_heading.h"

class QCompass;

// Feeds the device's compass into a heading source. Where the platform has no compass (desktops
// as a rule) it publishes nothing and costs nothing. Qt reports the magnetic azimuth; with no
// declination at hand it stands in for the true heading.
class qt_compass_t final : public QObject {
public:
  explicit qt_compass_t(gps_heading_t& heading, QObject* parent = nullptr);
  ~qt_compass_t() override;

  bool present() const { return compass_ != nullptr; }

private:
  gps_heading_t& heading_;
  QCompass* compass_ = nullptr;
};

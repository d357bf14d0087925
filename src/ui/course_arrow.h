#pragma once

#include <QAbstractButton>
#include <QVariantAnimation>

#include "nmea/motion.h"

// The direction of movement: the weighted mean of the bearings, newest first, the k-th weighing
// sqrt(0.5^k); radians clockwise from north. Not a number when the history holds none.
double course_angle(const motion_history_t& bearings);

// The course arrow over the map: an up arrow in a circle, turned clockwise to the direction of
// movement, easing to a new direction over 2 s. Pressing it recentres the map.
class course_arrow_t final : public QAbstractButton {
public:
  static constexpr int animation_ms = 2000;
  static constexpr int icon_size = 28;
  static constexpr int padding = 4;
  // The smallest turn worth a repaint while easing: a quarter of a pixel at the arrow's tip.
  static constexpr double repaint_step_degrees = 1.0;

  explicit course_arrow_t(QWidget* parent = nullptr);

  // The angle in radians; not a number draws the arrow unrotated.
  void set_angle(double radians);
  double target_degrees() const { return target_; }
  double drawn_degrees() const { return drawn_; }

  QSize sizeHint() const override { return {icon_size + 2 * padding, icon_size + 2 * padding}; }

protected:
  void paintEvent(QPaintEvent* event) override;

private:
  QVariantAnimation animation_;
  double target_ = 0.0;
  double drawn_ = 0.0;
  double painted_ = 0.0;
  bool shown_once_ = false;
};

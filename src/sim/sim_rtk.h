#pragma once

// The simulated receiver's RTK solution: autonomous until corrections arrive, float once they have
// flowed for float_after_s, fixed after fixed_after_s, and back to autonomous when none came for
// lost_after_s. Times are the simulator's epoch times in seconds.
class sim_rtk_t {
public:
  static constexpr double float_after_s = 2.0;
  static constexpr double fixed_after_s = 5.0;
  static constexpr double lost_after_s = 10.0;
  static constexpr int autonomous = 1;  // GGA qualities
  static constexpr int rtk_fixed = 4;
  static constexpr int rtk_float = 5;

  void corrections_at(double t) {
    if (!flowing(t)) streak_start_ = t;
    last_ = t;
    seen_ = true;
  }
  int quality(double t) const {
    if (!flowing(t)) return autonomous;
    const double streak = t - streak_start_;
    if (streak >= fixed_after_s) return rtk_fixed;
    return streak >= float_after_s ? rtk_float : autonomous;
  }

private:
  bool flowing(double t) const { return seen_ && t - last_ <= lost_after_s; }

  bool seen_ = false;
  double last_ = 0.0;
  double streak_start_ = 0.0;
};

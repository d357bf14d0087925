#pragma once

#include <QStatusBar>
#include <QTimer>
#include <cstdint>
#include <limits>
#include <tuple>

#include "core/observable.h"

class QLabel;
class capture_player_t;
class recorder_t;
class config_connection_t;
class connection_t;
class corrections_t;
class link_meter_t;
class time_source_t;

// The window's status bar: the state and address of the links in use; bytes and sentences (or UBX
// frames) per second; checksum errors; the age of the last fix; and, when nothing shows, a hint
// at what to check. It samples once a second, so a 10 Hz stream costs it nothing more.
class link_status_bar_t final : public QStatusBar {
public:
  static constexpr int tick_ms = 1000;
  static constexpr double quiet_s = 3.0;  // a link quiet this long gets a hint

  link_status_bar_t(config_connection_t& cfg, connection_t& cnc, const link_meter_t& meter, const time_source_t& clock,
                    QWidget* parent = nullptr);

  // Takes a sample and shows it; the bar's own timer calls it every tick_ms.
  void tick();

  const QLabel& state() const { return *state_; }
  const QLabel& rates() const { return *rates_; }
  const QLabel& errors() const { return *errors_; }
  const QLabel& fix_age() const { return *age_; }
  const QLabel& hint() const { return *hint_; }
  // While the recorder records: a red dot, the file and its size. While a capture is open, its
  // status is the link's state.
  void show_session(recorder_t& recorder, const capture_player_t& player);
  const QLabel* recording() const { return recording_; }

  // Adds the RTK indicator for a corrections source: "RTK fixed  age 0.8 s" while one is wanted.
  void show_corrections(const corrections_t& corrections);
  const QLabel* rtk() const { return rtk_; }
  // The receiver's identity (MON-VER) as the state's tooltip; empty until it is known.
  void set_identity(const QString& identity);

private:
  QString state_text() const;
  QString hint_text(bool enabled, double now) const;

  config_connection_t& cfg_;
  connection_t& cnc_;
  const link_meter_t& meter_;
  const time_source_t& clock_;
  QTimer timer_;
  QLabel* state_;
  QLabel* hint_;
  QLabel* rates_;
  QLabel* errors_;
  QLabel* age_;

  // The last sample, and when things were last seen.
  double sampled_at_;
  std::uint64_t bytes_ = 0;
  std::uint64_t good_ = 0;
  std::tuple<std::int64_t, std::int64_t, std::int64_t, std::int64_t> fix_time_{};
  bool enabled_ = false;
  double enabled_at_ = 0.0;
  double data_at_ = -std::numeric_limits<double>::infinity();
  double good_at_ = -std::numeric_limits<double>::infinity();
  double fix_at_ = -1.0;  // negative: no fix yet

  const corrections_t* corrections_ = nullptr;
  QLabel* rtk_ = nullptr;
  void show_rtk();
  void show_recording_text();
  const recorder_t* recorder_ = nullptr;
  const capture_player_t* player_ = nullptr;
  QLabel* recording_ = nullptr;
  subscription_t recording_changes_;
};

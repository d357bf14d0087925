#pragma once

#include <QToolBar>
#include <cstdint>

#include "ui/redraw.h"

class QComboBox;
class QLabel;
class QSlider;
class QToolButton;
class capture_player_t;

// The controls of a capture that plays: play or pause, step one epoch, the speed, and a seek bar by
// position in the file whose tooltip tells the receiver's time under the cursor; beside them the
// capture's status ("file demo.nmea 2x 12:35:19").
class player_bar_t final : public QToolBar {
public:
  static constexpr int slider_steps = 1000;

  explicit player_bar_t(capture_player_t& player, QWidget* parent = nullptr);

  QToolButton& play_button() const { return *play_; }
  QToolButton& step_button() const { return *step_; }
  QComboBox& speed_box() const { return *speed_; }
  QSlider& seek_slider() const { return *seek_; }
  QLabel& status() const { return *status_; }

  // The file offset a slider value stands for, and back.
  std::uint64_t offset_at(int value) const;
  int value_at(std::uint64_t offset) const;

protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

private:
  void refresh();
  void show_time_at(int value, QPoint where);

  capture_player_t& player_;
  QToolButton* play_;
  QToolButton* step_;
  QComboBox* speed_;
  QSlider* seek_;
  QLabel* status_;
  redraw_t redraw_;
};

#pragma once

#include <QObject>
#include <QString>
#include <functional>
#include <optional>

#include "session/capture_player.h"
#include "session/recorder.h"
#include "session/track_store.h"
#include "ui/redraw.h"

class QAction;
class connection_t;
class console_t;
class main_queue_t;
class main_window_t;
class player_bar_t;

// The window's sessions: File > Open capture (and a file dropped on the window) plays a capture
// through the hub as the link "file", with the player bar shown while it is open; File > Record
// writes the received stream to a file, with the status bar showing it; File > Export track writes
// the session's full track as GPX or GeoJSON. A live link that the user
// connects closes the capture.
class session_controller_t final : public QObject {
public:
  session_controller_t(main_window_t& window, connection_t& cnc, main_queue_t& queue, console_t& console);
  ~session_controller_t() override;

  // Disconnects the live link and plays the capture at 1x; false, with a message box, when it cannot
  // be read.
  bool open_capture(const QString& path);
  // Starts recording to path, or stops the recording under way when path is empty.
  void record(const QString& path);
  // Writes the session's track, GPX or GeoJSON by the file's extension; false, with a message box,
  // when it cannot.
  bool export_track(const QString& path);

  capture_player_t& player() { return player_; }
  recorder_t& recorder() { return recorder_; }
  track_store_t& track() { return track_; }
  player_bar_t& bar() const { return *bar_; }

  // The file dialogs, replaced by tests. Each returns an empty text when the user cancels.
  std::function<QString()> choose_capture;
  std::function<QString()> choose_recording;
  std::function<QString()> choose_export;
  // The rotation as the user types it ("100M", "1h", empty for one file); nullopt when cancelled.
  std::function<std::optional<QString>()> choose_rotation;

  // Where File > Record starts a new file; none at first.
  const record_rotation_t& rotation() const { return rotation_; }

protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

private:
  void refresh();
  void choose_record_options();

  main_window_t& window_;
  connection_t& cnc_;
  recorder_t recorder_;
  track_store_t track_;
  capture_player_t player_;
  player_bar_t* bar_;
  QAction* open_;
  QAction* record_;
  QAction* export_;
  QAction* record_options_;
  record_rotation_t rotation_;
  QString rotation_text_;  // as the user typed it
  redraw_t redraw_;
};

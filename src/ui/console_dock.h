#pragma once

#include <QWidget>
#include <functional>
#include <string>
#include <vector>

#include "ui/redraw.h"

class QCheckBox;
class QComboBox;
class QLabel;
class QLineEdit;
class QListWidget;
class QMenu;
class command_settings_t;
class connection_t;
class console_t;
class main_queue_t;
class receiver_console_t;
class stream_server_t;

// The console panel: the receiver's identity, a line to type commands on with the history of
// what was typed, the configuration keys as a picker (name, value, Set and Get), what was sent
// with each answer's state, presets saved and replayed, and the read-only switch of the link in
// use, kept with the settings for each link address.
class console_dock_t final : public QWidget {
public:
  // address names the link in use ("tcp://192.168.1.20:2000"), for its read-only switch.
  console_dock_t(receiver_console_t& console, command_settings_t& settings, std::function<std::string()> address,
                 QWidget* parent = nullptr);

  // Sends the text as typed on the input line; the reason when it was not sent.
  QString send(const QString& typed);
  // Saves what was typed since the window opened as a preset, and sends a preset's commands.
  void save_preset(const QString& name);
  void replay_preset(const QString& name);
  // Reads the read-only switch of the link in use again (the user picked another link).
  void follow_link();

  const QLabel& identity() const { return *identity_; }
  const QListWidget& answers() const { return *answers_; }
  const QLabel& error() const { return *error_; }
  QCheckBox& read_only() const { return *read_only_; }
  QComboBox& input() const { return *input_; }
  QComboBox& keys() const { return *keys_; }
  QLineEdit& value() const { return *value_; }
  QComboBox& presets() const { return *presets_; }

private:
  void refresh();
  void fill_presets();

  receiver_console_t& console_;
  command_settings_t& settings_;
  std::function<std::string()> address_;
  std::vector<std::string> typed_;  // sent this session, oldest first
  QLabel* identity_;
  QCheckBox* read_only_;
  QListWidget* answers_;
  QComboBox* input_;
  QLabel* error_;
  QComboBox* keys_;
  QLineEdit* value_;
  QComboBox* presets_;
  redraw_t redraw_;
};

// Connection > Share on port...: a stream server on the chosen port (10110 by default) for other
// programs, and a switch that lets its clients write to the receiver (off by default).
void add_share_actions(QMenu& menu, connection_t& cnc, main_queue_t& queue, console_t& console);

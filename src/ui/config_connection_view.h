#pragma once

#include <QWidget>

#include "ui/redraw.h"

class ContentView;
class config_connection_t;
class connection_t;
class serial_port_list_t;
class QComboBox;
class QLabel;
class QLineEdit;
class QPushButton;
class QToolButton;

// The connection settings sheet: the BLE peripheral's name, the TCP server's address and port,
// each with its history and a Revert; the address of a serial port, UDP or gpsd link with its
// history and the machine's serial ports to choose from; Connect for each link, Bridge for BLE and
// TCP, Disconnect, and the status of the links. Closing it by any means puts back a host or port
// typed wrongly.
class config_connection_view final : public QWidget {
public:
  static constexpr double size_padding_v = 16.0;

  config_connection_view(ContentView& parent, config_connection_t& cfg, connection_t& cnc,
                         QWidget* parent_widget = nullptr);

  QLineEdit* ble_name_field() const { return ble_name_; }
  QLineEdit* host_field() const { return host_; }
  QLineEdit* port_field() const { return port_; }
  QPushButton* ble_connect_button() const { return ble_connect_; }
  QPushButton* ble_revert_button() const { return ble_revert_; }
  QPushButton* ip_connect_button() const { return ip_connect_; }
  QPushButton* ip_revert_button() const { return ip_revert_; }
  QPushButton* delete_button() const { return delete_; }
  QPushButton* close_button() const { return close_; }
  QPushButton* bridge_button() const { return bridge_; }
  QPushButton* disconnect_button() const { return disconnect_; }
  QToolButton* ble_history() const { return ble_history_; }
  QToolButton* host_history() const { return host_history_; }
  QToolButton* port_history() const { return port_history_; }
  QLabel* status_line() const { return status_; }
  // Adds a section of another source (corrections) below the links, above the status line.
  void add_section(QWidget* section);
  QComboBox* port_list() const { return ports_; }
  QPushButton* refresh_ports_button() const { return refresh_ports_; }
  QLineEdit* source_field() const { return source_; }
  QPushButton* source_connect_button() const { return source_connect_; }
  QToolButton* source_history() const { return source_history_; }
  QLabel* source_error() const { return source_error_; }

  // Where the serial ports are listed from; without one the list stays empty.
  void set_port_list(const serial_port_list_t* ports);

protected:
  void showEvent(QShowEvent* event) override;
  void hideEvent(QHideEvent* event) override;

private:
  void refresh();
  void connect_by(bool ble);
  void revert_ip();
  QWidget* build_source_section();
  void refresh_ports();
  void show_source_validity();
  void connect_source();

  ContentView& parent_;
  config_connection_t& cfg_;
  connection_t& cnc_;
  redraw_t redraw_;
  QLineEdit* ble_name_;
  QPushButton* ble_revert_;
  QPushButton* ble_connect_;
  QToolButton* ble_history_;
  QLineEdit* host_;
  QLineEdit* port_;
  QPushButton* ip_connect_;
  QPushButton* ip_revert_;
  QToolButton* host_history_;
  QToolButton* port_history_;
  QPushButton* delete_;
  QLabel* status_;
  QPushButton* close_;
  QPushButton* bridge_;
  QPushButton* disconnect_;
  const serial_port_list_t* port_source_ = nullptr;
  QComboBox* ports_ = nullptr;
  QPushButton* refresh_ports_ = nullptr;
  QLineEdit* source_ = nullptr;
  QPushButton* source_connect_ = nullptr;
  QToolButton* source_history_ = nullptr;
  QLabel* source_error_ = nullptr;
};

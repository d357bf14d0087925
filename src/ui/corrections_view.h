#pragma once

#include <QGroupBox>

#include "ui/redraw.h"

class QCheckBox;
class QLabel;
class QLineEdit;
class QPushButton;
class QToolButton;
class QTreeWidget;
class corrections_settings_t;
class corrections_t;

// The Corrections section of the connection settings: an NTRIP address with its history, whether
// to send the receiver's position, Connect and Disconnect, the caster's source table to pick a
// mountpoint from (nearest first, picking fills the address and the position choice), the
// source's status and what its stream carries.
class corrections_view_t final : public QGroupBox {
public:
  corrections_view_t(corrections_t& corrections, corrections_settings_t& settings, QWidget* parent = nullptr);

  QLineEdit* address_field() const { return address_; }
  QCheckBox* gga_box() const { return gga_; }
  QPushButton* connect_button() const { return connect_; }
  QPushButton* disconnect_button() const { return disconnect_; }
  QPushButton* table_button() const { return table_button_; }
  QTreeWidget* table() const { return table_; }
  QLabel* status_line() const { return status_; }
  QLabel* details() const { return details_; }

  // Connects to the address in the field; false, with the reason in the status line, when it is
  // not an NTRIP address with a mountpoint.
  bool connect_typed();
  // Fills the address with the table's row (the caster of the field, the row's mountpoint).
  void pick(int row);

private:
  void refresh();
  void fill_history();

  corrections_t& corrections_;
  corrections_settings_t& settings_;
  redraw_t redraw_;
  QLineEdit* address_;
  QToolButton* history_;
  QPushButton* connect_;
  QPushButton* disconnect_;
  QCheckBox* gga_;
  QPushButton* table_button_;
  QTreeWidget* table_;
  QLabel* status_;
  QLabel* details_;
  QString problem_;  // why the typed address was refused
};

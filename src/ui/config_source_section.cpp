// The settings sheet's section for the serial, UDP and gpsd links: one address field, its history,
// and the machine's serial ports to fill it from.
#include <QComboBox>
#include <QFileInfo>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QPushButton>
#include <QToolButton>
#include <QVBoxLayout>

#include "link/config_connection.h"
#include "link/connection.h"
#include "link/serial_port_list.h"
#include "link/source_address.h"
#include "ui/config_connection_view.h"
#include "ui/content_view.h"
#include "ui/palette.h"
#include "ui/selection_feedback.h"

namespace {

// A port as a user recognises it: "/dev/ttyACM0  usb-u-blox_AG_GNSS_receiver-if00  1546:01a8  u-blox
// GNSS receiver", the parts it has.
QString port_text(const serial_port_info_t& port) {
  QStringList parts{QString::fromStdString(port.path)};
  if (!port.by_id.empty()) parts << QFileInfo(QString::fromStdString(port.by_id)).fileName();
  if (!port.usb_id.empty()) parts << QString::fromStdString(port.usb_id);
  if (!port.product.empty()) parts << QString::fromStdString(port.product);
  return parts.join("  ");
}

}  // namespace

QWidget* config_connection_view::build_source_section() {
  auto* box = new QGroupBox("Serial port, UDP or gpsd");
  auto* rows = new QVBoxLayout(box);

  auto* ports_row = new QHBoxLayout;
  ports_ = new QComboBox;
  ports_->setAccessibleName("Serial ports");
  ports_->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
  ports_->setMinimumContentsLength(24);
  refresh_ports_ = new QPushButton("Refresh");
  refresh_ports_->setToolTip("List the serial ports again, after plugging a receiver in");
  ports_row->addWidget(ports_, 1);
  ports_row->addWidget(refresh_ports_);
  rows->addLayout(ports_row);

  auto* address_row = new QHBoxLayout;
  source_ = new QLineEdit;
  source_->setPlaceholderText("serial:///dev/ttyACM0, udp://:10110 or gpsd://HOST[:PORT]");
  source_->setAccessibleName("Serial, UDP or gpsd address");
  source_->setClearButtonEnabled(true);
  source_connect_ = new QPushButton("Connect");
  source_history_ = new QToolButton(this);
  source_history_->setText("used");
  source_history_->setPopupMode(QToolButton::InstantPopup);
  source_history_->setMenu(new QMenu(source_history_));
  address_row->addWidget(source_, 1);
  address_row->addWidget(source_connect_);
  address_row->addWidget(source_history_);
  rows->addLayout(address_row);
  source_error_ = new QLabel;
  source_error_->setWordWrap(true);
  source_error_->hide();
  rows->addWidget(source_error_);

  // A port chosen from the list is remembered by its by-id name where it has one.
  QObject::connect(ports_, &QComboBox::activated, this, [this](int index) {
    selection_changed();
    source_->setText(ports_->itemData(index).toString());
    show_source_validity();
  });
  QObject::connect(refresh_ports_, &QPushButton::clicked, this, [this] {
    selection_changed();
    refresh_ports();
  });
  QObject::connect(source_, &QLineEdit::textEdited, this, [this] { show_source_validity(); });
  QObject::connect(source_, &QLineEdit::returnPressed, this, [this] { connect_source(); });
  QObject::connect(source_connect_, &QPushButton::clicked, this, [this] { connect_source(); });
  show_source_validity();
  return box;
}

void config_connection_view::set_port_list(const serial_port_list_t* ports) {
  port_source_ = ports;
  refresh_ports();
}

void config_connection_view::refresh_ports() {
  ports_->clear();
  if (port_source_) {
    for (const auto& port : port_source_->ports())
      ports_->addItem(port_text(port), QString::fromStdString("serial://" + port.stable_path()));
  }
  ports_->setCurrentIndex(-1);
  ports_->setPlaceholderText(ports_->count() == 0 ? "no serial port found" : "choose a serial port");
}

// The address in red with what is wrong with it below, until it reads.
void config_connection_view::show_source_validity() {
  const std::string text = source_->text().trimmed().toStdString();
  const auto parsed = parse_source_url(text);
  const bool valid = text.empty() || parsed.address;
  const QPalette& theme = palette();
  set_text_colour(*source_, colour_of(valid ? colour_t::primary : colour_t::red, theme));
  source_error_->setVisible(!valid);
  source_error_->setText(QString::fromStdString(parsed.error));
  set_text_colour(*source_error_, colour_of(colour_t::red, theme));
  source_connect_->setEnabled(parsed.address.has_value());
}

// Connect: the address goes first in its history, the switch on, and this link alone connects.
void config_connection_view::connect_source() {
  selection_changed();
  if (!cfg_.save_source(source_->text().trimmed().toStdString())) return;
  source_->setText(QString::fromStdString(cfg_.history_source->front()));
  cfg_.set_enable_source(true);
  parent_.sheets().show(sheet_id_t::settings, false);
  cnc_.disconnect();
  parent_.connect_or_disconnect();
}

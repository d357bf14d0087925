#include "ui/console_dock.h"

#include <QCheckBox>
#include <QComboBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QInputDialog>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMenu>
#include <QPushButton>
#include <QVBoxLayout>
#include <memory>

#include "command/config_keys.h"
#include "link/command_settings.h"
#include "link/connection.h"
#include "link/receiver_console.h"
#include "link/stream_server.h"

namespace {

constexpr int history_limit = 50;  // typed commands the input line offers again

QPushButton* button(const QString& text, QWidget* parent, const std::function<void()>& pressed) {
  auto* b = new QPushButton(text, parent);
  QObject::connect(b, &QPushButton::clicked, parent, pressed);
  return b;
}

}  // namespace

console_dock_t::console_dock_t(receiver_console_t& console, command_settings_t& settings,
                               std::function<std::string()> address, QWidget* parent)
    : QWidget(parent),
      console_(console),
      settings_(settings),
      address_(std::move(address)),
      identity_(new QLabel(this)),
      read_only_(new QCheckBox(tr("Read-only link: send the receiver nothing"), this)),
      answers_(new QListWidget(this)),
      input_(new QComboBox(this)),
      error_(new QLabel(this)),
      keys_(new QComboBox(this)),
      value_(new QLineEdit(this)),
      presets_(new QComboBox(this)),
      redraw_(this, [this] { refresh(); }) {
  identity_->setWordWrap(true);
  identity_->setTextInteractionFlags(Qt::TextSelectableByMouse);
  input_->setEditable(true);
  input_->setInsertPolicy(QComboBox::NoInsert);
  input_->setMaxCount(history_limit);
  input_->lineEdit()->setPlaceholderText(tr("$PUBX,00   ubx:06,08,c80001000100   set:CFG-RATE-MEAS=200"));
  for (const auto& key : config_keys())
    keys_->addItem(QString::fromUtf8(key.name.data(), static_cast<int>(key.name.size())) + "  (" +
                   QString::fromUtf8(key_type_name(key.type).data()) + ")");
  value_->setPlaceholderText(tr("value"));
  presets_->setPlaceholderText(tr("Presets: none saved yet"));

  auto* layout = new QVBoxLayout(this);
  layout->addWidget(identity_);
  layout->addWidget(read_only_);
  layout->addWidget(answers_, 1);
  auto* line = new QHBoxLayout;
  line->addWidget(input_, 1);
  line->addWidget(button(tr("Send"), this, [this] { send(input_->currentText()); }));
  layout->addLayout(line);
  layout->addWidget(error_);
  auto* picker = new QHBoxLayout;
  picker->addWidget(keys_, 1);
  picker->addWidget(value_);
  const auto key_name_now = [this] { return keys_->currentText().section(' ', 0, 0); };
  picker->addWidget(button(tr("Set"), this, [=, this] { send("set:" + key_name_now() + "=" + value_->text()); }));
  picker->addWidget(button(tr("Get"), this, [=, this] { send("get:" + key_name_now()); }));
  layout->addLayout(picker);
  auto* presets = new QHBoxLayout;
  presets->addWidget(presets_, 1);
  presets->addWidget(button(tr("Replay"), this, [this] { replay_preset(presets_->currentText()); }));
  presets->addWidget(button(tr("Save as..."), this, [this] {
    bool ok = false;
    const auto name = QInputDialog::getText(this, tr("Save preset"), tr("Name of the commands typed so far:"),
                                            QLineEdit::Normal, {}, &ok);
    if (ok && !name.trimmed().isEmpty()) save_preset(name.trimmed());
  }));
  layout->addLayout(presets);

  connect(input_->lineEdit(), &QLineEdit::returnPressed, this, [this] { send(input_->currentText()); });
  connect(read_only_, &QCheckBox::toggled, this, [this](bool on) {
    console_.set_read_only(on);
    settings_.set_read_only(address_(), on);
  });
  fill_presets();
  follow_link();
  redraw_.watch(console_);
  refresh();
}

QString console_dock_t::send(const QString& typed) {
  const auto text = typed.trimmed().toStdString();
  auto problem = QString::fromStdString(console_.send(text));
  error_->setText(problem);
  if (problem.isEmpty()) {
    typed_.push_back(text);
    input_->removeItem(input_->findText(typed.trimmed()));
    input_->insertItem(0, typed.trimmed());
    input_->setCurrentIndex(-1);
    input_->clearEditText();
  }
  return problem;
}

void console_dock_t::save_preset(const QString& name) {
  settings_.save_preset(name.toStdString(), typed_);
  fill_presets();
  presets_->setCurrentText(name);
}

void console_dock_t::replay_preset(const QString& name) {
  for (const auto& typed : settings_.preset(name.toStdString())) send(QString::fromStdString(typed));
}

void console_dock_t::follow_link() {
  read_only_->setChecked(settings_.read_only(address_()));
  console_.set_read_only(read_only_->isChecked());
}

void console_dock_t::fill_presets() {
  presets_->clear();
  for (const auto& name : settings_.preset_names()) presets_->addItem(QString::fromStdString(name));
}

void console_dock_t::refresh() {
  const auto& identity = console_.identity.get();
  identity_->setText(identity.empty() ? tr("Receiver: not identified")
                                      : tr("Receiver: %1").arg(QString::fromStdString(identity)));
  answers_->clear();
  const auto& lines = console_.answers.get();
  for (std::size_t i = 0; i < lines.size(); ++i) answers_->addItem(QString::fromStdString(lines[i]));
  answers_->scrollToBottom();
}

void add_share_actions(QMenu& menu, connection_t& cnc, main_queue_t& queue, console_t& console) {
  auto server = std::make_shared<std::unique_ptr<stream_server_t>>();
  auto* writes = new QAction(QObject::tr("Let Share Clients Write to the Receiver"), &menu);
  writes->setCheckable(true);
  menu.addSeparator();
  auto* share = menu.addAction(QObject::tr("Share on Port..."));
  menu.addAction(writes);
  QObject::connect(writes, &QAction::toggled, &menu, [server](bool on) {
    if (*server) (*server)->set_allow_writes(on);
  });
  QObject::connect(share, &QAction::triggered, &menu, [&menu, &cnc, &queue, &console, server, share, writes] {
    if (*server) {
      cnc.remove_tap(**server);
      server->reset();
      share->setText(QObject::tr("Share on Port..."));
      console.print(console.date() + "  sharing stopped");
      return;
    }
    bool ok = false;
    const int port = QInputDialog::getInt(menu.parentWidget(), QObject::tr("Share the stream"),
                                          QObject::tr("Other programs read the receiver's bytes on TCP port:"),
                                          stream_server_t::default_port, 1, 65535, 1, &ok);
    if (!ok) return;
    auto started = std::make_unique<stream_server_t>(
        queue, console, [&cnc](std::span<const std::uint8_t> bytes) { cnc.send_to_receiver(bytes); });
    if (!started->listen(static_cast<std::uint16_t>(port))) {
      console.print(console.date() + "  share: cannot listen on port " + std::to_string(port));
      return;
    }
    started->set_allow_writes(writes->isChecked());
    cnc.add_tap(*started);
    console.print(console.date() + "  sharing the stream on port " + std::to_string(started->port()));
    *server = std::move(started);
    share->setText(QObject::tr("Stop Sharing on Port %1").arg(port));
  });
  QObject::connect(&menu, &QObject::destroyed, [server, &cnc] {
    if (*server) cnc.remove_tap(**server);
  });
}

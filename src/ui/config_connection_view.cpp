#include "ui/config_connection_view.h"

#include <QFont>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QPushButton>
#include <QToolButton>
#include <QVBoxLayout>

#include "link/config_connection.h"
#include "link/connect_action.h"
#include "link/connection.h"
#include "ui/content_view.h"
#include "ui/font_size.h"
#include "ui/palette.h"
#include "ui/selection_feedback.h"

namespace {

constexpr double title_size = 24.0;

// A button's text in a colour, on the system background.
void set_button_colour(QPushButton& b, const QColor& text, const QColor& background) {
  set_text_colour(b, text);
  QPalette p = b.palette();
  p.setColor(QPalette::Button, background);
  b.setPalette(p);
}

// Sets a field's text only when the model's differs, keeping the cursor where the user left it.
void show_text(QLineEdit* field, const QString& text) {
  if (field->text() == text) return;
  const int cursor = field->cursorPosition();
  field->setText(text);
  field->setCursorPosition(std::min(cursor, static_cast<int>(text.size())));
}

QToolButton* history_button(const QString& label, QWidget* parent) {
  auto* b = new QToolButton(parent);
  b->setText(label);
  b->setPopupMode(QToolButton::InstantPopup);
  b->setMenu(new QMenu(b));
  b->setToolButtonStyle(Qt::ToolButtonTextOnly);
  return b;
}

}  // namespace

config_connection_view::config_connection_view(ContentView& parent, config_connection_t& cfg, connection_t& cnc,
                                               QWidget* parent_widget)
    : QWidget(parent_widget),
      parent_(parent),
      cfg_(cfg),
      cnc_(cnc),
      redraw_(this, [this] { refresh(); }),
      ble_name_(new QLineEdit),
      ble_revert_(new QPushButton("Revert")),
      ble_connect_(new QPushButton("Connect")),
      ble_history_(history_button("BLE", this)),
      host_(new QLineEdit),
      port_(new QLineEdit),
      ip_connect_(new QPushButton("Connect")),
      ip_revert_(new QPushButton("Revert")),
      host_history_(history_button("IP", this)),
      port_history_(history_button("port", this)),
      delete_(new QPushButton("Delete saved configuration")),
      status_(new QLabel),
      close_(new QPushButton("Close")),
      bridge_(new QPushButton("Bridge")),
      disconnect_(new QPushButton("Disconnect")) {
  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(8 + 8, 8 + 8, 8 + 8, 8 + 8);
  layout->setSpacing(static_cast<int>(size_padding_v));

  auto* title = new QLabel("Connection");
  title->setFont(relative_font(title->font(), title_size));
  layout->addWidget(title);

  auto* ble = new QGroupBox("BLE peripheral name");
  auto* ble_row = new QHBoxLayout(ble);
  ble_name_->setPlaceholderText("BLE name");
  ble_name_->setClearButtonEnabled(true);
  ble_row->addWidget(ble_name_, 1);
  ble_row->addWidget(ble_revert_);
  ble_row->addWidget(ble_connect_);
  ble_row->addWidget(ble_history_);
  layout->addWidget(ble);

  auto* ip = new QGroupBox("IP address and port");
  auto* ip_row = new QHBoxLayout(ip);
  host_->setPlaceholderText("host");
  host_->setInputMethodHints(Qt::ImhUrlCharactersOnly | Qt::ImhNoAutoUppercase);
  port_->setPlaceholderText("port");
  port_->setInputMethodHints(Qt::ImhDigitsOnly);
  port_->setFixedWidth(80);
  ip_row->addWidget(host_, 1);
  ip_row->addWidget(port_);
  ip_row->addWidget(ip_connect_);
  ip_row->addWidget(ip_revert_);
  ip_row->addWidget(host_history_);
  ip_row->addWidget(port_history_);
  layout->addWidget(ip);
  layout->addWidget(build_source_section());

  layout->addWidget(delete_, 0, Qt::AlignLeft);
  layout->addWidget(status_);
  layout->addStretch(1);
  auto* buttons = new QHBoxLayout;
  buttons->addWidget(close_);
  buttons->addStretch(1);
  bridge_->setCheckable(true);
  buttons->addWidget(bridge_);
  buttons->addWidget(disconnect_);
  layout->addLayout(buttons);

  QObject::connect(ble_name_, &QLineEdit::textEdited, this,
                   [this](const QString& t) { cfg_.ble_name = t.toStdString(); });
  QObject::connect(host_, &QLineEdit::textEdited, this,
                   [this](const QString& t) { cfg_.set_host_bind(t.toStdString()); });
  QObject::connect(port_, &QLineEdit::textEdited, this,
                   [this](const QString& t) { cfg_.set_port_bind(t.toStdString()); });

  QObject::connect(ble_connect_, &QPushButton::clicked, this, [this] { connect_by(true); });
  QObject::connect(ble_revert_, &QPushButton::clicked, this, [this] {
    selection_changed();
    if (!cfg_.history_ble_name->empty()) cfg_.ble_name = cfg_.history_ble_name->front();
  });
  QObject::connect(ip_connect_, &QPushButton::clicked, this, [this] { connect_by(false); });
  QObject::connect(ip_revert_, &QPushButton::clicked, this, [this] {
    selection_changed();
    revert_ip();
  });
  QObject::connect(delete_, &QPushButton::clicked, this, [this] {
    selection_changed();
    cfg_.delete_config();
  });
  QObject::connect(close_, &QPushButton::clicked, this, [this] {
    selection_changed();
    parent_.sheets().show(sheet_id_t::settings, false);
  });
  QObject::connect(bridge_, &QPushButton::clicked, this, [this] {
    selection_changed();
    cfg_.set_enable_source(false);
    cfg_.set_enable_bridge(!cfg_.enable_bridge());
    parent_.sheets().show(sheet_id_t::settings, false);
    cnc_.disconnect();
    parent_.connect_or_disconnect();
  });
  QObject::connect(disconnect_, &QPushButton::clicked, this, [this] {
    selection_changed();
    cnc_.disconnect();
  });

  redraw_.watch(cfg_);
  redraw_.watch(cnc_);
  refresh();
}

// Connect in a section: that link alone, anew, and the sheet closes.
void config_connection_view::connect_by(bool ble) {
  selection_changed();
  cfg_.set_enable_source(false);
  cfg_.set_enable_ble(ble);
  parent_.sheets().show(sheet_id_t::settings, false);
  cnc_.disconnect();
  parent_.connect_or_disconnect();
}

void config_connection_view::revert_ip() {
  if (!cfg_.host_valid && !cfg_.history_host->empty()) cfg_.set_host_bind(cfg_.history_host->front());
  if (!cfg_.port_valid && !cfg_.history_port->empty()) cfg_.set_port_bind(std::to_string(cfg_.history_port->front()));
}

void config_connection_view::showEvent(QShowEvent* event) {
  QWidget::showEvent(event);
  refresh_ports();
  if (source_->text().isEmpty() && !cfg_.history_source->empty()) {
    source_->setText(QString::fromStdString(cfg_.history_source->front()));
    show_source_validity();
  }
  refresh();
}

void config_connection_view::hideEvent(QHideEvent* event) {
  QWidget::hideEvent(event);
  revert_ip();
}

void config_connection_view::refresh() {
  if (!isVisible()) return;  // showing it refreshes
  show_text(ble_name_, QString::fromStdString(cfg_.ble_name));
  show_text(host_, QString::fromStdString(cfg_.host_bind()));
  show_text(port_, QString::fromStdString(cfg_.port_bind()));
  const QPalette& theme = palette();
  set_text_colour(*host_, colour_of(cfg_.host_valid ? colour_t::primary : colour_t::red, theme));
  set_text_colour(*port_, colour_of(cfg_.port_valid ? colour_t::primary : colour_t::red, theme));
  const QColor background = colour_of(colour_t::background, theme);
  set_button_colour(*ble_connect_, colour_of(cfg_.ble_name->empty() ? colour_t::secondary : colour_t::blue, theme),
                    background);
  set_button_colour(*ip_connect_,
                    colour_of(cfg_.host_valid && cfg_.port_valid ? colour_t::green : colour_t::secondary, theme),
                    background);

  auto fill = [this](QToolButton* button, const QStringList& entries, auto choose) {
    QMenu* menu = button->menu();
    QStringList shown;
    for (QAction* a : menu->actions()) shown << a->text();
    if (shown == entries) return;
    menu->clear();
    for (const QString& e : entries) {
      QObject::connect(menu->addAction(e), &QAction::triggered, this, [choose, e] {
        selection_changed();
        choose(e);
      });
    }
  };
  QStringList names, hosts, ports;
  for (const auto& n : cfg_.history_ble_name.get()) names << QString::fromStdString(n);
  for (const auto& h : cfg_.history_host.get()) hosts << QString::fromStdString(h);
  for (const auto p : cfg_.history_port.get()) ports << QString::asprintf("%u", static_cast<unsigned>(p));
  fill(ble_history_, names, [this](const QString& e) { cfg_.ble_name = e.toStdString(); });
  fill(host_history_, hosts, [this](const QString& e) { cfg_.set_host_bind(e.toStdString()); });
  fill(port_history_, ports, [this](const QString& e) { cfg_.set_port_bind(e.toStdString()); });
  QStringList sources;
  for (const auto& a : cfg_.history_source.get()) sources << QString::fromStdString(a);
  fill(source_history_, sources, [this](const QString& e) {
    source_->setText(e);
    show_source_validity();
  });

  // The status line: the links in use, or "offline".
  QStringList parts;
  if (cnc_.tcp_enabled())
    parts << QString("<span style='color:%1'>%2:%3</span>")
                 .arg(colour_of(colour_t::secondary, theme).name(QColor::HexArgb), QString::fromStdString(cfg_.host))
                 .arg(static_cast<unsigned>(cfg_.port.get()));
  if (cnc_.ble_enabled()) {
    parts << QString("<span style='color:%1'>%2</span>")
                 .arg(colour_of(colour_t::secondary, theme).name(QColor::HexArgb),
                      QString::fromStdString(cfg_.ble_name).toHtmlEscaped());
    auto& ble = cnc_.ble();
    parts << QString("<span style='color:%1'>%2</span>")
                 .arg(colour_of(ble.radio_colour(), theme).name(QColor::HexArgb),
                      QString::fromStdString(ble.radio_status()).toHtmlEscaped());
  }
  if (cnc_.source_enabled() && cnc_.source())
    parts << QString("<span style='color:%1'>%2</span>")
                 .arg(colour_of(cnc_.sta_fg_source, theme).name(QColor::HexArgb),
                      QString::fromStdString(cnc_.source()->address().text() + "  " + cnc_.status_source.get())
                          .toHtmlEscaped());
  if (parts.isEmpty())
    parts << QString("<span style='color:%1'>offline</span>")
                 .arg(colour_of(colour_t::tertiary, theme).name(QColor::HexArgb));
  status_->setText(parts.join("&nbsp;&nbsp;&nbsp;"));

  bridge_->setChecked(cfg_.enable_bridge());
  disconnect_->setVisible(any_link_enabled(cnc_));
}

void config_connection_view::add_section(QWidget* section) {
  auto* column = static_cast<QVBoxLayout*>(layout());
  column->insertWidget(column->indexOf(delete_), section);
}

#include "ui/main_window.h"

#include <QActionGroup>
#include <QApplication>
#include <QDialog>
#include <QDockWidget>
#include <QEvent>
#include <QMenuBar>
#include <QMessageBox>
#include <QScrollArea>
#include <QStyle>
#include <QStyleFactory>
#include <QVBoxLayout>

#include "link/config_connection.h"
#include "link/connect_action.h"
#include "link/connection.h"
#include "map/map_view.h"
#include "platform/tile_map_widget.h"
#include "ui/config_connection_view.h"
#include "ui/content_view.h"
#include "ui/gnss_sky_panel.h"
#include "ui/gps_details_view.h"
#include "ui/gps_dop_view.h"
#include "ui/gps_log_view.h"
#include "ui/link_status_bar.h"
#include "ui/map_panel.h"
#include "ui/palette.h"
#include "ui/round_button.h"

namespace {

constexpr int settings_width = 640;   // the dialog's first size, screen points
constexpr int settings_height = 640;  // the links, the source address and the corrections without scrolling

// A panel's content at the top of a scroll area, so that a small dock or dialog scrolls it instead
// of squeezing it.
QScrollArea* scrolled(QWidget* content) {
  auto* holder = new QWidget;
  auto* column = new QVBoxLayout(holder);
  column->setContentsMargins(0, 0, 0, 0);
  column->addWidget(content);
  column->addStretch(1);
  auto* scroll = new QScrollArea;
  scroll->setWidgetResizable(true);
  scroll->setFrameShape(QFrame::NoFrame);
  scroll->setWidget(holder);
  return scroll;
}

// The desktop's look, kept so that the dark theme can be switched off again.
struct desktop_look_t {
  QString style = QApplication::style()->name();
  QPalette palette = QApplication::palette();
};

const desktop_look_t& desktop_look() {
  static const desktop_look_t look;
  return look;
}

QString about_text(const tile_sources_t& sources) {
  QString text = QObject::tr(
                     "<h3>Korvid %1</h3><p>A desktop monitor for GNSS receivers on serial and USB ports, TCP, UDP, "
                     "gpsd and Bluetooth LE.</p>")
                     .arg(QApplication::applicationVersion().toHtmlEscaped());
  text += QObject::tr("<p>Built with Qt %1, used under the GNU LGPL version 3.</p><p>Map tiles:</p><ul>")
              .arg(QString::fromLatin1(qVersion()));
  for (const auto* source : {&sources.standard, &sources.imagery, &sources.labels})
    if (!source->attribution.isEmpty()) text += "<li>" + source->attribution.toHtmlEscaped() + "</li>";
  return text + "</ul>";
}

}  // namespace

main_window_t::main_window_t(config_connection_t& cfg, connection_t& cnc, map_cfg_t& map_cfg, tile_map_widget_t& map,
                             main_queue_t& queue, const link_meter_t& meter, QWidget* parent)
    : QMainWindow(parent),
      cfg_(cfg),
      cnc_(cnc),
      map_cfg_(map_cfg),
      sheets_(cnc),
      content_(new ContentView(cfg, cnc, map_cfg, map, queue, sheets_)),
      status_(new link_status_bar_t(cfg, cnc, meter, queue)),
      settings_(new QDialog(this)),
      settings_view_(new config_connection_view(*content_, cfg, cnc)),
      sky_panel_(new gnss_sky_panel(cnc.sky)),
      redraw_(this, [this] { refresh(); }) {
  desktop_look();
  setCentralWidget(content_);
  map.setFocus();  // the keys that pan and zoom work at once, and no control starts ringed
  setStatusBar(status_);
  setDockOptions(AnimatedDocks | AllowTabbedDocks | AllowNestedDocks);

  settings_->setWindowTitle(tr("Connection settings"));
  settings_->resize(settings_width, settings_height);
  auto* settings_layout = new QVBoxLayout(settings_);
  settings_layout->setContentsMargins(0, 0, 0, 0);
  settings_layout->addWidget(scrolled(settings_view_));
  QObject::connect(settings_, &QDialog::finished, this, [this] { sheets_.show(sheet_id_t::settings, false); });

  build_menus();
  bind(sheet_id_t::log, add_dock("log", tr("&Log"), new gps_log_view(cnc_, sheets_), 1, Qt::BottomDockWidgetArea));
  bind(sheet_id_t::satellites, add_dock("satellites", tr("&Satellites"), scrolled(new gps_details_view(cnc_)), 2));
  bind(sheet_id_t::sky, add_dock("sky", tr("S&ky"), scrolled(sky_panel_), 3));
  bind(sheet_id_t::details, add_dock("details", tr("&Details"), scrolled(new gps_dop_view(cnc_)), 4));
  // The log has the shortcuts of the time-and-date button too: Ctrl+L and the bare backquote.
  dock(sheet_id_t::log)
      ->toggleViewAction()
      ->setShortcuts(
          {QKeySequence(Qt::CTRL | Qt::Key_1), QKeySequence(Qt::CTRL | Qt::Key_L), QKeySequence(Qt::Key_QuoteLeft)});

  add_link_kind(
      tr("&TCP"), [this] { return !cfg_.enable_source() && !cfg_.enable_bridge() && !cfg_.enable_ble(); },
      [this] {
        cfg_.set_enable_source(false);
        cfg_.set_enable_bridge(false);
        cfg_.set_enable_ble(false);
      });
  add_link_kind(
      tr("&Bluetooth LE"), [this] { return !cfg_.enable_source() && !cfg_.enable_bridge() && cfg_.enable_ble(); },
      [this] {
        cfg_.set_enable_source(false);
        cfg_.set_enable_bridge(false);
        cfg_.set_enable_ble(true);
      });
  add_link_kind(
      tr("B&ridge Bluetooth LE and TCP"), [this] { return !cfg_.enable_source() && cfg_.enable_bridge(); },
      [this] {
        cfg_.set_enable_source(false);
        cfg_.set_enable_bridge(true);
      });
  using source_kind = source_address_t::kind_t;
  for (const auto& [title, kind] : {std::pair{tr("&Serial port"), source_kind::serial},
                                    std::pair{tr("&UDP"), source_kind::udp}, std::pair{tr("&gpsd"), source_kind::gpsd}})
    add_link_kind(
        title,
        [this, kind = kind] {
          const auto chosen = cfg_.chosen_source();
          return cfg_.enable_source() && chosen && chosen->kind == kind;
        },
        [this, kind = kind] { cfg_.choose_source_kind(kind); });

  redraw_.watch(cfg_);
  redraw_.watch(cnc_);
  redraw_.watch(map_cfg_);
  redraw_.watch(sheets_);
  refresh();
}

main_window_t::~main_window_t() = default;

void main_window_t::build_menus() {
  QMenu* file = menuBar()->addMenu(tr("&File"));
  // Captures and recordings come with the recording work; the entries stand where they will be.
  for (const auto& [text, keys] : {std::pair{tr("&Open capture..."), QKeySequence(QKeySequence::Open)},
                                   std::pair{tr("&Record"), QKeySequence(Qt::CTRL | Qt::Key_R)},
                                   std::pair{tr("&Export track..."), QKeySequence(QKeySequence::Save)}})
    file->addAction(text, keys, [] {})->setEnabled(false);
  file->addSeparator();
  file->addAction(tr("&Quit"), QKeySequence::Quit, this, &QWidget::close);

  connection_menu_ = menuBar()->addMenu(tr("&Connection"));
  connect_ = connection_menu_->addAction(tr("&Connect"), QKeySequence(Qt::CTRL | Qt::Key_K), this,
                                         [this] { content_->connect_or_disconnect(); });
  connection_menu_->addSeparator();
  kinds_ = new QActionGroup(this);
  kinds_end_ = connection_menu_->addSeparator();
  QKeySequence preferences(QKeySequence::Preferences);
  if (preferences.isEmpty()) preferences = QKeySequence(Qt::CTRL | Qt::Key_Comma);
  connection_menu_->addAction(tr("&Settings..."), preferences, this,
                              [this] { sheets_.show(sheet_id_t::settings, true); });

  view_menu_ = menuBar()->addMenu(tr("&View"));
  docks_end_ = view_menu_->addSeparator();
  imagery_ = view_menu_->addAction(tr("&Imagery"), QKeySequence(Qt::CTRL | Qt::Key_M), this,
                                   [this](bool on) { map_cfg_.mode_sat = on; });
  imagery_->setCheckable(true);
  view_menu_->addAction(tr("Re&centre on the position"), QKeySequence(Qt::CTRL | Qt::Key_0), this,
                        [this] { map_cfg_.region_set = false; });
  view_menu_->addAction(tr("C&lear log, track and markers"), QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_Delete),
                        content_, [this] { content_->reset_button()->click(); });
  view_menu_->addSeparator();
  dark_ =
      view_menu_->addAction(tr("&Dark theme"), QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_D), this, [this](bool on) {
        set_dark(on);
        if (on_theme_chosen) on_theme_chosen(on);
      });
  dark_->setCheckable(true);
  auto* full = view_menu_->addAction(tr("&Full screen"), QKeySequence::FullScreen, this, [this](bool on) {
    setWindowState(windowState().setFlag(Qt::WindowFullScreen, on));
  });
  full->setCheckable(true);

  QMenu* help = menuBar()->addMenu(tr("&Help"));
  help->addAction(tr("&About Korvid"), this, [this] {
    QMessageBox::about(this, tr("About Korvid"), about_text(content_->map_panel()->map().sources()));
  });
}

QDockWidget* main_window_t::add_dock(const QString& name, const QString& title, QWidget* content, int key,
                                     Qt::DockWidgetArea area) {
  auto* dock = new QDockWidget(QString(title).remove('&'), this);
  dock->setObjectName(name);
  dock->setWidget(content);
  dock->setFeatures(QDockWidget::DockWidgetClosable | QDockWidget::DockWidgetMovable |
                    QDockWidget::DockWidgetFloatable);
  addDockWidget(area, dock);
  dock->hide();
  QAction* toggle = dock->toggleViewAction();
  toggle->setChecked(false);
  toggle->setText(title);
  if (key > 0) toggle->setShortcut(QKeySequence(Qt::CTRL | (Qt::Key_0 + key)));
  view_menu_->insertAction(docks_end_, toggle);
  addAction(toggle);  // the shortcut works wherever the focus is in the window
  return dock;
}

void main_window_t::add_link_kind(const QString& title, std::function<bool()> chosen, std::function<void()> choose) {
  QAction* kind = new QAction(title, kinds_);
  kind->setCheckable(true);
  connection_menu_->insertAction(kinds_end_, kind);
  QObject::connect(kind, &QAction::triggered, this, [this, choose = std::move(choose)] {
    choose();
    // A link already wanted moves to the new kind at once.
    if (any_link_enabled(cnc_)) {
      cnc_.disconnect();
      content_->connect_or_disconnect();
    }
  });
  kind_checks_.push_back([kind, chosen = std::move(chosen)] { kind->setChecked(chosen()); });
  kind_checks_.back()();
}

// Binds a dock to its flag in both directions.
void main_window_t::bind(sheet_id_t sheet, QDockWidget* dock) {
  docks_[static_cast<std::size_t>(sheet)] = dock;
  QObject::connect(dock->toggleViewAction(), &QAction::toggled, this,
                   [this, sheet](bool shown) { sheets_.show(sheet, shown); });
}

sky_history_view& main_window_t::sky_history() const {
  return sky_panel_->history();
}

QDockWidget* main_window_t::dock(sheet_id_t sheet) const {
  return sheet == sheet_id_t::settings ? nullptr : docks_[static_cast<std::size_t>(sheet)];
}

QAction* main_window_t::action(const QString& text) const {
  for (QAction* a : findChildren<QAction*>())
    if (QString(a->text()).remove('&') == text) return a;
  return nullptr;
}

bool main_window_t::dark() const {
  return is_dark(QApplication::palette());
}

void main_window_t::set_dark(bool dark) {
  if (dark == this->dark()) return;
  const auto& desktop = desktop_look();
  QApplication::setStyle(QStyleFactory::create(dark ? QString("Fusion") : desktop.style));
  QApplication::setPalette(dark ? dark_palette() : desktop.palette);
}

void main_window_t::changeEvent(QEvent* event) {
  QMainWindow::changeEvent(event);
  if (event->type() == QEvent::PaletteChange) redraw_.mark();
}

void main_window_t::refresh() {
  const bool linked = any_link_enabled(cnc_);
  connect_->setText(linked ? tr("Dis&connect") : tr("&Connect"));
  for (const auto& check : kind_checks_) check();
  imagery_->setChecked(map_cfg_.mode_sat);
  dark_->setChecked(dark());
  for (const sheet_id_t sheet :
       {sheet_id_t::log, sheet_id_t::satellites, sheet_id_t::sky, sheet_id_t::details, sheet_id_t::console}) {
    QDockWidget* d = dock(sheet);
    if (d == nullptr) continue;  // a panel that the program did not add
    if (d->toggleViewAction()->isChecked() == sheets_.shown(sheet)) continue;
    d->setVisible(sheets_.shown(sheet));
    if (sheets_.shown(sheet)) d->raise();
  }
  if (sheets_.shown(sheet_id_t::settings) != settings_->isVisible()) {
    if (sheets_.shown(sheet_id_t::settings))
      settings_->show();
    else
      settings_->hide();
  }
}

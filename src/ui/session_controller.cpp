#include "ui/session_controller.h"

#include <QAction>
#include <QDateTime>
#include <QDir>
#include <QDragEnterEvent>
#include <QDropEvent>
#include <QFileDialog>
#include <QInputDialog>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QMessageBox>
#include <QMimeData>
#include <QUrl>

#include "link/connection.h"
#include "platform/track_export.h"
#include "ui/content_view.h"
#include "ui/link_status_bar.h"
#include "ui/main_window.h"
#include "ui/player_bar.h"
#include "ui/round_button.h"

namespace {

// The first local file among what is dragged, or an empty text.
QString dropped_file(const QMimeData* data) {
  if (data == nullptr) return {};
  for (const QUrl& url : data->urls())
    if (url.isLocalFile()) return url.toLocalFile();
  return {};
}

}  // namespace

session_controller_t::session_controller_t(main_window_t& window, connection_t& cnc, main_queue_t& queue,
                                           console_t& console)
    : QObject(&window),
      window_(window),
      cnc_(cnc),
      recorder_(queue, console),
      track_(cnc),
      // A seek clears what was decoded, the track and the markers, as the window's reset does.
      player_(queue, cnc.source_events(), [&window] { window.content().reset_button()->click(); }),
      bar_(new player_bar_t(player_)),
      open_(window.action("Open capture...")),
      record_(window.action("Record")),
      export_(window.action("Export track...")),
      record_options_(new QAction(tr("Record &options..."), &window)),
      redraw_(this, [this] { refresh(); }) {
  choose_capture = [this] {
    return QFileDialog::getOpenFileName(&window_, tr("Open capture"), QDir::homePath(),
                                        tr("Captures (*.nmea *.ubx *.log *.txt *.bin);;All files (*)"));
  };
  choose_recording = [this] {
    const auto name = QDateTime::currentDateTimeUtc().toString("'korvid-'yyyyMMdd-HHmmss'.nmea'");
    return QFileDialog::getSaveFileName(&window_, tr("Record to"), QDir::homePath() + "/" + name);
  };
  choose_export = [this] {
    return QFileDialog::getSaveFileName(&window_, tr("Export track"), QDir::homePath() + "/track.gpx",
                                        tr("GPX (*.gpx);;GeoJSON (*.geojson)"));
  };
  choose_rotation = [this]() -> std::optional<QString> {
    bool ok = false;
    const auto text = QInputDialog::getText(
        &window_, tr("Record options"),
        tr("Start a new file after a size (100M, 512K, 2G) or on each whole number of hours of UTC (1h, 6h);\n"
           "leave empty to record to one file. The names carry each file's UTC start time."),
        QLineEdit::Normal, rotation_text_, &ok);
    return ok ? std::optional<QString>(text.trimmed()) : std::nullopt;
  };
  cnc_.add_tap(recorder_);
  cnc_.add_tap(track_);
  window_.addToolBar(Qt::BottomToolBarArea, bar_);
  bar_->hide();
  window_.status().show_session(recorder_, player_);
  window_.setAcceptDrops(true);
  window_.installEventFilter(this);

  open_->setEnabled(true);
  QObject::connect(open_, &QAction::triggered, this, [this] {
    const auto path = choose_capture();
    if (!path.isEmpty()) open_capture(path);
  });
  record_->setEnabled(true);
  record_->setCheckable(true);
  QObject::connect(record_, &QAction::triggered, this, [this] {
    record(recorder_.recording() ? QString() : choose_recording());
    refresh();
  });
  // Record options come after Record in the File menu.
  if (QMenu* file = window_.menuBar()->actions().front()->menu()) file->insertAction(export_, record_options_);
  QObject::connect(record_options_, &QAction::triggered, this, [this] { choose_record_options(); });
  export_->setEnabled(true);
  QObject::connect(export_, &QAction::triggered, this, [this] {
    const auto path = choose_export();
    if (!path.isEmpty()) export_track(path);
  });
  // The window's reset clears the track, as it clears the map's.
  QObject::connect(window_.content().reset_button(), &QAbstractButton::clicked, this, [this] { track_.clear(); });
  redraw_.watch(recorder_);
  redraw_.watch(cnc_);
}

session_controller_t::~session_controller_t() {
  cnc_.remove_tap(recorder_);
}

bool session_controller_t::open_capture(const QString& path) {
  if (cnc_.tcp_enabled() || cnc_.ble_enabled() || cnc_.source_enabled()) cnc_.disconnect();
  if (!player_.open(path.toStdString())) {
    QMessageBox::warning(&window_, tr("Open capture"), tr("Cannot read %1.").arg(path));
    return false;
  }
  bar_->show();
  player_.play();
  return true;
}

bool session_controller_t::export_track(const QString& path) {
  track_.sample();
  const auto problem = ::export_track(path, track_, cnc_.gga.map_annotations);
  if (problem.isEmpty()) return true;
  QMessageBox::warning(&window_, tr("Export track"), tr("Cannot write %1: %2").arg(path, problem));
  return false;
}

void session_controller_t::record(const QString& path) {
  if (path.isEmpty()) {
    recorder_.stop();
  } else {
    recorder_.start(path.toStdString(), rotation_);
  }
}

void session_controller_t::choose_record_options() {
  const auto text = choose_rotation();
  if (!text) return;
  if (text->isEmpty()) {
    rotation_ = {};
    rotation_text_.clear();
    return;
  }
  const auto rotation = parse_record_rotation(text->toStdString());
  if (!rotation) {
    QMessageBox::warning(&window_, tr("Record options"),
                         tr("'%1' is neither a size such as 100M nor hours such as 1h.").arg(*text));
    return;
  }
  rotation_ = *rotation;
  rotation_text_ = *text;
}

// A live link wanted again ends the capture: two streams must not meet in one receive path.
void session_controller_t::refresh() {
  record_->setChecked(recorder_.recording());
  const bool live = cnc_.tcp_enabled() || cnc_.ble_enabled() || cnc_.source_enabled();
  if (live && player_.is_open()) {
    player_.close();
    bar_->hide();
  }
}

bool session_controller_t::eventFilter(QObject* watched, QEvent* event) {
  if (watched == &window_ && event->type() == QEvent::DragEnter) {
    auto* drag = static_cast<QDragEnterEvent*>(event);
    if (!dropped_file(drag->mimeData()).isEmpty()) drag->acceptProposedAction();
    return true;
  }
  if (watched == &window_ && event->type() == QEvent::Drop) {
    auto* drop = static_cast<QDropEvent*>(event);
    const auto path = dropped_file(drop->mimeData());
    if (path.isEmpty()) return false;
    drop->acceptProposedAction();
    open_capture(path);
    return true;
  }
  return QObject::eventFilter(watched, event);
}

#include "ui/gps_details_view.h"

#include <QEvent>
#include <QHBoxLayout>
#include <QVBoxLayout>

#include "link/connection.h"
#include "map/gps_heading.h"
#include "platform/qt_compass.h"
#include "ui/gps_dop_view.h"
#include "ui/gps_sat_list_view.h"
#include "ui/gps_sky_view.h"

gps_details_view::gps_details_view(connection_t& gps, open_sheets_t& sheets, QWidget* parent)
    : QWidget(parent),
      gps_(gps),
      sheets_(sheets),
      column_(new QVBoxLayout(this)),
      row_(new QHBoxLayout),
      list_(new gps_sat_list_view(gps, this)),
      dop_(new gps_dop_view(gps, this)) {
  column_->setSpacing(spacing);
  column_->setAlignment(Qt::AlignHCenter | Qt::AlignTop);
  row_->setSpacing(spacing);
  row_->setAlignment(Qt::AlignTop);
  row_->addWidget(list_, 0, Qt::AlignTop);
  column_->addLayout(row_);
  column_->setAlignment(row_, Qt::AlignHCenter);
  column_->addWidget(dop_, 0, Qt::AlignHCenter);
  follow_window();
  arrange();
}

gps_details_view::~gps_details_view() {
  delete sky_;  // before the heading source it observes
}

bool gps_details_view::window_is_portrait() const {
  const QWidget* bounds = window();
  return bounds->width() < bounds->height();
}

// The arrangement follows the window this view is shown in, whatever the view's own height (it
// may sit in a scroll area): watch the window's resizes, and find the window again on a move.
void gps_details_view::follow_window() {
  QWidget* current = window();
  if (current == watched_window_) return;
  if (watched_window_) watched_window_->removeEventFilter(this);
  watched_window_ = current;
  if (current != this) current->installEventFilter(this);
}

bool gps_details_view::event(QEvent* event) {
  switch (event->type()) {
    case QEvent::ParentChange:
      follow_window();
      arrange();
      break;
    case QEvent::Resize:
    case QEvent::Show:
      if (window() == this) arrange();
      break;
    default:
      break;
  }
  return QWidget::event(event);
}

bool gps_details_view::eventFilter(QObject* watched, QEvent* event) {
  if (watched == watched_window_ && event->type() == QEvent::Resize) arrange();
  return QWidget::eventFilter(watched, event);
}

void gps_details_view::arrange() {
  const bool portrait = window_is_portrait();
  if (arranged_ && portrait == portrait_) return;
  arranged_ = true;
  portrait_ = portrait;
  delete sky_;
  delete device_compass_;  // it feeds the heading source about to be replaced
  compass_ = std::make_unique<gps_heading_t>();
  device_compass_ = new qt_compass_t(*compass_, this);
  sky_ = new gps_sky_view(gps_, *compass_, sheets_, this);
  if (portrait_)
    column_->insertWidget(0, sky_, 0, Qt::AlignHCenter);
  else
    row_->insertWidget(0, sky_, 0, Qt::AlignTop);
}

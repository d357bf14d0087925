#include "ui/gps_details_view.h"

#include <QDockWidget>
#include <QEvent>
#include <QHBoxLayout>
#include <QVBoxLayout>

#include "link/connection.h"
#include "map/gps_heading.h"
#include "platform/qt_compass.h"
#include "ui/gps_sat_list_view.h"
#include "ui/gps_sky_view.h"

gps_details_view::gps_details_view(connection_t& gps, QWidget* parent)
    : QWidget(parent),
      gps_(gps),
      column_(new QVBoxLayout(this)),
      row_(new QHBoxLayout),
      list_(new gps_sat_list_view(gps, this)) {
  column_->setSpacing(spacing);
  column_->setAlignment(Qt::AlignHCenter | Qt::AlignTop);
  row_->setSpacing(spacing);
  row_->setAlignment(Qt::AlignTop);
  row_->addWidget(list_, 0, Qt::AlignTop);
  column_->addLayout(row_);
  column_->setAlignment(row_, Qt::AlignHCenter);
  follow_bounds();
  arrange();
}

gps_details_view::~gps_details_view() {
  delete sky_;  // before the heading source it observes
}

// The dock this view stands in (it may sit in a scroll area inside it), or else its window.
QWidget* gps_details_view::bounds() const {
  for (QWidget* w = parentWidget(); w != nullptr; w = w->parentWidget())
    if (auto* dock = qobject_cast<QDockWidget*>(w)) return dock;
  return window();
}

bool gps_details_view::bounds_are_portrait() const {
  const QWidget* b = bounds();
  return b->width() < b->height();
}

// Watch the bounds' resizes, and find them again when the view moves.
void gps_details_view::follow_bounds() {
  QWidget* current = bounds();
  if (current == watched_) return;
  if (watched_) watched_->removeEventFilter(this);
  watched_ = current;
  if (current != this) current->installEventFilter(this);
}

bool gps_details_view::event(QEvent* event) {
  switch (event->type()) {
    case QEvent::ParentChange:
    case QEvent::Show:  // the scroll area or dock around it may have been placed since
      follow_bounds();
      arrange();
      break;
    case QEvent::Resize:
      if (bounds() == this) arrange();
      break;
    default:
      break;
  }
  return QWidget::event(event);
}

bool gps_details_view::eventFilter(QObject* watched, QEvent* event) {
  if (watched == watched_ && event->type() == QEvent::Resize) arrange();
  return QWidget::eventFilter(watched, event);
}

void gps_details_view::arrange() {
  const bool portrait = bounds_are_portrait();
  if (arranged_ && portrait == portrait_) return;
  arranged_ = true;
  portrait_ = portrait;
  delete sky_;
  delete device_compass_;  // it feeds the heading source about to be replaced
  compass_ = std::make_unique<gps_heading_t>();
  device_compass_ = new qt_compass_t(*compass_, this);
  sky_ = new gps_sky_view(gps_, *compass_, this);
  if (portrait_)
    column_->insertWidget(0, sky_, 0, Qt::AlignHCenter);
  else
    row_->insertWidget(0, sky_, 0, Qt::AlignTop);
}

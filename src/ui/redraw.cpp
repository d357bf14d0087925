#include "ui/redraw.h"

#include <QTimer>

void redraw_t::mark() {
  if (scheduled_) return;
  scheduled_ = true;
  QTimer::singleShot(0, context_, [this] {
    scheduled_ = false;
    ++refreshes_;
    refresh_();
  });
}

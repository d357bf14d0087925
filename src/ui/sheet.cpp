#include "ui/sheet.h"

#include <QEvent>
#include <QKeyEvent>
#include <QPainter>
#include <QShortcut>
#include <QVBoxLayout>

#include "ui/palette.h"

namespace {
constexpr int margin = 24;       // screen points between the panel and the window's edges
constexpr int max_width = 720;   // a sheet is a panel, not a second window
}  // namespace

sheet_t::sheet_t(QWidget* content, std::function<void()> closing, QWidget* parent)
    : QWidget(parent), panel_(new QWidget(this)), content_(content), closing_(std::move(closing)) {
  panel_->setAutoFillBackground(true);
  panel_->setBackgroundRole(QPalette::Window);
  auto* layout = new QVBoxLayout(panel_);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->addWidget(content_);
  setFocusPolicy(Qt::StrongFocus);
  auto* escape = new QShortcut(QKeySequence(Qt::Key_Escape), this);
  escape->setContext(Qt::WidgetWithChildrenShortcut);
  QObject::connect(escape, &QShortcut::activated, this, [this] {
    if (closing_) closing_();
  });
  parent->installEventFilter(this);
  hide();
}

void sheet_t::set_shown(bool shown) {
  if (shown == isVisible()) return;
  if (shown) {
    place();
    raise();
    show();
    setFocus();
  } else {
    hide();
  }
}

void sheet_t::place() {
  const QRect area = parentWidget()->rect();
  setGeometry(area);
  const int w = std::min(max_width, area.width() - 2 * margin);
  panel_->setGeometry((area.width() - w) / 2, margin, w, area.height() - 2 * margin);
}

bool sheet_t::eventFilter(QObject* watched, QEvent* event) {
  if (watched == parentWidget() && event->type() == QEvent::Resize) place();
  return QWidget::eventFilter(watched, event);
}

void sheet_t::paintEvent(QPaintEvent*) {
  QPainter p(this);
  p.fillRect(rect(), QColor(0, 0, 0, is_dark(palette()) ? 140 : 90));
}

void sheet_t::mousePressEvent(QMouseEvent*) {
  if (closing_) closing_();
}

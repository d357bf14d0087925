#include "ui/player_bar.h"

#include <QComboBox>
#include <QHelpEvent>
#include <QLabel>
#include <QSlider>
#include <QStyle>
#include <QToolButton>
#include <QToolTip>

#include "session/capture_player.h"

namespace {

constexpr double speeds[] = {0.5, 1, 2, 5, 10, 100, capture_player_t::max_speed};
constexpr int default_speed_index = 1;  // 1x
constexpr int slider_width = 320;       // screen points

}  // namespace

player_bar_t::player_bar_t(capture_player_t& player, QWidget* parent)
    : QToolBar(tr("Capture"), parent),
      player_(player),
      play_(new QToolButton),
      step_(new QToolButton),
      speed_(new QComboBox),
      seek_(new QSlider(Qt::Horizontal)),
      status_(new QLabel),
      redraw_(this, [this] { refresh(); }) {
  setObjectName("capture");
  setMovable(false);
  play_->setAccessibleName(tr("Play or pause"));
  step_->setIcon(style()->standardIcon(QStyle::SP_MediaSkipForward));
  step_->setToolTip(tr("Step one epoch"));
  step_->setAccessibleName(step_->toolTip());
  for (const double speed : speeds) speed_->addItem(QString::fromStdString(speed_text(speed)), speed);
  speed_->setCurrentIndex(default_speed_index);
  speed_->setToolTip(tr("Speed"));
  speed_->setAccessibleName(speed_->toolTip());
  seek_->setRange(0, slider_steps);
  seek_->setMinimumWidth(slider_width);
  seek_->setAccessibleName(tr("Position in the capture"));
  seek_->setMouseTracking(true);
  seek_->installEventFilter(this);
  status_->setTextFormat(Qt::PlainText);
  status_->setAccessibleName(tr("Capture status"));
  for (QWidget* control : {static_cast<QWidget*>(play_), static_cast<QWidget*>(step_), static_cast<QWidget*>(speed_),
                           static_cast<QWidget*>(seek_), static_cast<QWidget*>(status_)})
    addWidget(control);

  QObject::connect(play_, &QToolButton::clicked, this, [this] {
    if (player_.playing()) {
      player_.pause();
    } else {
      player_.play();
    }
  });
  QObject::connect(step_, &QToolButton::clicked, this, [this] { player_.step(); });
  QObject::connect(speed_, &QComboBox::currentIndexChanged, this,
                   [this](int index) { player_.set_speed(speed_->itemData(index).toDouble()); });
  // A click on the groove or a dragged handle seeks once, where the handle comes to rest.
  QObject::connect(seek_, &QSlider::sliderReleased, this, [this] { player_.seek(offset_at(seek_->value())); });
  QObject::connect(seek_, &QSlider::actionTriggered, this, [this](int action) {
    if (action != QAbstractSlider::SliderMove) player_.seek(offset_at(seek_->sliderPosition()));
  });
  QObject::connect(seek_, &QSlider::sliderMoved, this, [this](int value) {
    show_time_at(value, seek_->mapToGlobal(QPoint(seek_->width() * value / slider_steps, 0)));
  });
  redraw_.watch(player_);
  refresh();
}

std::uint64_t player_bar_t::offset_at(int value) const {
  return static_cast<std::uint64_t>(static_cast<double>(player_.size()) * value / slider_steps);
}

int player_bar_t::value_at(std::uint64_t offset) const {
  if (player_.size() == 0) return 0;
  return static_cast<int>(static_cast<double>(offset) * slider_steps / static_cast<double>(player_.size()));
}

void player_bar_t::refresh() {
  const bool playing = player_.playing();
  play_->setIcon(style()->standardIcon(playing ? QStyle::SP_MediaPause : QStyle::SP_MediaPlay));
  play_->setToolTip(playing ? tr("Pause") : tr("Play"));
  play_->setEnabled(player_.is_open() && !player_.ended());
  step_->setEnabled(player_.is_open() && !player_.ended());
  if (!seek_->isSliderDown()) seek_->setValue(value_at(player_.offset()));
  const auto text = QString::fromStdString(player_.status_text());
  if (status_->text() != text) status_->setText(text);
}

// The receiver's time at the place under the cursor.
bool player_bar_t::eventFilter(QObject* watched, QEvent* event) {
  if (watched == seek_ && event->type() == QEvent::ToolTip) {
    const auto* help = static_cast<QHelpEvent*>(event);
    const int value =
        QStyle::sliderValueFromPosition(seek_->minimum(), seek_->maximum(), help->pos().x(), seek_->width());
    show_time_at(value, help->globalPos());
    return true;
  }
  return QToolBar::eventFilter(watched, event);
}

void player_bar_t::show_time_at(int value, QPoint where) {
  const auto time = player_.time_at(offset_at(value));
  QToolTip::showText(where, time.empty() ? tr("no epoch here") : QString::fromStdString(time), seek_);
}

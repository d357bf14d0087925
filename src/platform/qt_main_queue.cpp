#include "platform/qt_main_queue.h"

#include <QMetaObject>
#include <QThread>
#include <QTimer>
#include <chrono>
#include <condition_variable>
#include <memory>
#include <mutex>

namespace {

// One hand-over: the caller waits until the main thread has run the task or the queue closes.
struct handover_t {
  std::mutex mutex;
  std::condition_variable done_cv;
  bool done = false;
};

constexpr auto closing_poll = std::chrono::milliseconds(50);  // how often a waiter checks close()

// The coarse monotonic clock, a few milliseconds fine: decoders read the time for every GSA and GSV
// sentence, and everything timed by it is a tenth of a second or longer. Reading it costs a load
// instead of a clock-source read.
timespec monotonic_now() {
  timespec t{};
#ifdef CLOCK_MONOTONIC_COARSE
  clock_gettime(CLOCK_MONOTONIC_COARSE, &t);
#else
  clock_gettime(CLOCK_MONOTONIC, &t);
#endif
  return t;
}

}  // namespace

qt_main_queue_t::qt_main_queue_t(QObject* context) : context_(context), start_(monotonic_now()) {}

void qt_main_queue_t::post(std::function<void()> task) {
  QMetaObject::invokeMethod(context_, std::move(task), Qt::QueuedConnection);
}

bool qt_main_queue_t::post_and_wait(std::function<void()> task) {
  if (QThread::currentThread() == context_->thread()) {
    task();
    return true;
  }
  if (closing_) return false;
  auto handover = std::make_shared<handover_t>();
  QMetaObject::invokeMethod(
      context_,
      [this, handover, task = std::move(task)] {
        if (!closing_) task();
        std::lock_guard lock(handover->mutex);
        handover->done = true;
        handover->done_cv.notify_all();
      },
      Qt::QueuedConnection);
  std::unique_lock lock(handover->mutex);
  while (!handover->done) {
    if (closing_) return false;
    handover->done_cv.wait_for(lock, closing_poll);
  }
  return true;
}

void qt_main_queue_t::post_after(double delay_s, std::function<void()> task) {
  // A precise timer: the default coarse one may fire a 4 s retry 200 ms early or late.
  QTimer::singleShot(std::chrono::milliseconds(static_cast<long long>(delay_s * 1000.0)), Qt::PreciseTimer, context_,
                     std::move(task));
}

double qt_main_queue_t::now_s() const {
  const timespec t = monotonic_now();
  return static_cast<double>(t.tv_sec - start_.tv_sec) + static_cast<double>(t.tv_nsec - start_.tv_nsec) * 1e-9;
}

void qt_main_queue_t::close() { closing_ = true; }

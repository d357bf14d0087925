#pragma once

#include <QObject>
#include <atomic>
#include <ctime>

#include "core/main_queue.h"

// The main-thread queue as the Qt event loop of the thread that created it.
class qt_main_queue_t final : public main_queue_t {
public:
  explicit qt_main_queue_t(QObject* context);

  void post(std::function<void()> task) override;
  bool post_and_wait(std::function<void()> task) override;
  void post_after(double delay_s, std::function<void()> task) override;
  double now_s() const override;

  // From now on post_and_wait gives up at once, and waiting callers are released: the program is
  // closing and the event loop may never run their tasks.
  void close();

private:
  QObject* context_;
  timespec start_{};  // now_s() counts from here
  std::atomic<bool> closing_{false};
};

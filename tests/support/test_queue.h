#pragma once

#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
#include <vector>

#include "core/main_queue.h"

// The main-thread queue of a test: the test drains it itself, and time moves only when the test
// advances the injected clock. Other threads may post and wait; the test's thread serves them
// with run_pending() or run_until().
class test_queue_t final : public main_queue_t {
public:
  void post(std::function<void()> task) override;
  bool post_and_wait(std::function<void()> task) override;
  void post_after(double delay_s, std::function<void()> task) override;
  double now_s() const override;

  // Runs every task that is due now, including tasks those tasks post. Returns how many ran.
  int run_pending();
  // Moves the clock forward by seconds, running delayed tasks as their time comes.
  void advance(double seconds);
  // Serves the queue until pred() holds or wall_timeout_s passes; for tests with real threads.
  bool run_until(const std::function<bool()>& pred, double wall_timeout_s = 5.0);
  // Waits until a task is ready, without running it: for a test that acts while a thread's report is
  // on its way to the main thread.
  bool wait_posted(double wall_timeout_s = 5.0);
  // Releases waiting threads; later post_and_wait calls give up.
  void close();

  std::size_t delayed_count() const;
  double next_due() const;

private:
  struct delayed_t {
    double due;
    std::function<void()> task;
  };
  mutable std::mutex mutex_;
  std::condition_variable cv_;
  std::deque<std::function<void()>> ready_;
  std::vector<delayed_t> delayed_;
  double now_ = 0.0;
  bool closing_ = false;
};

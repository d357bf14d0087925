#include "support/test_queue.h"

#include <algorithm>
#include <chrono>
#include <limits>
#include <memory>

void test_queue_t::post(std::function<void()> task) {
  std::lock_guard lock(mutex_);
  ready_.push_back(std::move(task));
  cv_.notify_all();
}

bool test_queue_t::post_and_wait(std::function<void()> task) {
  auto done = std::make_shared<bool>(false);
  {
    std::unique_lock lock(mutex_);
    if (closing_) return false;
    ready_.push_back([this, done, task = std::move(task)] {
      task();
      std::lock_guard inner(mutex_);
      *done = true;
      cv_.notify_all();
    });
    cv_.notify_all();
    cv_.wait(lock, [&] { return *done || closing_; });
  }
  return *done;
}

void test_queue_t::post_after(double delay_s, std::function<void()> task) {
  std::lock_guard lock(mutex_);
  delayed_.push_back({now_ + delay_s, std::move(task)});
}

double test_queue_t::now_s() const {
  std::lock_guard lock(mutex_);
  return now_;
}

int test_queue_t::run_pending() {
  int ran = 0;
  for (;;) {
    std::function<void()> task;
    {
      std::lock_guard lock(mutex_);
      auto due = std::find_if(delayed_.begin(), delayed_.end(), [&](const delayed_t& d) { return d.due <= now_; });
      if (!ready_.empty()) {
        task = std::move(ready_.front());
        ready_.pop_front();
      } else if (due != delayed_.end()) {
        task = std::move(due->task);
        delayed_.erase(due);
      } else {
        return ran;
      }
    }
    task();
    ++ran;
  }
}

void test_queue_t::advance(double seconds) {
  double target;
  {
    std::lock_guard lock(mutex_);
    target = now_ + seconds;
  }
  for (;;) {
    run_pending();
    std::lock_guard lock(mutex_);
    double next = std::numeric_limits<double>::infinity();
    for (const auto& d : delayed_) next = std::min(next, d.due);
    if (next > target) {
      now_ = target;
      break;
    }
    now_ = std::max(now_, next);
  }
  run_pending();
}

bool test_queue_t::run_until(const std::function<bool()>& pred, double wall_timeout_s) {
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::duration<double>(wall_timeout_s);
  for (;;) {
    run_pending();
    if (pred()) return true;
    std::unique_lock lock(mutex_);
    if (std::chrono::steady_clock::now() >= deadline) return false;
    cv_.wait_for(lock, std::chrono::milliseconds(5), [&] { return !ready_.empty(); });
  }
}

bool test_queue_t::wait_posted(double wall_timeout_s) {
  std::unique_lock lock(mutex_);
  return cv_.wait_for(lock, std::chrono::duration<double>(wall_timeout_s), [&] { return !ready_.empty(); });
}

void test_queue_t::close() {
  std::lock_guard lock(mutex_);
  closing_ = true;
  cv_.notify_all();
}

std::size_t test_queue_t::delayed_count() const {
  std::lock_guard lock(mutex_);
  return delayed_.size();
}

double test_queue_t::next_due() const {
  std::lock_guard lock(mutex_);
  double next = std::numeric_limits<double>::infinity();
  for (const auto& d : delayed_) next = std::min(next, d.due);
  return next;
}

#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>

#include "core/main_queue.h"

// Which attempt of a threaded transport is the current one, and the descriptor it holds. Each
// attempt carries a generation number; a new attempt or a stop moves it on. Only the attempt's own
// thread opens and closes its descriptor: claim lends it to the transport while the attempt is
// current, release takes it back before the close, and a report of an attempt that is no longer
// current is never delivered. The changes that must agree with the generation hold one mutex, so a
// stop racing a claim never leaves the link up without a descriptor.
class link_attempt_t {
public:
  explicit link_attempt_t(main_queue_t& queue) : queue_(queue) {}
  link_attempt_t(const link_attempt_t&) = delete;
  link_attempt_t& operator=(const link_attempt_t&) = delete;
  ~link_attempt_t() { *alive_ = false; }

  // A new attempt: its generation.
  std::uint64_t begin() { return ++generation_; }
  // Ends the current attempt. Returns the descriptor it held, or -1, for the caller to shut down
  // (which wakes a blocked read); the attempt's thread still closes it.
  int end() {
    std::lock_guard lock(mutex_);
    valid_ = false;
    ++generation_;
    return fd_.exchange(-1);
  }
  bool current(std::uint64_t generation) const { return generation_ == generation; }
  // The current attempt holds its descriptor: the link is up.
  bool valid() const { return valid_; }

  // The descriptor the current attempt holds, or -1.
  int descriptor() const { return fd_; }

  // The attempt's thread is still setting fd up (a connect in progress): end() can shut it down,
  // yet the link is not up. False when the attempt is no longer current.
  bool lend(std::uint64_t generation, int fd) {
    std::lock_guard lock(mutex_);
    if (!current(generation)) return false;
    fd_ = fd;
    return true;
  }
  // The attempt's thread has opened fd. False when the attempt is no longer current.
  bool claim(std::uint64_t generation, int fd) {
    std::lock_guard lock(mutex_);
    if (!current(generation)) return false;
    fd_ = fd;
    valid_ = true;
    return true;
  }
  // The attempt's thread is about to close fd. True when the attempt was still current.
  bool release(std::uint64_t generation, int fd) {
    std::lock_guard lock(mutex_);
    int expected = fd;
    fd_.compare_exchange_strong(expected, -1);
    if (!current(generation)) return false;
    valid_ = false;
    return true;
  }
  // Runs the task on the main thread unless the attempt has ended by then.
  void report(std::uint64_t generation, std::function<void()> task) {
    queue_.post([this, alive = std::weak_ptr(alive_), generation, task = std::move(task)] {
      if (const auto a = alive.lock(); a && *a && current(generation)) task();
    });
  }
  // Runs use(fd) while the link is up, under the lock, so the descriptor cannot be closed and its
  // number reused in the meantime (a bridge write).
  template <class use_t>
  void with_descriptor(use_t use) {
    std::lock_guard lock(mutex_);
    const int fd = fd_;
    if (valid_ && fd != -1) use(fd);
  }

private:
  main_queue_t& queue_;
  std::atomic<bool> valid_{false};
  std::atomic<int> fd_{-1};
  std::atomic<std::uint64_t> generation_{0};
  std::mutex mutex_;
  std::shared_ptr<std::atomic<bool>> alive_ = std::make_shared<std::atomic<bool>>(true);
};

#include "link/link_threads.h"

#include <pthread.h>

void link_threads_t::start(const char* name, std::function<void()> body) {
  auto done = std::make_shared<std::atomic<bool>>(false);
  std::thread thread([name, body = std::move(body), done] {
    ::pthread_setname_np(::pthread_self(), name);
    body();
    *done = true;
  });
  std::lock_guard lock(mutex_);
  workers_.push_back({std::move(thread), std::move(done)});
}

void link_threads_t::join_finished() {
  std::lock_guard lock(mutex_);
  std::erase_if(workers_, [](worker_t& w) {
    if (!*w.done) return false;
    w.thread.join();
    return true;
  });
}

void link_threads_t::join_all() {
  // Joined outside the lock: a body may still be starting its successor, which then ends at once.
  for (;;) {
    std::vector<worker_t> batch;
    {
      std::lock_guard lock(mutex_);
      batch.swap(workers_);
    }
    if (batch.empty()) return;
    for (auto& w : batch) w.thread.join();
  }
}

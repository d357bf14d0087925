#pragma once

#include <atomic>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

// The threads of one transport: each runs under a name that debuggers and top show ("connect",
// "task_rx"), is joined once it has finished, and all are joined before the transport goes. The
// owner makes every running body end (stops its loops, shuts its descriptors down) before
// join_all.
class link_threads_t {
public:
  link_threads_t() = default;
  link_threads_t(const link_threads_t&) = delete;
  link_threads_t& operator=(const link_threads_t&) = delete;
  ~link_threads_t() { join_all(); }

  void start(const char* name, std::function<void()> body);
  // Joins the threads whose bodies have returned; the owner calls it before starting another.
  void join_finished();
  // Joins every thread, also those that running bodies start meanwhile.
  void join_all();

private:
  struct worker_t {
    std::thread thread;
    std::shared_ptr<std::atomic<bool>> done;
  };
  std::mutex mutex_;
  std::vector<worker_t> workers_;
};

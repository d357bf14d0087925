#pragma once

#include <functional>

// A monotonic clock in seconds. Decoders age their tables by it; tests inject their own.
class time_source_t {
public:
  virtual ~time_source_t() = default;
  virtual double now_s() const = 0;
};

// The main thread's task queue: screens, the hub, the settings and every decoder run there.
// Transport threads hand their work over through it and nothing else.
class main_queue_t : public time_source_t {
public:
  // Runs the task on the main thread at a later turn.
  virtual void post(std::function<void()> task) = 0;

  // Runs the task on the main thread and waits until it has run. Returns false, without running
  // it, once the program is closing, so a transport thread never hangs on a main thread that has
  // stopped serving. Called on the main thread itself, it runs the task at once.
  virtual bool post_and_wait(std::function<void()> task) = 0;

  // Runs the task on the main thread once delay_s seconds of now_s() have passed.
  virtual void post_after(double delay_s, std::function<void()> task) = 0;
};

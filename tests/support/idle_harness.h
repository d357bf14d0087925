#pragma once

#include <ctime>
#include <functional>
#include <string_view>

#include "core/console.h"
#include "core/main_queue.h"

// A main queue and console for code that drives the hub directly on one thread (benchmarks, fuzz
// targets): hand-overs run at once, delayed tasks never run, and the clock moves only when told.
struct idle_queue_t final : main_queue_t {
  void post(std::function<void()>) override {}
  bool post_and_wait(std::function<void()> task) override {
    task();
    return true;
  }
  void post_after(double, std::function<void()>) override {}
  double now_s() const override { return now; }
  double now = 0.0;
};

struct silent_console_t final : console_t {
  void print(std::string_view) override {}
  std::time_t utc_now() const override { return 0; }
};

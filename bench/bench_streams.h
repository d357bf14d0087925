#pragma once

#include <cstdint>
#include <vector>

#include "core/console.h"
#include "core/main_queue.h"

// The text captures (or, without them, the project's sample stream) concatenated.
const std::vector<std::uint8_t>& text_stream();
// The number of lines starting with "$" in a stream.
std::uint64_t count_candidates(const std::vector<std::uint8_t>& stream);

// A main queue and console that do nothing: a benchmark drives the hub directly.
struct idle_queue_t final : main_queue_t {
  void post(std::function<void()>) override {}
  bool post_and_wait(std::function<void()> task) override {
    task();
    return true;
  }
  void post_after(double, std::function<void()>) override {}
  double now_s() const override { return 0.0; }
};

struct silent_console_t final : console_t {
  void print(std::string_view) override {}
  std::time_t utc_now() const override { return 0; }
};

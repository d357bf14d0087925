#pragma once

#include <mutex>
#include <string>
#include <string_view>
#include <vector>

#include "core/console.h"

// A console that keeps its lines and tells a fixed time: 2026-01-01 12:00:00 UTC. Transport
// threads print too: while they run, read the lines through copy().
class recording_console_t final : public console_t {
public:
  static constexpr std::time_t fixed_time = 1767268800;

  void print(std::string_view line) override {
    std::lock_guard lock(mutex_);
    lines.emplace_back(line);
  }
  std::time_t utc_now() const override { return fixed_time; }

  std::vector<std::string> copy() const {
    std::lock_guard lock(mutex_);
    return lines;
  }

  std::vector<std::string> lines;

private:
  mutable std::mutex mutex_;
};

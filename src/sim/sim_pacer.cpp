#include "sim/sim_pacer.h"

#include <algorithm>
#include <chrono>
#include <thread>

void run_paced(double period_s, double duration_s, const std::function<std::string()>& next_piece,
               const std::function<void(const std::string&)>& send, const std::atomic<bool>& stop) {
  run_paced([period_s] { return period_s; }, duration_s, next_piece, send, [] {}, stop);
}

void run_paced(const std::function<double()>& period_s, double duration_s,
               const std::function<std::string()>& next_piece, const std::function<void(const std::string&)>& send,
               const std::function<void()>& idle, const std::atomic<bool>& stop) {
  using clock = std::chrono::steady_clock;
  const auto start = clock::now();
  double next_send = 0.0;
  while (!stop) {
    const double now = std::chrono::duration<double>(clock::now() - start).count();
    if (duration_s > 0 && now >= duration_s) return;
    if (now >= next_send) {
      send(next_piece());
      next_send += period_s();
      continue;
    }
    idle();
    std::this_thread::sleep_for(std::chrono::duration<double>(std::min(next_send - now, stop_poll_s)));
  }
}

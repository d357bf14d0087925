#pragma once

#include <atomic>
#include <functional>
#include <string>

// Hands the next piece to `send` once every period_s seconds, from the start, until duration_s
// has passed (0: never) or `stop` is set; a stop is seen within stop_poll_s.
inline constexpr double stop_poll_s = 0.05;  // s
void run_paced(double period_s, double duration_s, const std::function<std::string()>& next_piece,
               const std::function<void(const std::string&)>& send, const std::atomic<bool>& stop);
// The same with a period asked before each piece (a receiver told a new rate), and `idle` called
// between pieces at least every stop_poll_s (to read what a client sends).
void run_paced(const std::function<double()>& period_s, double duration_s,
               const std::function<std::string()>& next_piece, const std::function<void(const std::string&)>& send,
               const std::function<void()>& idle, const std::atomic<bool>& stop);

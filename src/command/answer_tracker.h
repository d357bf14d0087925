#pragma once

#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <span>
#include <string>
#include <string_view>

#include "command/typed_command.h"
#include "core/main_queue.h"

enum class answer_state_t : std::uint8_t { waiting, accepted, refused, answered, no_answer };
// "accepted", "refused", "answered", "no answer", "waiting"
std::string_view answer_state_text(answer_state_t state);

struct answer_t {
  std::uint64_t ticket = 0;
  std::string command;  // the command's text
  answer_state_t state = answer_state_t::waiting;
  std::string detail;  // what came back: VALGET's values, MON-VER's identity
};

// Matches the receiver's answers to the commands sent: ACK-ACK or ACK-NAK for a CFG message, the
// message itself for a poll, each to the oldest command waiting for it. A command without an
// answer after answer_wait_s is reported as "no answer". Runs on the main thread.
class answer_tracker_t {
public:
  static constexpr double answer_wait_s = 2.0;
  using report_t = std::function<void(const answer_t&)>;

  answer_tracker_t(main_queue_t& queue, report_t report) : queue_(queue), report_(std::move(report)) {}
  answer_tracker_t(const answer_tracker_t&) = delete;
  answer_tracker_t& operator=(const answer_tracker_t&) = delete;

  // Starts the wait for the command's answer; 0 for a command that expects none.
  std::uint64_t expect(const typed_command_t& command);
  // A frame the receiver sent.
  void frame(ubx_id_t message, std::span<const std::uint8_t> payload);
  std::size_t waiting() const { return pending_.size(); }

private:
  struct pending_t {
    answer_t answer;
    ubx_id_t message;
    answer_kind_t kind = answer_kind_t::none;
  };
  void resolve(ubx_id_t message, answer_kind_t kind, answer_state_t state, const std::string& detail);
  void time_out(std::uint64_t ticket);

  main_queue_t& queue_;
  report_t report_;
  std::deque<pending_t> pending_;
  std::uint64_t next_ticket_ = 1;
  std::shared_ptr<bool> alive_ = std::make_shared<bool>(true);  // guards delayed tasks
};

#include "command/answer_tracker.h"

#include <algorithm>
#include <array>

#include "command/config_keys.h"

namespace {

constexpr std::uint8_t valget_answer_version = 1;  // a VALGET poll has version 0

}  // namespace

std::string_view answer_state_text(answer_state_t state) {
  constexpr std::array<std::string_view, 5> texts{"waiting", "accepted", "refused", "answered", "no answer"};
  return texts[static_cast<std::size_t>(state)];
}

std::uint64_t answer_tracker_t::expect(const typed_command_t& command) {
  if (command.answer == answer_kind_t::none) return 0;
  const auto ticket = next_ticket_++;
  pending_.push_back({{ticket, command.text, answer_state_t::waiting, {}}, command.message, command.answer});
  queue_.post_after(answer_wait_s, [this, ticket, alive = std::weak_ptr<bool>(alive_)] {
    if (alive.lock()) time_out(ticket);
  });
  return ticket;
}

void answer_tracker_t::frame(ubx_id_t message, std::span<const std::uint8_t> payload) {
  if ((message == ubx_ack_ack || message == ubx_ack_nak) && payload.size() == 2) {
    resolve({payload[0], payload[1]}, answer_kind_t::ack,
            message == ubx_ack_ack ? answer_state_t::accepted : answer_state_t::refused, {});
    return;
  }
  if (message == ubx_cfg_valget && !payload.empty() && payload[0] == valget_answer_version) {
    // The values come before the acknowledgement that ends the command.
    const auto it = std::find_if(pending_.begin(), pending_.end(), [](const pending_t& p) {
      return p.message == ubx_cfg_valget && p.answer.detail.empty();
    });
    const auto items = items_of(payload);
    if (it != pending_.end() && items) it->answer.detail = items_text(*items);
    return;
  }
  std::string detail;
  if (message == ubx_mon_ver) {
    if (const auto identity = decode_mon_ver(payload)) detail = identity_text(*identity);
  }
  resolve(message, answer_kind_t::poll, answer_state_t::answered, detail);
}

void answer_tracker_t::resolve(ubx_id_t message, answer_kind_t kind, answer_state_t state, const std::string& detail) {
  const auto it = std::find_if(pending_.begin(), pending_.end(),
                               [&](const pending_t& p) { return p.message == message && p.kind == kind; });
  if (it == pending_.end()) return;
  auto answer = std::move(it->answer);
  pending_.erase(it);
  answer.state = state;
  if (!detail.empty()) answer.detail = detail;
  report_(answer);
}

void answer_tracker_t::time_out(std::uint64_t ticket) {
  const auto it =
      std::find_if(pending_.begin(), pending_.end(), [&](const pending_t& p) { return p.answer.ticket == ticket; });
  if (it == pending_.end()) return;
  auto answer = std::move(it->answer);
  pending_.erase(it);
  answer.state = answer_state_t::no_answer;
  report_(answer);
}

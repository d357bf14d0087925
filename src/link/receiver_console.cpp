#include "link/receiver_console.h"

receiver_console_t::receiver_console_t(connection_t& hub, main_queue_t& queue, console_t& console)
    : hub_(hub),
      console_(console),
      tracker_(queue, [this](const answer_t& answer) { report(answer); }),
      scanner_([this](ubx_id_t message, std::span<const std::uint8_t> payload) {
        tracker_.frame(message, payload);
        poll_identity_when_due();
      }) {
  hub_.add_tap(*this);
}

receiver_console_t::~receiver_console_t() {
  hub_.remove_tap(*this);
}

std::string receiver_console_t::send(std::string_view typed) {
  const auto parsed = parse_typed_command(typed);
  if (!parsed.command) return parsed.error;
  if (read_only_) {
    console_.print(console_.date() + "  read-only link: not sent " + parsed.command->text);
    return "the link is read-only: nothing is sent";
  }
  if (up_) {
    transmit(*parsed.command);
  } else {
    waiting_for_link_.push_back(*parsed.command);
  }
  return {};
}

void receiver_console_t::received(std::span<const std::uint8_t> bytes) {
  scanner_.feed(bytes);
}

void receiver_console_t::link_up() {
  up_ = true;
  scanner_.reset();
  identity = {};
  identity_due_ = poll_identity_;
  for (const auto& command : waiting_for_link_) transmit(command);
  waiting_for_link_.clear();
}

// A UBX answer in a stream of sentences makes the receive path take the link for binary until
// 2048 bytes have passed without a record, which pauses the decoding of sentences. So the identity
// is asked for only once the receiver speaks UBX itself, or with the user's first command, whose
// answer comes in UBX anyway.
void receiver_console_t::poll_identity_when_due() {
  if (!identity_due_ || read_only_ || !up_) return;
  identity_due_ = false;
  transmit(ubx_command(ubx_mon_ver, {}, {}));
}

void receiver_console_t::transmit(const typed_command_t& command) {
  poll_identity_when_due();
  if (!hub_.send_to_receiver(command.bytes)) {
    console_.print(console_.date() + "  no link to send " + command.text);
    return;
  }
  console_.print(console_.date() + "  sent " + command.text);
  hub_.log_sent(command.text);
  note("sent " + command.text);
  tracker_.expect(command);
}

void receiver_console_t::report(const answer_t& answer) {
  std::string line = answer.command + "  " + std::string(answer_state_text(answer.state));
  if (!answer.detail.empty()) line += ": " + answer.detail;
  if (answer.command == ubx_name(ubx_mon_ver) && answer.state == answer_state_t::answered) identity = answer.detail;
  console_.print(console_.date() + "  " + line);
  note(line);
}

// The time of day, then the line: the screens show the date once, elsewhere.
void receiver_console_t::note(const std::string& line) {
  constexpr std::size_t time_at = 11, time_length = 8;  // "hh:mm:ss" in "2026-01-01 12:00:00 +0000"
  answers.modify(
      [&](string_ring_t& ring) { ring.push_back(console_.date().substr(time_at, time_length) + "  " + line); });
}

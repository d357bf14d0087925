#include "ntrip/ntrip_client.h"

#include "link/link_error.h"

ntrip_client_t::ntrip_client_t(ntrip_events_t& events, main_queue_t& queue, const make_tcp_t& make_tcp)
    : events_(events), queue_(queue), tcp_(make_tcp(*this)) {}

ntrip_client_t::~ntrip_client_t() {
  *alive_ = false;
  tcp_->stop();
}

void ntrip_client_t::connect(const ntrip_address_t& address) {
  stop();
  address_ = address;
  table_ = address.mountpoint.empty();
  enabled_ = true;
  attempt();
}

void ntrip_client_t::stop() {
  ++request_;
  enabled_ = false;
  state_ = state_t::idle;
  tcp_->stop();
}

void ntrip_client_t::attempt() {
  state_ = state_t::idle;
  tcp_->stop();
  tcp_->connect(address_.host, address_.port);
}

void ntrip_client_t::send(std::string_view text) {
  if (!streaming()) return;
  tcp_->write({reinterpret_cast<const std::uint8_t*>(text.data()), text.size()});
}

void ntrip_client_t::link_up(const std::string&) {
  state_ = state_t::head;
  head_.clear();
  table_text_.clear();
  chunks_ = {};
  const auto request = ntrip_request(address_);
  tcp_->write({reinterpret_cast<const std::uint8_t*>(request.data()), request.size()});
}

void ntrip_client_t::link_down(const std::string& peer, std::int32_t error) {
  // A caster ends a source table by closing the connection.
  if (table_ && state_ == state_t::body) {
    finish_table();
    return;
  }
  fail(peer + "  " + link_error_text(error), !table_);
}

void ntrip_client_t::link_bytes(std::span<const std::uint8_t> bytes) {
  if (state_ == state_t::body) {
    body(bytes);
    return;
  }
  if (state_ != state_t::head) return;
  head_.append(bytes.begin(), bytes.end());
  const auto answer = read_ntrip_answer(head_, address_.mountpoint);
  switch (answer.kind) {
    case ntrip_answer_t::kind_t::incomplete:
      return;
    case ntrip_answer_t::kind_t::refused:
      // A wrong password stays wrong; a missing mountpoint may come back when its base does.
      fail(answer.text, !table_ && answer.text.substr(0, 3) != "401");
      return;
    case ntrip_answer_t::kind_t::stream:
    case ntrip_answer_t::kind_t::sourcetable:
      break;
  }
  state_ = state_t::body;
  chunked_ = answer.chunked;
  events_.ntrip_up(table_ ? "source table of " + address_.caster() : address_.caster() + "/" + address_.mountpoint,
                   answer.version2);
  const std::string rest = head_.substr(answer.head_size);
  head_.clear();
  body({reinterpret_cast<const std::uint8_t*>(rest.data()), rest.size()});
}

void ntrip_client_t::body(std::span<const std::uint8_t> bytes) {
  if (chunked_) {
    decoded_.clear();
    chunks_.feed(bytes, decoded_);
    if (chunks_.failed()) {
      fail("the caster's chunked stream is malformed", !table_);
      return;
    }
    bytes = decoded_;
  }
  if (bytes.empty()) return;
  if (!table_) {
    events_.ntrip_data(bytes);
    return;
  }
  if (table_text_.size() + bytes.size() <= table_limit) table_text_.append(bytes.begin(), bytes.end());
  if (table_text_.find("ENDSOURCETABLE") != std::string::npos) finish_table();
}

// The table is whole at its end line or when the caster closes the connection.
void ntrip_client_t::finish_table() {
  state_ = state_t::idle;
  enabled_ = false;
  tcp_->stop();
  events_.ntrip_table(table_text_);
}

void ntrip_client_t::fail(const std::string& text, bool retry) {
  state_ = state_t::idle;
  tcp_->stop();
  if (!retry) enabled_ = false;
  events_.ntrip_down(text, retry);
  if (!retry) return;
  queue_.post_after(reconnect_delay, [this, alive = std::weak_ptr<bool>(alive_), request = request_] {
    const auto still = alive.lock();
    if (still && *still && request == request_ && enabled_ && state_ == state_t::idle) attempt();
  });
}

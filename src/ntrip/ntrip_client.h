#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "core/main_queue.h"
#include "link/link.h"
#include "ntrip/ntrip_address.h"
#include "ntrip/ntrip_http.h"

// What the NTRIP client reports, on the main thread.
class ntrip_events_t {
public:
  virtual ~ntrip_events_t() = default;
  // The caster accepted the request: the stream (or the source table) follows.
  virtual void ntrip_up(const std::string& what, bool version2) = 0;
  // The connection failed or the caster refused; text says why. retry: another attempt follows.
  virtual void ntrip_down(const std::string& text, bool retry) = 0;
  // Correction bytes of the mountpoint's stream, with any transfer coding removed.
  virtual void ntrip_data(std::span<const std::uint8_t> bytes) = 0;
  // The whole source table, once the caster has sent it.
  virtual void ntrip_table(std::string_view text) = 0;
};

// A client of an NTRIP caster over a TCP link: sends the request once the link is up, reads the
// answer head, then hands on the body (a mountpoint's stream, chunked or not, or the source table).
// The TCP link brings the threads, the lookup, the generation and the quiet stop; everything here
// runs on the main thread. A lost or refused stream is retried every reconnect_delay s while it is
// still the user's last request, except a refused password, which no retry can mend.
class ntrip_client_t final : private link_events_t {
public:
  static constexpr double reconnect_delay = 4.0;       // s
  static constexpr std::size_t table_limit = 1 << 20;  // bytes of a source table kept
  using make_tcp_t = std::function<std::unique_ptr<tcp_link_t>(link_events_t&)>;

  ntrip_client_t(ntrip_events_t& events, main_queue_t& queue, const make_tcp_t& make_tcp);
  ~ntrip_client_t() override;

  // A mountpoint's stream, or with an empty mountpoint the caster's source table.
  void connect(const ntrip_address_t& address);
  void stop();
  // Sends bytes to the caster (the receiver's position for a network mountpoint) while streaming.
  void send(std::string_view text);
  // The user wants this client (set by connect, cleared by stop and by a finished source table).
  bool enabled() const { return enabled_; }
  // A stream is flowing.
  bool streaming() const { return state_ == state_t::body && !table_; }
  const ntrip_address_t& address() const { return address_; }

private:
  enum class state_t { idle, head, body };
  void link_up(const std::string& peer) override;
  void link_down(const std::string& peer, std::int32_t error) override;
  void link_bytes(std::span<const std::uint8_t> bytes) override;
  void body(std::span<const std::uint8_t> bytes);
  void fail(const std::string& text, bool retry);
  void finish_table();
  void attempt();

  ntrip_events_t& events_;
  main_queue_t& queue_;
  std::unique_ptr<tcp_link_t> tcp_;
  ntrip_address_t address_;
  bool enabled_ = false;
  bool table_ = false;  // asking for the source table
  state_t state_ = state_t::idle;
  std::string head_;  // the answer so far, while reading its head
  bool chunked_ = false;
  chunked_decoder_t chunks_;
  std::vector<std::uint8_t> decoded_;  // reused for each chunk's data
  std::string table_text_;
  std::uint64_t request_ = 0;  // counts connects and stops; a retry serves one
  std::shared_ptr<bool> alive_ = std::make_shared<bool>(true);
};

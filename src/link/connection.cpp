#include "link/connection.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>

#include "core/word_scan.h"
#include "link/link_error.h"
#include "link/serial_link.h"
#include "nmea/sentence.h"
#include "ubx/record_text.h"

namespace {

// "$GNGGA" or "$GPGGA" anywhere in the line, found in one pass over its "$" signs.
bool contains_gga_tag(std::string_view line) {
  for (auto at = word_scan::find(line.data(), 0, line.size(), '$'); at < line.size();
       at = word_scan::find(line.data(), at + 1, line.size(), '$')) {
    const auto tag = line.substr(at + 1, 5);
    if (tag == "GNGGA" || tag == "GPGGA") return true;
  }
  return false;
}

}  // namespace

connection_t::connection_t(main_queue_t& queue, console_t& console, link_factory_t& links)
    : gsa(queue), gsv(queue), sky(queue), queue_(queue), console_(console), links_(links) {
  // A sentence of at most sentence_max_length characters has at most that many fields.
  fields_.resize(sentence_max_length);
  gps_bin_.arr_update.push_back(&record_tally_);
  for (auto* decoder : decoders_) any_cancellable_.push_back(decoder->subscribe([this] { notify(); }));
  any_cancellable_.push_back(sky.subscribe([this] { notify(); }));
}

connection_t::~connection_t() {
  *alive_ = false;
}

tcp_link_t& connection_t::tcp_client() {
  if (!tcp_client_) tcp_client_ = links_.make_tcp(tcp_side_);
  return *tcp_client_;
}

// The screens show the central's own state (the radio's, above all), so its notices are the hub's.
ble_link_t& connection_t::ble() {
  if (!ble_) {
    ble_ = links_.make_ble(ble_side_);
    any_cancellable_.push_back(ble_->subscribe([this] { notify(); }));
  }
  return *ble_;
}

void connection_t::connect_tcp(const std::string& host, std::uint16_t port) {
  ++tcp_request_;
  source_side_up_ = false;
  attempt_tcp(host, port);
}

void connection_t::attempt_tcp(const std::string& host, std::uint16_t port) {
  console_.print(console_.date() + "  Connect " + host_port(host, port));
  status_tcp = "Connect " + host_port(host, port);
  sta_fg_tcp = colour_t::green;
  if (tcp_client().connect(host, port) != 0) {
    console_.print("already connected");
    return;
  }
  tcp_host_ = host;
  tcp_port_ = port;
}

void connection_t::connect_ble(const std::string& name) {
  source_side_up_ = false;
  status_ble = "BLE scanning...";
  sta_fg_ble = colour_t::green;
  ble().connect(name);
}

// A new address gets a new link; the same address keeps the link it has.
void connection_t::connect_source(const source_address_t& address) {
  ++source_request_;
  if (!source_ || source_->address() != address) {
    if (source_) source_->stop();
    source_ = links_.make_source(address, source_side_);
  }
  if (!source_) {
    console_.print(console_.date() + "  " + address.text() + " cannot be opened by this program");
    status_source = "not available";
    sta_fg_source = colour_t::red;
    return;
  }
  attempt_source();
}

void connection_t::attempt_source() {
  console_.print(console_.date() + "  Connect " + source_->address().text());
  status_source = "Connect " + source_->address().text();
  sta_fg_source = colour_t::green;
  if (source_->open() != 0) console_.print("already connected");
}

void connection_t::disconnect() {
  console_.print(console_.date() + "  Disconnecting");
  ++tcp_request_;
  ++source_request_;
  source_side_up_ = false;
  if (tcp_client_) tcp_client_->stop();
  if (ble_) ble_->stop();
  if (source_) source_->stop();
  status_ble = "offline";
  status_tcp = "offline";
  status_source = "offline";
  sta_fg_ble = colour_t::accent;
  sta_fg_tcp = colour_t::accent;
  sta_fg_source = colour_t::accent;
}

void connection_t::reset() {
  console_.print("reset");
  for (auto* decoder : decoders_) decoder->reset();
  sky.reset();
  clear_log();
}

void connection_t::clear_log() {
  arr_rx.modify([](string_ring_t& log) { log.clear(); });
  msg_count = 0;
  msg_good = 0;
  msg_ack_count = 0;
  msg_ack = false;
}

void connection_t::link_up(side_t& side, const std::string& peer) {
  console_.print(console_.date() + "  connected to " + peer);
  side.splitter.reset();
  if (&side == &source_side_) source_side_up_ = true;
  clear_log();
  side.status = peer;
  side.colour = colour_t::secondary;
  for (auto* tap : taps_) tap->link_up();
}

void connection_t::link_down(side_t& side, const std::string& peer, std::int32_t error) {
  if (&side == &source_side_) {
    source_down(peer, error);
    return;
  }
  if (&side == &ble_side_) {
    status_ble = "BLE scanning...";
    sta_fg_ble = colour_t::red;
    console_.print(console_.date() + "  disconnected from " + peer);
    return;
  }
  status_tcp = link_error_text(error);
  sta_fg_tcp = colour_t::red;
  console_.print(console_.date() + "  connect " + peer + "  " + std::to_string(error) + " " + status_tcp.get());
  schedule_reconnect();
}

// Retries the request that failed while it is still the user's last and the link is not up; every
// failure schedules the next. A disconnect or a new connect ends the request and its retries.
void connection_t::schedule_reconnect() {
  queue_.post_after(reconnect_delay, [this, alive = std::weak_ptr<bool>(alive_), request = tcp_request_,
                                      host = tcp_host_, port = tcp_port_] {
    const auto still_alive = alive.lock();
    if (!still_alive || !*still_alive) return;
    if (request == tcp_request_ && !tcp_client().valid()) attempt_tcp(host, port);
  });
}

// Shown and retried as a TCP failure is, in the words of the link's kind.
void connection_t::source_down(const std::string& peer, std::int32_t error) {
  const bool serial = source_ && source_->address().kind == source_address_t::kind_t::serial;
  status_source = serial ? serial_error_text(error) : link_error_text(error);
  sta_fg_source = colour_t::red;
  console_.print(console_.date() + "  connect " + peer + "  " + std::to_string(error) + " " + status_source.get());
  queue_.post_after(reconnect_delay, [this, alive = std::weak_ptr<bool>(alive_), request = source_request_] {
    const auto still_alive = alive.lock();
    if (!still_alive || !*still_alive) return;
    if (request == source_request_ && source_ && !source_->valid()) attempt_source();
  });
}

// The bridge: TCP sends to Bluetooth and to a source link (corrections for a receiver on a serial
// port); Bluetooth and a source link send to TCP. A link that was never created cannot be up:
// bridged bytes for it are dropped without creating it (and, for Bluetooth, without waking the
// platform's stack for every TCP chunk).
void connection_t::bridge(const side_t& from, std::span<const std::uint8_t> bytes) {
  if (&from != &tcp_side_) {
    if (tcp_client_) tcp_client_->write(bytes);
    return;
  }
  if (ble_) ble_->write(bytes);
  if (source_) source_->write(bytes);
}

bool connection_t::send_to_receiver(std::span<const std::uint8_t> bytes) {
  link_t* receiver = nullptr;
  if (source_enabled()) {
    receiver = source_.get();
  } else if (ble_enabled()) {
    receiver = ble_.get();
  } else if (tcp_enabled()) {
    receiver = tcp_client_.get();
  }
  if (receiver == nullptr) return false;
  receiver->write(bytes);
  return true;
}

// Every chunk is first forwarded to the other links for the bridge and shown to the taps, then cut
// into lines or decoded as binary. Whether a binary chunk decoded a record decides whether the link stays binary.
void connection_t::link_bytes(side_t& side, std::span<const std::uint8_t> bytes) {
  bridge(side, bytes);
  for (auto* tap : taps_) tap->received(bytes);
  const auto cut = side.splitter.feed(bytes);
  if (cut.binary) {
    const auto records = record_tally_.records;
    receive_arr(bytes);
    const auto noise = side.splitter.binary_handled(bytes.size(), record_tally_.records != records);
    if (noise != 0)
      console_.print(console_.date() + "  back to text after " + std::to_string(noise) + " bytes without a UBX record");
    return;
  }
  if (cut.lines.empty()) return;
  binary_ = false;
  for (const auto& line : cut.lines) receive_line(line);
}

void connection_t::count_candidate() {
  if (msg_ack) {
    ++msg_count;
  } else if (++msg_ack_count > msg_ack_limit) {
    msg_ack = true;
  }
}

void connection_t::receive_line(std::string_view line) {
  if (line.empty() || line.front() != '$') return;
  count_candidate();
  // Length, checksum and fields come from one pass; they are still judged in that order.
  const auto scan = scan_sentence(line, fields_);
  if (scan.characters < sentence_min_length || scan.characters > sentence_max_length) return;
  if (!scan.checksum_ok) return;
  const std::span<const std::string_view> fields(fields_.data(), std::min(scan.field_count, fields_.size()));
  for (auto* decoder : decoders_) decoder->update(fields);
  sky.update(fields);
  if (msg_ack) {
    ++msg_good;
  } else {
    msg_ack = true;
  }
  if (show_all || contains_gga_tag(line)) log_append(line);
}

void connection_t::receive_arr(std::span<const std::uint8_t> bytes) {
  binary_ = true;
  const auto result = gps_bin_.decode(bytes);
  switch (result) {
    case gps_bin_return_t::need_more_data:
    case gps_bin_return_t::unsupported_type:
      return;
    case gps_bin_return_t::ok:
      msg_ack = true;
      ++msg_good;
      log_record();
      break;
    case gps_bin_return_t::chk_invalid:
    case gps_bin_return_t::invalid_length:
    case gps_bin_return_t::invalid_data:
      log_error(result);
      break;
  }
  count_candidate();
}

// "[2026-01-01 12:00:00 +0000  binary packet: checksum invalid]"
void connection_t::log_error(gps_bin_return_t result) {
  const auto what = text(result);
  char entry[96];
  const int n = std::snprintf(entry, sizeof entry, "[%s  binary packet: %.*s]", console_.date().c_str(),
                              static_cast<int>(what.size()), what.data());
  log_append(std::string_view(entry, static_cast<std::size_t>(n)));
}

// In binary mode the log shows the latest decoded record, followed by any error entries since.
void connection_t::log_record() {
  arr_rx.modify([](string_ring_t& log) { log.clear(); });
  entry_.clear();
  if (gps_bin_.decoded_type == gps_bin_format_t::posllh) append_text(entry_, gps_bin_.posllh);
  if (gps_bin_.decoded_type == gps_bin_format_t::pvt) append_text(entry_, gps_bin_.pvt);
  log_append(entry_);
}

void connection_t::log_append(std::string_view entry) {
  arr_rx.modify([&](string_ring_t& log) { log.push_back(entry); });
  while (arr_rx->size() > (log_shown_ ? log_limit_shown : log_limit_hidden))
    arr_rx.modify([](string_ring_t& log) { log.pop_front(); });
}

std::string connection_t::crc_error_text() const {
  if (msg_count <= msg_good) return {};
  const float p = static_cast<float>(msg_count - msg_good) * 100.0f / static_cast<float>(msg_count);
  if (p == 0.0f) return {};
  char text[64];
  const int n = std::snprintf(text, sizeof text, "%.f%%  ", static_cast<double>(p));
  return std::string(text, static_cast<std::size_t>(n));
}

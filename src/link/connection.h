#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "core/colour.h"
#include "core/console.h"
#include "core/main_queue.h"
#include "core/observable.h"
#include "core/ring.h"
#include "gnss/gnss_sky.h"
#include "link/chunk_splitter.h"
#include "link/link_factory.h"
#include "link/receive_tap.h"
#include "nmea/gps_gngga.h"
#include "nmea/gps_gngll.h"
#include "nmea/gps_gngsa.h"
#include "nmea/gps_gnrmc.h"
#include "nmea/gps_gnvtg.h"
#include "nmea/gps_gpgsv.h"
#include "nmea/gps_protocol.h"
#include "ubx/gps_bin.h"

// The hub: owns the two transports and the decoders, takes every received chunk from the links,
// validates sentences and hands their fields to the decoders, keeps the message counters, the link
// status texts and the short log, and forwards raw bytes between the two links (the bridge).
// Everything here runs on the main thread.
class connection_t final : public observable_t {
public:
  static constexpr double reconnect_delay = 4.0;       // s between a TCP failure and the retry
  static constexpr std::uint64_t msg_ack_limit = 10;   // candidates that acknowledge a stream
  static constexpr std::size_t log_limit_hidden = 30;  // arr_rx entries while the log is hidden
  static constexpr std::size_t log_limit_shown = 40;   // ... and while it is shown

  connection_t(main_queue_t& queue, console_t& console, link_factory_t& links);
  ~connection_t() override;

  // Operations of the screens.
  void connect_tcp(const std::string& host, std::uint16_t port);
  void connect_ble(const std::string& name);
  // A serial port, a UDP port or a gpsd daemon, the third link beside TCP and Bluetooth.
  void connect_source(const source_address_t& address);
  void disconnect();
  void reset();
  // Empties the log and restarts the message counters and the acknowledgement, as a new link does.
  void clear_log();
  // The log keeps log_limit_shown entries while the screens show it, else log_limit_hidden.
  void set_log_shown(bool shown) { log_shown_ = shown; }
  std::string crc_error_text() const;

  // Taps see every chunk before it is decoded, in the order they were added. A tap is removed
  // before it goes.
  void add_tap(receive_tap_t& tap) { taps_.push_back(&tap); }
  void remove_tap(receive_tap_t& tap) { std::erase(taps_, &tap); }
  // Bytes for the receiver (commands, corrections): to the source link or Bluetooth when the user
  // wants one of them, else to TCP; a TCP link beside one of them is the bridge's peer, not the
  // receiver. False when no link is wanted; dropped by the link while it is not up.
  bool send_to_receiver(std::span<const std::uint8_t> bytes);
  // A command sent to the receiver, in the log beside what it sends, dated and marked as sent.
  void log_sent(std::string_view text) { log_append(console_.date() + "  sent " + std::string(text)); }

  // Where each transport reports. A replay feeds the TCP link's receive path without connecting.
  link_events_t& tcp_events() { return tcp_side_; }
  link_events_t& ble_events() { return ble_side_; }
  link_status_events_t& source_events() { return source_side_; }

  // The transports, created on first use.
  tcp_link_t& tcp_client();
  ble_link_t& ble();
  // Whether the user wants a link; false for a transport not yet created.
  bool tcp_enabled() const { return tcp_client_ && tcp_client_->enabled(); }
  bool ble_enabled() const { return ble_ && ble_->enabled(); }
  bool source_enabled() const { return source_ && source_->enabled(); }
  // The source link last asked for; nullptr before the first.
  const source_link_t* source() const { return source_.get(); }

  // The source side came up since the last disconnect or TCP or Bluetooth connect: its status is
  // the one to show, also for a capture that plays through it without a source link.
  bool source_side_up() const { return source_side_up_; }

  // The data handled last was a binary chunk (UBX), not text lines.
  bool binary() const { return binary_; }
  // The flags of the last NAV-PVT record (differential and carrier solution), 0 before one.
  std::uint8_t pvt_flags() const { return gps_bin_.pvt.flags; }

  published_t<colour_t> sta_fg_ble{*this, colour_t::primary};
  published_t<colour_t> sta_fg_tcp{*this, colour_t::primary};
  published_t<std::string> status_ble{*this, "offline"};
  published_t<std::string> status_tcp{*this, "offline"};
  published_t<colour_t> sta_fg_source{*this, colour_t::primary};
  published_t<std::string> status_source{*this, "offline"};
  published_t<string_ring_t> arr_rx{*this, string_ring_t(log_limit_shown)};
  published_t<bool> show_all{*this, false};  // log every valid sentence, not only GGA
  std::uint64_t msg_ack_count = 0;
  bool msg_ack = false;
  std::uint64_t msg_count = 0;
  std::uint64_t msg_good = 0;

  // The six decoders. Their change notices are the hub's own.
  gps_gngga_t gga;
  gps_gngll_t gll;
  gps_gnrmc_t rmc;
  gps_gnvtg_t vtg;
  gps_gngsa_t gsa;
  gps_gpgsv_t gsv;
  // The satellites of every system and signal, offered every valid sentence after the six.
  gnss_sky_t sky;

private:
  // One per transport: where it reports, with the status it drives and its own line cutter.
  class side_t final : public link_status_events_t {
  public:
    side_t(connection_t& hub, published_t<std::string>& status, published_t<colour_t>& colour)
        : hub_(hub), status(status), colour(colour) {}
    void link_status(const std::string& text) override { status = text; }
    void link_up(const std::string& peer) override { hub_.link_up(*this, peer); }
    void link_down(const std::string& peer, std::int32_t error) override { hub_.link_down(*this, peer, error); }
    void link_bytes(std::span<const std::uint8_t> bytes) override { hub_.link_bytes(*this, bytes); }

    connection_t& hub_;
    published_t<std::string>& status;
    published_t<colour_t>& colour;
    chunk_splitter_t splitter;
  };

  void link_up(side_t& side, const std::string& peer);
  void link_down(side_t& side, const std::string& peer, std::int32_t error);
  void link_bytes(side_t& side, std::span<const std::uint8_t> bytes);
  void receive_line(std::string_view line);
  void receive_arr(std::span<const std::uint8_t> bytes);
  void log_append(std::string_view entry);
  void count_candidate();
  void log_record();
  void log_error(gps_bin_return_t result);
  void attempt_tcp(const std::string& host, std::uint16_t port);
  void schedule_reconnect();
  void attempt_source();
  void source_down(const std::string& peer, std::int32_t error);
  void bridge(const side_t& from, std::span<const std::uint8_t> bytes);

  // Counts the records the UBX decoder passes on, so the hub knows whether a chunk decoded one.
  struct record_tally_t final : gps_protocol_bin_t, gps_protocol_sky_t {
    void update_posllh(const gps_posllh_t&) override { ++records; }
    void update_pvt(const gps_pvt_t&) override { ++records; }
    void update_dop(const gps_dop_t&) override { ++records; }
    void update_sat(const gps_sat_t&) override { ++records; }
    void update_sig(const gps_sig_t&) override { ++records; }
    std::uint64_t records = 0;
  };

  // The six decoders in the order they are offered every sentence and record, and the UBX stream
  // decoder, which hands its records to them in the same order, its sky records to the satellite
  // table, and every record then to the tally.
  const std::array<gps_decoder_t*, 6> decoders_{&gga, &gll, &rmc, &vtg, &gsa, &gsv};
  record_tally_t record_tally_;
  gps_bin_t gps_bin_{{decoders_.begin(), decoders_.end()}, {&sky, &record_tally_}};
  main_queue_t& queue_;
  console_t& console_;
  link_factory_t& links_;
  side_t tcp_side_{*this, status_tcp, sta_fg_tcp};
  side_t ble_side_{*this, status_ble, sta_fg_ble};
  side_t source_side_{*this, status_source, sta_fg_source};
  std::unique_ptr<tcp_link_t> tcp_client_;
  std::unique_ptr<ble_link_t> ble_;
  std::string tcp_host_;  // the address of the last TCP connect, for its retries
  std::uint16_t tcp_port_ = 0;
  std::uint64_t tcp_request_ = 0;  // counts the user's TCP connects and disconnects; a retry serves one
  std::unique_ptr<source_link_t> source_;
  std::uint64_t source_request_ = 0;  // the same for the source link
  bool binary_ = false;
  bool source_side_up_ = false;
  bool log_shown_ = false;  // the screens show the log: it keeps log_limit_shown entries
  std::vector<receive_tap_t*> taps_;
  std::vector<subscription_t> any_cancellable_;
  std::vector<std::string_view> fields_;                        // reused for every sentence
  std::string entry_;                                           // reused for every record's log text
  std::shared_ptr<bool> alive_ = std::make_shared<bool>(true);  // guards delayed tasks
};

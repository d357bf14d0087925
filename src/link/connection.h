#pragma once

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
#include "link/link_factory.h"
#include "nmea/gps_gngga.h"
#include "nmea/gps_gngll.h"
#include "nmea/gps_gngsa.h"
#include "nmea/gps_gnrmc.h"
#include "nmea/gps_gnvtg.h"
#include "nmea/gps_gpgsv.h"
#include "nmea/gps_protocol.h"
#include "ubx/gps_bin.h"

// The hub: owns the two transports and the decoders, validates sentences and hands their fields
// to the decoders, keeps the message counters, the link status texts and the short log, and
// forwards raw bytes between the two links (the bridge). Everything here runs on the main thread.
class connection_t final : public observable_t, public tcp_client_delegate_t, public ble_delegate_t {
public:
  static constexpr double reconnect_delay = 4.0;          // s between a TCP failure and the retry
  static constexpr std::uint64_t msg_ack_limit = 10;      // candidates that acknowledge a stream
  static constexpr std::size_t log_limit_hidden = 30;     // arr_rx entries while the log is hidden
  static constexpr std::size_t log_limit_shown = 40;      // ... and while it is shown

  connection_t(main_queue_t& queue, console_t& console, link_factory_t& links);
  ~connection_t() override;

  // Operations of the screens.
  void connect_tcp(const std::string& host, std::uint16_t port);
  void connect_ble(const std::string& name);
  void disconnect();
  void reset();
  std::string crc_error_text() const;

  // receive_line_t, receive_arr_t
  void receive_line(std::string_view line) override;
  void receive_arr(std::span<const std::uint8_t> bytes) override;

  // tcp_client_delegate_t
  void tcp_connected(const std::string& host, std::uint16_t port) override;
  void tcp_error(const std::string& host, std::uint16_t port, std::int32_t error_number) override;
  void tcp_lines(std::span<const std::string> lines) override;
  void tcp_binary(std::span<const std::uint8_t> bytes) override;
  void tcp_bridge(std::span<const std::uint8_t> bytes) override;

  // ble_delegate_t
  void ble_connected(const std::string& name) override;
  void ble_disconnected(const std::string& name) override;
  void ble_bridge(std::span<const std::uint8_t> bytes) override;
  void ble_text_mode() override { binary = false; }

  // The transports, created on first use.
  tcp_link_t& tcp_client();
  ble_link_t& ble();
  // Whether the user wants a link; false for a transport not yet created.
  bool tcp_enabled() const { return tcp_client_ && tcp_client_->enabled(); }
  bool ble_enabled() const { return ble_ && ble_->enabled(); }

  bool binary = false;  // the last data handled was a binary chunk
  published_t<colour_t> sta_fg_ble{*this, colour_t::primary};
  published_t<colour_t> sta_fg_tcp{*this, colour_t::primary};
  published_t<std::string> status_ble{*this, "offline"};
  published_t<std::string> status_tcp{*this, "offline"};
  published_t<string_ring_t> arr_rx{*this, string_ring_t(log_limit_shown)};
  published_t<colour_t> log_fg{*this, colour_t::primary};
  published_t<bool> show_all{*this, false};  // log every valid sentence, not only GGA
  bool show_crc = true;
  published_t<bool> show_log{*this, false};  // the log view is shown: its bound is 40, not 30
  published_t<bool> show_details{*this, false};
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

  // The decoders in the order they are offered every sentence and record.
  const std::vector<gps_decoder_t*>& arr_update() const { return arr_update_; }

  // The UBX stream decoder; it hands records to the same six decoders.
  gps_bin_t gps_bin{{&gga, &gll, &rmc, &vtg, &gsa, &gsv}};

private:
  void log_append(std::string_view entry);
  void count_candidate();
  void log_record();
  void log_error(gps_bin_return_t result);
  void clear_log_and_counters();
  void schedule_reconnect(const std::string& host, std::uint16_t port);

  main_queue_t& queue_;
  console_t& console_;
  link_factory_t& links_;
  std::unique_ptr<tcp_link_t> tcp_client_;
  std::unique_ptr<ble_link_t> ble_;
  std::vector<gps_decoder_t*> arr_update_{&gga, &gll, &rmc, &vtg, &gsa, &gsv};
  std::vector<subscription_t> any_cancellable_;
  std::vector<std::string_view> fields_;  // reused for every sentence
  std::string entry_;                     // reused for every record's log text
  std::shared_ptr<bool> alive_ = std::make_shared<bool>(true);  // guards delayed tasks
};

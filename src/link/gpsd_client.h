#pragma once

#include <functional>
#include <memory>
#include <span>
#include <string>
#include <string_view>

#include "link/gpsd_link.h"
#include "link/link_status.h"

// The gpsd link: a TCP link to the daemon with a greeting. Once the TCP link is up it sends the
// watch command, then passes every byte on and reads gpsd's JSON lines for the device path.
// The TCP link brings the threads, the generation and the quiet stop; everything here runs on the
// main thread. Bridged bytes are dropped: gpsd reads commands, not data for its receivers.
class gpsd_client_t final : public gpsd_link_t, private link_events_t {
public:
  static constexpr const char* watch_nmea = "?WATCH={\"enable\":true,\"nmea\":true};\n";
  static constexpr const char* watch_raw = "?WATCH={\"enable\":true,\"raw\":2};\n";
  static constexpr const char* query_devices = "?DEVICES;\n";
  static constexpr std::size_t json_limit = 4096;  // bytes of a JSON line kept; gpsd's are shorter

  using make_tcp_t = std::function<std::unique_ptr<tcp_link_t>(link_events_t&)>;
  gpsd_client_t(link_status_events_t& events, const make_tcp_t& make_tcp);

  std::int32_t connect(const std::string& host, std::uint16_t port, bool raw) override;
  bool enabled() const override { return tcp_->enabled(); }
  bool valid() const override { return tcp_->valid(); }
  void stop() override { tcp_->stop(); }
  void write(std::span<const std::uint8_t>) override {}

private:
  void link_up(const std::string& peer) override;
  void link_down(const std::string& peer, std::int32_t error) override;
  void link_bytes(std::span<const std::uint8_t> bytes) override;
  void read_json(const std::string& line);
  void send(std::string_view command);

  link_status_events_t& events_;
  std::unique_ptr<tcp_link_t> tcp_;
  bool raw_ = false;
  bool json_ = false;       // the line being read is a JSON line
  bool line_start_ = true;  // the next byte starts a line
  std::string line_;        // the JSON line so far
  std::string peer_;        // the daemon's address, "127.0.0.1:2947"
  std::string device_;      // the device gpsd named last
  bool asked_ = false;      // the devices were asked for on this connection
};

#include "link/gpsd_client.h"

#include <string_view>

namespace {

std::string daemon_name(const std::string& peer) {
  return "gpsd " + peer;
}

}  // namespace

gpsd_client_t::gpsd_client_t(link_status_events_t& events, const make_tcp_t& make_tcp)
    : events_(events), tcp_(make_tcp(*this)) {}

std::int32_t gpsd_client_t::connect(const std::string& host, std::uint16_t port, bool raw) {
  raw_ = raw;
  return tcp_->connect(host, port);
}

void gpsd_client_t::link_up(const std::string& peer) {
  json_ = false;
  line_start_ = true;
  line_.clear();
  device_.clear();
  peer_ = peer;
  asked_ = false;
  send(raw_ ? watch_raw : watch_nmea);
  events_.link_up(daemon_name(peer));
}

void gpsd_client_t::send(std::string_view command) {
  tcp_->write({reinterpret_cast<const std::uint8_t*>(command.data()), command.size()});
}

void gpsd_client_t::link_down(const std::string& peer, std::int32_t error) {
  events_.link_down(daemon_name(peer), error);
}

void gpsd_client_t::link_bytes(std::span<const std::uint8_t> bytes) {
  events_.link_bytes(bytes);
  for (const auto b : bytes) {
    if (line_start_) json_ = b == '{';
    line_start_ = b == '\n';
    // A daemon that had no device when the watch began names it only when asked.
    if (!json_ && b == '\n' && device_.empty() && !asked_) {
      asked_ = true;
      send(query_devices);
    }
    if (!json_) continue;
    if (b == '\n') {
      read_json(line_);
      line_.clear();
    } else if (line_.size() < json_limit) {
      line_.push_back(static_cast<char>(b));
    }
  }
}

// A DEVICES or DEVICE report names the device gpsd reads: the first "path" in it.
void gpsd_client_t::read_json(const std::string& line) {
  static constexpr std::string_view path_key = "\"path\":\"";
  if (line.find("\"class\":\"DEVICE") == std::string::npos) return;
  const auto at = line.find(path_key);
  if (at == std::string::npos) return;
  const auto start = at + path_key.size();
  const auto end = line.find('"', start);
  if (end == std::string::npos) return;
  const auto device = line.substr(start, end - start);
  if (device == device_) return;
  device_ = device;
  events_.link_status(daemon_name(peer_) + " " + device_);
}

#include "sim/sim_receiver.h"

#include <cmath>

#include "command/config_keys.h"

namespace {

constexpr std::uint32_t key_rate_meas = 0x30210001;
constexpr std::uint32_t key_rate_nav = 0x30210002;
constexpr std::uint64_t default_baud = 38400;
constexpr std::size_t cfg_rate_size = 6;
constexpr std::size_t cfg_msg_sizes[] = {3, 8};  // one rate (this port) or six (every port)

bool all_known(std::span<const std::uint32_t> keys) {
  for (const auto key : keys)
    if (find_config_key(key) == nullptr) return false;
  return !keys.empty();
}

}  // namespace

sim_receiver_t::sim_receiver_t(double period_s, bool ubx, rate_changed_t rate_changed)
    : rate_changed_(std::move(rate_changed)),
      scanner_([this](ubx_id_t message, std::span<const std::uint8_t> payload) { answer(message, payload); }) {
  for (const auto& key : config_keys()) {
    const bool nmea_out =
        key.name.find("NMEA_ID_ZDA") == std::string_view::npos && key.name.find("NMEA_ID") != std::string_view::npos;
    const bool ubx_out = key.name.find("UBX_NAV_P") != std::string_view::npos;
    values_[key.id] = key.type == key_type_t::l || (ubx ? ubx_out : nmea_out) ? 1 : 0;
  }
  values_[key_rate_meas] = static_cast<std::uint64_t>(std::lround(period_s * 1000));
  values_[key_rate_nav] = 1;
  values_[find_config_key("CFG-UART1-BAUDRATE")->id] = default_baud;
}

receiver_identity_t sim_receiver_t::identity() {
  return {"KORVID-SIM 1.0", "00190000", {"PROTVER=27.00", "MOD=KORVID-SIM", "GPS;GLO;GAL;BDS"}};
}

std::uint64_t sim_receiver_t::value(std::uint32_t key) const {
  const auto it = values_.find(key);
  return it == values_.end() ? 0 : it->second;
}

std::string sim_receiver_t::received(std::string_view bytes) {
  out_.clear();
  scanner_.feed({reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size()});
  return out_;
}

void sim_receiver_t::answer(ubx_id_t message, std::span<const std::uint8_t> payload) {
  if (message == ubx_mon_ver && payload.empty()) {
    const auto frame = ubx_frame(ubx_mon_ver, mon_ver_payload(identity()));
    out_.append(frame.begin(), frame.end());
    return;
  }
  if (message.cls != ubx_class_cfg) return;
  bool accepted = false;
  if (message == ubx_cfg_valset) {
    accepted = valset(payload);
  } else if (message == ubx_cfg_valget) {
    accepted = valget(payload);
  } else if (message == ubx_cfg_valdel) {
    const auto keys = keys_of(message, payload);
    accepted = keys && all_known(*keys);
  } else if (message == ubx_cfg_rate) {
    accepted = rate(payload);
  } else if (message == ubx_cfg_msg) {
    accepted = payload.size() == cfg_msg_sizes[0] || payload.size() == cfg_msg_sizes[1];
  }
  acknowledge(message, accepted);
}

// All or nothing: one unknown key or bad value refuses the whole message, as a receiver does.
bool sim_receiver_t::valset(std::span<const std::uint8_t> payload) {
  const auto items = items_of(payload);
  if (!items || items->empty()) return false;
  for (const auto& item : *items) {
    if (find_config_key(item.key) == nullptr) return false;
    if (item.key == key_rate_meas && item.value < min_meas_ms) return false;
  }
  for (const auto& item : *items) {
    if (item.key == key_rate_meas) {
      set_meas_ms(item.value);
    } else {
      values_[item.key] = item.value;
    }
  }
  return true;
}

bool sim_receiver_t::valget(std::span<const std::uint8_t> payload) {
  const auto keys = keys_of(ubx_cfg_valget, payload);
  if (!keys || !all_known(*keys)) return false;
  std::vector<key_value_t> items;
  for (const auto key : *keys) items.push_back({key, value(key)});
  auto reply = valset_payload(payload[1], items);
  reply[0] = 1;  // the answer's version
  const auto frame = ubx_frame(ubx_cfg_valget, reply);
  out_.append(frame.begin(), frame.end());
  return true;
}

bool sim_receiver_t::rate(std::span<const std::uint8_t> payload) {
  if (payload.size() != cfg_rate_size) return false;
  const auto meas_ms = get_le(payload, 0, 2);
  const auto nav = get_le(payload, 2, 2);
  if (meas_ms < min_meas_ms || nav == 0) return false;
  values_[key_rate_nav] = nav;
  set_meas_ms(meas_ms);
  return true;
}

void sim_receiver_t::acknowledge(ubx_id_t message, bool accepted) {
  const auto frame =
      ubx_frame(accepted ? ubx_ack_ack : ubx_ack_nak, std::vector<std::uint8_t>{message.cls, message.id});
  out_.append(frame.begin(), frame.end());
}

void sim_receiver_t::set_meas_ms(std::uint64_t meas_ms) {
  if (values_[key_rate_meas] == meas_ms) return;
  values_[key_rate_meas] = meas_ms;
  if (rate_changed_) rate_changed_(static_cast<double>(meas_ms) / 1000.0);
}

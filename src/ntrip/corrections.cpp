#include "ntrip/corrections.h"

#include <cmath>
#include <cstdio>

corrections_t::corrections_t(connection_t& hub, main_queue_t& queue, console_t& console,
                             const ntrip_client_t::make_tcp_t& make_tcp)
    : hub_(hub),
      queue_(queue),
      console_(console),
      client_(*this, queue, make_tcp),
      table_client_(table_events_, queue, make_tcp) {}

void corrections_t::say(const std::string& text) {
  console_.print(console_.date() + "  corrections " + text);
}

void corrections_t::connect(const ntrip_address_t& address, bool send_gga) {
  asked_ = true;
  send_gga_ = send_gga;
  const auto request = ++request_;
  status = "connecting " + address.text();
  status_colour = colour_t::primary;
  next_gga_s_ = queue_.now_s();
  client_.connect(address);
  queue_.post_after(tick_s, [this, alive = std::weak_ptr<bool>(alive_), request] {
    if (const auto a = alive.lock(); a && *a) tick(request);
  });
}

void corrections_t::disconnect() {
  ++request_;
  client_.stop();
  status = "offline";
  status_colour = colour_t::primary;
}

void corrections_t::fetch_table(const ntrip_address_t& caster) {
  auto address = caster;
  address.mountpoint.clear();
  table_status = "asking " + address.caster() + " for its source table";
  table_client_.connect(address);
}

void corrections_t::ntrip_up(const std::string& what, bool version2) {
  stats_.restart();
  status = "corrections from " + what;
  status_colour = colour_t::green;
  say("connected to " + what + (version2 ? " (NTRIP 2.0)" : " (NTRIP 1.0)"));
}

void corrections_t::ntrip_down(const std::string& text, bool retry) {
  status = text;
  status_colour = colour_t::red;
  say(client_.address().text() + "  " + text + (retry ? "" : "  (not retried)"));
}

void corrections_t::ntrip_data(std::span<const std::uint8_t> bytes) {
  hub_.send_to_receiver(bytes);
  notify();
  stats_.feed(bytes, queue_.now_s());
}

void corrections_t::ntrip_table(std::string_view text) {
  auto entries = parse_source_table(text);
  sort_by_distance(entries, fix());
  table_status = std::to_string(entries.size()) + " mountpoints on " + table_client_.address().caster();
  table = std::move(entries);
}

// Once a second while the request stands: the byte rate, the ages shown, and the position for a
// network mountpoint every gga_period_s once the receiver has a fix.
void corrections_t::tick(std::uint64_t request) {
  if (request != request_) return;
  notify();
  bytes_per_s_ = stats_.bytes() - bytes_at_tick_;
  bytes_at_tick_ = stats_.bytes();
  if (send_gga_ && client_.streaming() && queue_.now_s() >= next_gga_s_) {
    if (const auto gga = upstream_gga(hub_.gga)) {
      client_.send(*gga);
      ++gga_sent_;
      next_gga_s_ = queue_.now_s() + gga_period_s;
    }
  }
  queue_.post_after(tick_s, [this, alive = std::weak_ptr<bool>(alive_), request] {
    if (const auto a = alive.lock(); a && *a) tick(request);
  });
}

std::optional<geo_coordinate_t> corrections_t::fix() const {
  if (!upstream_gga(hub_.gga)) return std::nullopt;
  return hub_.gga.map_fix;
}

std::optional<double> corrections_t::age_s() const {
  const auto last = stats_.last_frame_s();
  if (!last) return std::nullopt;
  return queue_.now_s() - *last;
}

bool corrections_t::stale() const {
  const auto age = age_s();
  return age && *age > stale_after_s;
}

rtk_mode_t corrections_t::rtk() const {
  return rtk_mode(hub_.gga, hub_.pvt_flags());
}

std::optional<geodetic_t> corrections_t::base() const {
  const auto& s = stats_.station();
  if (!s) return std::nullopt;
  return geodetic_from_ecef(s->x_m, s->y_m, s->z_m);
}

std::optional<double> corrections_t::base_distance_m() const {
  const auto b = base();
  const auto f = fix();
  if (!b || !f) return std::nullopt;
  return surface_distance_m(b->coordinate, *f);
}

std::string corrections_t::rtk_status() const {
  char text[96];
  const auto age = age_s();
  if (age && *age > stale_after_s) {
    std::snprintf(text, sizeof text, "%s  corrections stopped %.0f s ago", std::string(rtk_text(rtk())).c_str(), *age);
  } else if (age) {
    std::snprintf(text, sizeof text, "%s  age %.1f s", std::string(rtk_text(rtk())).c_str(), *age);
  } else {
    std::snprintf(text, sizeof text, "%s  no corrections yet", std::string(rtk_text(rtk())).c_str());
  }
  return text;
}

colour_t corrections_t::rtk_colour() const {
  if (stale()) return colour_t::orange;
  switch (rtk()) {
    case rtk_mode_t::fixed:
      return colour_t::green;
    case rtk_mode_t::float_rtk:
      return colour_t::blue;
    case rtk_mode_t::dgnss:
    case rtk_mode_t::none:
      break;
  }
  return colour_t::primary;
}

#include "app/radio_lines.h"

radio_lines_t::radio_lines_t(connection_t& hub, main_queue_t& queue, console_t& console)
    : hub_(hub), queue_(queue), console_(console), subscription_(hub.subscribe([this] {
        if (pending_) return;
        pending_ = true;
        queue_.post([this, alive = std::weak_ptr<bool>(alive_)] {
          if (alive.lock()) check();
        });
      })) {}

void radio_lines_t::check() {
  pending_ = false;
  if (!hub_.ble_enabled()) return;
  const auto state = hub_.ble().radio_state();
  if (state.empty() || state == said_) return;
  said_ = state;
  console_.print(console_.date() + "  " + state);
}

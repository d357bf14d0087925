#pragma once

#include <functional>
#include <optional>

#include "map/geo.h"

// Where the computer running the program is, as its platform knows it (a built-in receiver, Wi-Fi
// or network positioning). The map draws it when the user asks, and places itself on it at set-up
// when a position is already known.
class device_position_t {
public:
  virtual ~device_position_t() = default;
  // The last position known, perhaps from before the program started; nothing when none is.
  virtual std::optional<geo_coordinate_t> last_known() const = 0;
  // Reports each new position until stop().
  virtual void start(std::function<void(geo_coordinate_t)> on_position) = 0;
  virtual void stop() = 0;
};

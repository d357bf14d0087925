#pragma once

#include <string>

#include "link/link.h"

// Where a transport reports when it has more to say than up, down and bytes: its own words for
// where it stands, shown as the link's status. While it works towards being up ("detecting baud
// rate (38400)...", "listening on :10110"), and what it learns once up (a datagram's sender, the
// device a gpsd daemon reads). Every call arrives on the main thread, like link_events_t's.
class link_status_events_t : public link_events_t {
public:
  virtual void link_status(const std::string& text) = 0;
};

#pragma once

#include <span>
#include <string_view>

#include "core/observable.h"
#include "ubx/gps_protocol_bin.h"

// A sentence decoder. The hub offers it every valid sentence as a field list; the decoder decides
// from the field count and field 0 whether the sentence is its own. A failed check ends the
// update where it stands: what earlier steps stored stays stored.
class gps_protocol_t {
public:
  virtual ~gps_protocol_t() = default;
  virtual void reset() = 0;
  virtual void update(std::span<const std::string_view> fields) = 0;
};

// The six decoders are all three: observable, receivers of sentences and of UBX navigation records.
class gps_decoder_t : public observable_t, public gps_protocol_t, public gps_protocol_bin_t {};

#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "nmea/gps_protocol.h"
#include "nmea/sentence.h"

// Offers one sentence, given as text (its checksum is not checked here), to a decoder.
inline void feed(gps_protocol_t& decoder, const std::string& line) {
  std::vector<std::string_view> fields;
  split_fields(line, fields);
  decoder.update(fields);
}

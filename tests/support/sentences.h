#pragma once

#include <algorithm>
#include <array>
#include <string_view>

#include "nmea/gps_protocol.h"
#include "nmea/sentence.h"

// Offers one sentence, given as text (its checksum is not checked here), to a decoder.
inline void feed(gps_protocol_t& decoder, std::string_view line) {
  std::array<std::string_view, sentence_max_length> fields;
  const auto scan = scan_sentence(line, fields);
  decoder.update(std::span<const std::string_view>(fields).first(std::min(scan.field_count, fields.size())));
}

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

// The sentence with its correct "*hh" suffix: "$GPGGA,..." -> "$GPGGA,...*47".
inline std::string with_checksum(const std::string& body) {
  unsigned sum = 0;
  for (std::size_t i = 1; i < body.size(); ++i) sum ^= static_cast<unsigned char>(body[i]);
  static const char* hex = "0123456789ABCDEF";
  return body + "*" + hex[sum >> 4] + hex[sum & 15];
}

#include "nmea/sentence.h"

#include <cstdint>

namespace {

int hex_value(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  return -1;
}

}  // namespace

std::size_t count_characters(std::string_view text) {
  std::size_t n = 0;
  for (const char c : text)
    if ((static_cast<unsigned char>(c) & 0xC0) != 0x80) ++n;
  return n;
}

bool checksum_valid(std::string_view line) {
  const auto star = line.find('*');
  if (star == std::string_view::npos || line.find('*', star + 1) != std::string_view::npos) return false;
  const auto digits = line.substr(star + 1);
  if (digits.size() != 2) return false;
  const int high = hex_value(digits[0]);
  const int low = hex_value(digits[1]);
  if (high < 0 || low < 0) return false;

  const auto body = star == 0 ? std::string_view() : line.substr(1, star - 1);
  std::uint8_t sum = 0;
  for (const char c : body) sum ^= static_cast<std::uint8_t>(c);
  return sum == high * 16 + low;
}

void split_fields(std::string_view line, std::vector<std::string_view>& fields) {
  fields.clear();
  std::size_t start = 0;
  for (std::size_t i = 0; i < line.size(); ++i) {
    if (line[i] != ',') continue;
    fields.push_back(line.substr(start, i - start));
    start = i + 1;
  }
  fields.push_back(line.substr(start));
}

std::string_view strip_checksum(std::string_view field) {
  const auto star = field.find('*');
  return star == std::string_view::npos ? field : field.substr(0, star);
}

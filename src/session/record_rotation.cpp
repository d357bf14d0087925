#include "session/record_rotation.h"

#include <charconv>
#include <limits>

std::optional<record_rotation_t> parse_record_rotation(std::string_view text) {
  if (text.size() < 2) return std::nullopt;
  const char unit = text.back();
  std::uint64_t count = 0;
  const auto digits = text.substr(0, text.size() - 1);
  const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), count);
  if (error != std::errc() || end != digits.data() + digits.size() || count == 0) return std::nullopt;
  std::uint64_t scale = 0;
  switch (unit) {
    case 'K':
      scale = std::uint64_t{1} << 10U;
      break;
    case 'M':
      scale = std::uint64_t{1} << 20U;
      break;
    case 'G':
      scale = std::uint64_t{1} << 30U;
      break;
    case 'h': {
      constexpr std::uint64_t hour_s = 3600;
      constexpr std::uint64_t max_hours = std::uint64_t{24} * 366;  // a year: longer is no rotation at all
      if (count > max_hours) return std::nullopt;
      return record_rotation_t{0, static_cast<std::int64_t>(count * hour_s)};
    }
    default:
      return std::nullopt;
  }
  if (count > std::numeric_limits<std::uint64_t>::max() / scale) return std::nullopt;
  return record_rotation_t{count * scale, 0};
}

std::string rotated_file_name(std::string_view path, std::time_t utc_start, int sequence) {
  std::tm utc{};
  gmtime_r(&utc_start, &utc);
  char stamp[24];
  const auto n = std::strftime(stamp, sizeof stamp, "-%Y%m%dT%H%M%SZ", &utc);
  // The extension is the last dot of the file's own name, not of a folder, and not a leading dot.
  const auto slash = path.rfind('/');
  const auto name_at = slash == std::string_view::npos ? 0 : slash + 1;
  auto dot = path.rfind('.');
  if (dot == std::string_view::npos || dot <= name_at) dot = path.size();
  std::string name(path.substr(0, dot));
  name.append(stamp, n);
  if (sequence > 1) name += "-" + std::to_string(sequence);
  name.append(path.substr(dot));
  return name;
}

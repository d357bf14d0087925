#pragma once

#include <cstdint>
#include <ctime>
#include <optional>
#include <string>
#include <string_view>

// When a recording moves on to a new file: after so many bytes, at each whole multiple of a
// period of UTC (every hour on the hour for "1h"), or never (both 0).
struct record_rotation_t {
  std::uint64_t bytes = 0;
  std::int64_t seconds = 0;

  bool rotates() const { return bytes != 0 || seconds != 0; }
  bool operator==(const record_rotation_t&) const = default;
};

// "100M", "512K", "2G" (bytes, powers of 1024) or "1h", "6h" (hours); nothing else.
std::optional<record_rotation_t> parse_record_rotation(std::string_view text);

// The name of a rotated file: the UTC start time goes before the extension, so the files of one
// recording sort in time order ("/tmp/drive.nmea" -> "/tmp/drive-20261123T224000Z.nmea"). A second
// file started within the same second takes a sequence number after it ("...224000Z-2.nmea").
std::string rotated_file_name(std::string_view path, std::time_t utc_start, int sequence = 1);

#pragma once

#include <cstdint>
#include <span>
#include <vector>

// Where a receiver's epoch starts in a capture, and its time: seconds of the UTC day from a
// sentence, seconds of the GPS week from a UBX record's iTOW. cycle_s is the length of that day or
// week, after which the time starts again from 0.
struct epoch_mark_t {
  std::uint64_t offset = 0;
  double time_s = 0;
  double cycle_s = 0;

  bool operator==(const epoch_mark_t&) const = default;
};

inline constexpr double day_s = 86400.0;
inline constexpr double week_s = 604800.0;

// Finds the epochs of a capture fed to it in order, a piece at a time: the start of each GGA, RMC,
// GLL or ZDA sentence (with a good checksum) and each UBX NAV frame (with a good checksum: NAV-PVT,
// NAV-POSLLH and the satellite and DOP records, which all start with the epoch's iTOW) whose time
// differs from the epoch before. A sentence is recognised at any line start,
// a frame at any sync pair, so a stream that mixes both is read as well as either.
class epoch_scanner_t {
public:
  static constexpr std::size_t line_limit = 82;     // bytes kept of a line: a sentence with CR LF
  static constexpr std::size_t frame_limit = 8192;  // a longer UBX payload is taken as noise

  // Starts again at the file offset of the next byte fed, as after a seek.
  void restart(std::uint64_t offset);
  // Appends to marks the epochs that start in these bytes.
  void feed(std::span<const std::uint8_t> bytes, std::vector<epoch_mark_t>& marks);

private:
  void end_line(std::vector<epoch_mark_t>& marks);
  void frame_byte(std::uint8_t byte, std::vector<epoch_mark_t>& marks);
  void found(std::uint64_t offset, double time_s, double cycle_s, std::vector<epoch_mark_t>& marks);

  std::uint64_t offset_ = 0;  // of the next byte fed
  // The line being read.
  std::uint64_t line_start_ = 0;
  std::uint8_t line_[line_limit] = {};
  std::size_t line_size_ = 0;
  bool line_long_ = false;
  // The UBX frame being read: how many of its bytes came, its header, checksums and first bytes.
  std::uint64_t frame_start_ = 0;
  std::size_t frame_at_ = 0;
  std::uint8_t frame_class_ = 0;
  std::size_t frame_length_ = 0;
  std::uint8_t ck_a_ = 0, ck_b_ = 0;
  std::uint32_t itow_ms_ = 0;
  // The last epoch's time; none yet after a restart.
  bool have_last_ = false;
  double last_time_s_ = 0;
};

// The offset, within bytes, of the first place decoding can start afresh: a sentence start (a "$"
// after LF) or a UBX frame with a good checksum that lies wholly within bytes. at_line_start says
// whether bytes[0] itself begins a line. bytes.size() when there is none.
std::size_t resume_point(std::span<const std::uint8_t> bytes, bool at_line_start);

#include "session/epoch_scanner.h"

#include <string_view>

namespace {

constexpr std::uint8_t sync_1 = 0xB5, sync_2 = 0x62;
constexpr std::uint8_t class_nav = 0x01;
constexpr std::size_t frame_header = 6;    // sync pair, class, id, length
constexpr std::size_t frame_overhead = 8;  // header and the two checksum bytes
constexpr double ms_per_s = 1000.0;

int hex_digit(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  return -1;
}

// "$GPGGA,...*5C": the XOR of the characters between "$" and "*" against the two hex digits.
bool checksum_ok(std::string_view line) {
  const auto star = line.rfind('*');
  if (star == std::string_view::npos || star + 3 != line.size()) return false;
  const int high = hex_digit(line[star + 1]), low = hex_digit(line[star + 2]);
  if (high < 0 || low < 0) return false;
  unsigned sum = 0;
  for (std::size_t i = 1; i < star; ++i) sum ^= static_cast<unsigned char>(line[i]);
  return sum == static_cast<unsigned>(high * 16 + low);
}

// The field-th comma-separated field of a line.
std::string_view field(std::string_view line, int field) {
  for (; field > 0; --field) {
    const auto comma = line.find(',');
    if (comma == std::string_view::npos) return {};
    line.remove_prefix(comma + 1);
  }
  return line.substr(0, line.find_first_of(",*"));
}

// "123519" or "123519.25": seconds of the day; negative when the field is no time.
double time_of_day(std::string_view text) {
  if (text.size() < 6) return -1;
  int digits[6];
  for (int i = 0; i < 6; ++i) {
    if (text[i] < '0' || text[i] > '9') return -1;
    digits[i] = text[i] - '0';
  }
  const int hh = digits[0] * 10 + digits[1], mm = digits[2] * 10 + digits[3], ss = digits[4] * 10 + digits[5];
  if (hh > 23 || mm > 59 || ss > 60) return -1;
  double fraction = 0, scale = 0.1;
  if (text.size() > 6) {
    if (text[6] != '.') return -1;
    for (const char c : text.substr(7)) {
      if (c < '0' || c > '9') return -1;
      fraction += (c - '0') * scale;
      scale /= 10;
    }
  }
  return hh * 3600.0 + mm * 60.0 + ss + fraction;
}

// The time field of an epoch's sentence: GGA, RMC and ZDA give it first, GLL fifth.
double sentence_time(std::string_view line) {
  if (line.size() < 7 || line[0] != '$' || !checksum_ok(line)) return -1;
  const auto tag = line.substr(3, 3);
  if (tag == "GGA" || tag == "RMC" || tag == "ZDA") return time_of_day(field(line, 1));
  if (tag == "GLL") return time_of_day(field(line, 5));
  return -1;
}

// A frame with a good checksum starts at bytes[0] and lies wholly within bytes.
bool whole_frame(std::span<const std::uint8_t> bytes) {
  if (bytes.size() < frame_overhead || bytes[0] != sync_1 || bytes[1] != sync_2) return false;
  const std::size_t length = bytes[4] | static_cast<std::size_t>(bytes[5]) << 8U;
  if (length > epoch_scanner_t::frame_limit || bytes.size() < length + frame_overhead) return false;
  std::uint8_t a = 0, b = 0;
  for (std::size_t i = 2; i < frame_header + length; ++i) {
    a = static_cast<std::uint8_t>(a + bytes[i]);
    b = static_cast<std::uint8_t>(b + a);
  }
  return bytes[frame_header + length] == a && bytes[frame_header + length + 1] == b;
}

}  // namespace

void epoch_scanner_t::restart(std::uint64_t offset) {
  *this = epoch_scanner_t{};
  offset_ = offset;
  line_start_ = offset;
}

void epoch_scanner_t::feed(std::span<const std::uint8_t> bytes, std::vector<epoch_mark_t>& marks) {
  for (const auto byte : bytes) {
    frame_byte(byte, marks);
    if (byte == '\n') {
      end_line(marks);
      line_start_ = offset_ + 1;
    } else if (byte != '\r') {
      if (line_size_ < line_limit) {
        line_[line_size_++] = byte;
      } else {
        line_long_ = true;
      }
    }
    ++offset_;
  }
}

void epoch_scanner_t::end_line(std::vector<epoch_mark_t>& marks) {
  if (!line_long_) {
    const double t = sentence_time({reinterpret_cast<const char*>(line_), line_size_});
    if (t >= 0) found(line_start_, t, day_s, marks);
  }
  line_size_ = 0;
  line_long_ = false;
}

// One byte of the UBX framer: sync pair, class, id, little-endian length, payload, two checksums.
void epoch_scanner_t::frame_byte(std::uint8_t byte, std::vector<epoch_mark_t>& marks) {
  const auto at = frame_at_;
  if (at == 0) {
    if (byte == sync_1) {
      frame_start_ = offset_;
      frame_at_ = 1;
    }
    return;
  }
  if (at == 1) {
    frame_at_ = byte == sync_2 ? 2 : (byte == sync_1 ? 1 : 0);
    if (byte == sync_1) frame_start_ = offset_;
    return;
  }
  ++frame_at_;
  if (at < frame_header + frame_length_ || at < frame_header) {
    ck_a_ = static_cast<std::uint8_t>(ck_a_ + byte);
    ck_b_ = static_cast<std::uint8_t>(ck_b_ + ck_a_);
  }
  if (at == 2) {
    ck_a_ = byte;
    ck_b_ = byte;
    frame_class_ = byte;
    itow_ms_ = 0;
  } else if (at == 3) {
    // The message id: every NAV record carries its epoch's time.
  } else if (at == 4) {
    frame_length_ = byte;
  } else if (at == 5) {
    frame_length_ |= static_cast<std::size_t>(byte) << 8U;
    if (frame_length_ > frame_limit) frame_at_ = 0;
  } else if (at < frame_header + frame_length_) {
    if (at < frame_header + 4) itow_ms_ |= static_cast<std::uint32_t>(byte) << (8U * (at - frame_header));
  } else if (at == frame_header + frame_length_) {
    if (byte != ck_a_) frame_at_ = 0;
  } else {
    frame_at_ = 0;
    // Every NAV record starts with the iTOW of its epoch; a receiver sends an epoch's satellite and
    // DOP records before its position, so the epoch starts at the first of them.
    const bool timed = frame_class_ == class_nav && frame_length_ >= 4;
    if (byte == ck_b_ && timed) found(frame_start_, itow_ms_ / ms_per_s, week_s, marks);
  }
}

void epoch_scanner_t::found(std::uint64_t offset, double time_s, double cycle_s, std::vector<epoch_mark_t>& marks) {
  if (have_last_ && time_s == last_time_s_) return;
  have_last_ = true;
  last_time_s_ = time_s;
  marks.push_back({offset, time_s, cycle_s});
}

std::size_t resume_point(std::span<const std::uint8_t> bytes, bool at_line_start) {
  bool line_start = at_line_start;
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    if (line_start && bytes[i] == '$') return i;
    if (whole_frame(bytes.subspan(i))) return i;
    line_start = bytes[i] == '\n';
  }
  return bytes.size();
}

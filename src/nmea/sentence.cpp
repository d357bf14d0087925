#include "nmea/sentence.h"

#include <bit>
#include <cstdint>

#include "core/word_scan.h"

namespace {

int hex_value(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  return -1;
}

std::uint8_t byte_at(std::string_view text, std::size_t i) {
  return static_cast<std::uint8_t>(text[i]);
}

// A checksum can only be valid with its one "*" third from the end, so the scan looks for a "*"
// anywhere else (a second one, or one in the wrong place) and for the XOR of the whole line;
// the end decides with the two digits. The body's XOR is the line's with the "$" position and
// the "*hh" taken out again.
class checksum_scan_t {
public:
  explicit checksum_scan_t(std::string_view line) : line_(line), star_(line.size() >= 3 ? line.size() - 3 : 0) {}

  // Every byte of the line passes through exactly one of these two, in order.
  void word(std::size_t at, std::uint64_t w) {
    sum_ ^= w;
    auto stars = word_scan::bytes_equal(w, '*');
    if (star_ - at < 8) stars &= ~(std::uint64_t{0x80} << (8 * (star_ - at)));  // the expected one
    stray_star_ |= stars != 0;
  }
  void byte(std::size_t at, std::uint8_t b) {
    sum_ ^= b;
    stray_star_ |= b == '*' && at != star_;
  }

  bool valid() const {
    if (line_.size() < 3 || stray_star_ || line_[star_] != '*') return false;
    const int high_digit = hex_value(line_[star_ + 1]);
    const int low_digit = hex_value(line_[star_ + 2]);
    if (high_digit < 0 || low_digit < 0) return false;
    auto folded = sum_ ^ (sum_ >> 32);
    folded ^= folded >> 16;
    folded ^= folded >> 8;
    auto sum = static_cast<std::uint8_t>(folded);
    sum ^= byte_at(line_, star_) ^ byte_at(line_, star_ + 1) ^ byte_at(line_, star_ + 2);
    if (star_ > 0) sum ^= byte_at(line_, 0);  // with "*hh" alone the body is empty
    return sum == high_digit * 16 + low_digit;
  }

private:
  std::string_view line_;
  std::size_t star_;  // where the "*" must stand
  std::uint64_t sum_ = 0;
  bool stray_star_ = false;
};

// Stores the fields that fit and counts them all.
class field_store_t {
public:
  explicit field_store_t(std::span<std::string_view> fields) : fields_(fields) {}
  void operator()(const char* text, std::size_t size) {
    if (count_ < fields_.size()) fields_[count_] = std::string_view(text, size);
    ++count_;
  }
  std::size_t count() const { return count_; }

private:
  std::span<std::string_view> fields_;
  std::size_t count_ = 0;
};

// The one pass over a line, eight bytes at a time where word_scan allows: characters, checksum
// and fields together.
void scan(std::string_view line, std::size_t& characters, checksum_scan_t& checksum, field_store_t& fields) {
  const char* text = line.data();
  const std::size_t size = line.size();
  std::size_t continuation = 0;
  std::size_t start = 0;  // of the current field
  std::size_t i = 0;
  if constexpr (word_scan::enabled) {
    constexpr std::uint64_t top_two = 0xC0C0C0C0C0C0C0C0u;
    for (; i + 8 <= size; i += 8) {
      const auto w = word_scan::load(text + i);
      // A continuation byte is 10xxxxxx; ASCII words have none.
      if ((w & word_scan::high) != 0)
        continuation +=
            static_cast<std::size_t>(std::popcount(word_scan::bytes_equal(w & top_two, static_cast<char>(0x80))));
      checksum.word(i, w);
      for (auto commas = word_scan::bytes_equal(w, ','); commas != 0; commas &= commas - 1) {
        const std::size_t at = i + word_scan::first_marked(commas);
        fields(text + start, at - start);
        start = at + 1;
      }
    }
  }
  for (; i < size; ++i) {
    const auto b = static_cast<std::uint8_t>(text[i]);
    continuation += (b & 0xC0) == 0x80 ? 1 : 0;
    checksum.byte(i, b);
    if (b == ',') {
      fields(text + start, i - start);
      start = i + 1;
    }
  }
  fields(text + start, size - start);
  characters = size - continuation;
}

}  // namespace

sentence_scan_t scan_sentence(std::string_view line, std::span<std::string_view> fields) {
  sentence_scan_t result;
  checksum_scan_t checksum(line);
  field_store_t store(fields);
  scan(line, result.characters, checksum, store);
  result.checksum_ok = checksum.valid();
  result.field_count = store.count();
  return result;
}

std::size_t count_characters(std::string_view text) {
  return scan_sentence(text, {}).characters;
}

std::uint8_t body_checksum(std::string_view body) {
  std::uint8_t sum = 0;
  for (const char c : body) sum ^= static_cast<std::uint8_t>(c);
  return sum;
}

std::string with_checksum(std::string_view sentence) {
  constexpr std::string_view hex_digits = "0123456789ABCDEF";
  const auto sum = body_checksum(sentence.substr(sentence.empty() ? 0 : 1));
  std::string out(sentence);
  out += '*';
  out += hex_digits[sum >> 4];
  out += hex_digits[sum & 0xF];
  return out;
}

std::string_view strip_checksum(std::string_view field) {
  const auto star = field.find('*');
  return star == std::string_view::npos ? field : field.substr(0, star);
}

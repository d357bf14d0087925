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

struct no_fields_t {
  static constexpr bool wanted = false;
  void operator()(const char*, std::size_t) {}
};

struct vector_fields_t {
  static constexpr bool wanted = true;
  std::vector<std::string_view>& fields;
  void operator()(const char* text, std::size_t size) { fields.emplace_back(text, size); }
};

struct span_fields_t {
  static constexpr bool wanted = true;
  std::span<std::string_view> fields;
  std::size_t count = 0;
  void operator()(const char* text, std::size_t size) {
    if (count < fields.size()) fields[count] = std::string_view(text, size);
    ++count;
  }
};

// The one pass behind the public functions, eight bytes at a time where word_scan allows. Each
// caller switches on only what it needs; the rest compiles away.
template <bool count_chars, bool check_sum, class Fields>
void scan(std::string_view line, std::size_t& characters, checksum_scan_t& checksum, Fields& fields) {
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
      if (count_chars && (w & word_scan::high) != 0)
        continuation +=
            static_cast<std::size_t>(std::popcount(word_scan::bytes_equal(w & top_two, static_cast<char>(0x80))));
      if (check_sum) checksum.word(i, w);
      if constexpr (Fields::wanted) {
        for (auto commas = word_scan::bytes_equal(w, ','); commas != 0; commas &= commas - 1) {
          const std::size_t at = i + word_scan::first_marked(commas);
          fields(text + start, at - start);
          start = at + 1;
        }
      }
    }
  }
  for (; i < size; ++i) {
    const auto b = static_cast<std::uint8_t>(text[i]);
    if (count_chars) continuation += (b & 0xC0) == 0x80 ? 1 : 0;
    if (check_sum) checksum.byte(i, b);
    if (Fields::wanted && b == ',') {
      fields(text + start, i - start);
      start = i + 1;
    }
  }
  if constexpr (Fields::wanted) fields(text + start, size - start);
  characters = size - continuation;
}

}  // namespace

std::size_t count_characters(std::string_view text) {
  std::size_t characters = 0;
  checksum_scan_t checksum(text);
  no_fields_t fields;
  scan<true, false>(text, characters, checksum, fields);
  return characters;
}

bool checksum_valid(std::string_view line) {
  std::size_t characters = 0;
  checksum_scan_t checksum(line);
  no_fields_t fields;
  scan<false, true>(line, characters, checksum, fields);
  return checksum.valid();
}

void split_fields(std::string_view line, std::vector<std::string_view>& fields) {
  fields.clear();
  std::size_t characters = 0;
  checksum_scan_t checksum(line);
  vector_fields_t out{fields};
  scan<false, false>(line, characters, checksum, out);
}

sentence_scan_t scan_sentence(std::string_view line, std::span<std::string_view> fields) {
  sentence_scan_t result;
  checksum_scan_t checksum(line);
  span_fields_t out{fields};
  scan<true, true>(line, result.characters, checksum, out);
  result.checksum_ok = checksum.valid();
  result.field_count = out.count;
  return result;
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

#include "link/chunk_splitter.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using bytes_t = std::vector<std::uint8_t>;

bytes_t b(std::string_view s) {
  return bytes_t(s.begin(), s.end());
}

// What each chunk gave, as text: "L:a|b" for lines, "B" for the binary way, "-" for nothing yet.
std::vector<std::string> split(chunk_splitter_t& splitter, const std::vector<bytes_t>& chunks) {
  std::vector<std::string> out;
  for (const auto& chunk : chunks) {
    const auto cut = splitter.feed(chunk);
    std::string e = cut.binary ? "B" : cut.lines.empty() ? "-" : "L:";
    for (std::size_t i = 0; i < cut.lines.size(); ++i) e += (i ? "|" : "") + cut.lines[i];
    out.push_back(e);
  }
  return out;
}

TEST(chunk_splitter, cuts_lines_keeps_remainders_and_switches_to_binary) {
  const std::string long_line = "$" + std::string(1099, 'x'), kept = "L:" + long_line.substr(0, 1024);
  const struct {
    const char* name;
    std::vector<bytes_t> chunks;
    std::vector<std::string> results;
    bool binary_after;
  } scenarios[] = {
      {"a sentence split across two chunks arrives once, whole",
       {b("$GPGGA,1"), b("23*00\r\n")},
       {"-", "L:$GPGGA,123*00"},
       false},
      {"three sentences in one chunk are one batch", {b("$A\r\n$B\r\n$C\r\n")}, {"L:$A|$B|$C"}, false},
      {"a bare CR at a chunk's end ends the line; the LF that follows adds no empty line",
       {b("$A\r"), b("\n$B\r\n")},
       {"L:$A", "L:$B"},
       false},
      {"empty lines are dropped", {b("\n\n$A\n\r\n")}, {"L:$A"}, false},
      {"CRs inside a line vanish", {b("$Z\n$A\rB\n")}, {"L:$Z|$AB"}, false},
      {"a remainder is completed by the next LF", {b("$A"), b("B"), b("\n")}, {"-", "-", "L:$AB"}, false},
      {"a line keeps its first 1024 bytes", {b(long_line + "\n$A\n")}, {kept + "|$A"}, false},
      {"so does one without LF for a long time, with CRs in it",
       {b(long_line.substr(0, 500)), b("\r" + long_line.substr(500) + long_line), b("\n")},
       {"-", "-", kept},
       false},
      {"a NUL byte is an ordinary character", {bytes_t{'$', 0, 'A', '\n'}}, {std::string("L:$\0A", 5)}, false},
      {"the first non-UTF-8 chunk switches to binary", {bytes_t{0xB5, 0x62, 0x01}, b("$A\r\n")}, {"B", "B"}, true},
      {"a lone 0xFF goes binary without switching", {bytes_t{0xFF}, b("$A\n")}, {"B", "L:$A"}, false},
      {"0x00 0xFF goes binary without switching", {bytes_t{0x00, 0xFF}, b("$A\n")}, {"B", "L:$A"}, false},
      {"0xFF 0x00 switches", {bytes_t{0xFF, 0x00}}, {"B"}, true},
      {"0xFF 0xFF switches", {bytes_t{0xFF, 0xFF}}, {"B"}, true},
      {"a lone 0xFE switches", {bytes_t{0xFE}}, {"B"}, true},
      {"a UTF-8 character cut between chunks switches", {bytes_t{'$', 0xC3}, bytes_t{0xA9, '\n'}}, {"B", "B"}, true},
      {"multi-byte UTF-8 is text",
       {b("$\xC3\xA9\xE2\x82\xAC\xF0\x9F\x9B\xB0\n")},
       {"L:$\xC3\xA9\xE2\x82\xAC\xF0\x9F\x9B\xB0"},
       false},
  };
  for (const auto& s : scenarios) {
    chunk_splitter_t splitter;
    EXPECT_EQ(split(splitter, s.chunks), s.results) << s.name;
    EXPECT_EQ(splitter.binary(), s.binary_after) << s.name;
  }
}

TEST(utf8_valid, accepts_utf8_and_nothing_else) {
  const struct {
    std::string bytes;
    bool valid;
  } cases[] = {
      {"", true},
      {"plain ASCII longer than one machine word", true},
      {"\xC2\x80\xDF\xBF", true},                  // two-byte bounds
      {"\xE0\xA0\x80\xEF\xBF\xBF", true},          // three-byte bounds
      {"\xED\x9F\xBF", true},                      // just below the surrogates
      {"\xF0\x90\x80\x80\xF4\x8F\xBF\xBF", true},  // U+10000, U+10FFFF
      {"\xF4\x90\x80\x80", false},                 // above U+10FFFF
      {"\xED\xA0\x80", false},                     // surrogate
      {"\xE0\x9F\xBF", false},                     // overlong three bytes
      {"\xF0\x8F\xBF\xBF", false},                 // overlong four bytes
      {"\xC1\xBF", false},                         // overlong two bytes
      {"\xE2\x82", false},                         // cut short
      {"\xE2\x82\x41", false},                     // a third byte that is no continuation
      {"\xE2\xC0\xAC", false},                     // a second byte above the continuations
      {"\xBF", false},                             // lone continuation
      {"\xF5\x80\x80\x80", false},
      {"ASCII ASCII \xFF", false},  // after a word of ASCII
  };
  for (const auto& c : cases)
    EXPECT_EQ(utf8_valid(std::span(reinterpret_cast<const std::uint8_t*>(c.bytes.data()), c.bytes.size())), c.valid)
        << testing::PrintToString(c.bytes);
}

}  // namespace

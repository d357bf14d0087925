#include "link/chunk_splitter.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using bytes_t = std::vector<std::uint8_t>;

bytes_t b(std::string_view s) { return bytes_t(s.begin(), s.end()); }

// Writes down what the splitter delivers, as text: "L:a|b" for a batch of lines, "B:n" for a
// binary chunk of n bytes; bridge hand-offs are counted apart.
struct record_sink_t final : chunk_sink_t {
  void chunk_bridge(std::span<const std::uint8_t> bytes) override { bridged.emplace_back(bytes.begin(), bytes.end()); }
  void chunk_lines(std::span<const std::string> lines) override {
    std::string e = "L:";
    for (std::size_t i = 0; i < lines.size(); ++i) e += (i ? "|" : "") + lines[i];
    events.push_back(e);
  }
  void chunk_binary(std::span<const std::uint8_t> bytes) override { events.push_back("B:" + std::to_string(bytes.size())); }
  std::vector<bytes_t> bridged;
  std::vector<std::string> events;
};

struct scenario_t {
  const char* name;
  std::vector<bytes_t> chunks;
  bool empty_lines;
  std::vector<std::string> events;
  bool binary_after;
};

TEST(chunk_splitter, cuts_lines_keeps_remainders_and_switches_to_binary) {
  const scenario_t scenarios[] = {
      {"a sentence split across two chunks arrives once, whole",
       {b("$GPGGA,1"), b("23*00\r\n")}, false, {"L:$GPGGA,123*00"}, false},
      {"three sentences in one chunk are one batch",
       {b("$A\r\n$B\r\n$C\r\n")}, false, {"L:$A|$B|$C"}, false},
      {"a bare CR ends the line; the LF that follows adds no empty line",
       {b("$A\r"), b("\n$B\r\n")}, false, {"L:$A", "L:$B"}, false},
      {"with empty lines kept, two LFs give one empty line",
       {b("$A\n\n$B\n")}, true, {"L:$A||$B"}, false},
      {"with empty lines kept, a bare CR then LF gives an empty line",
       {b("$A\r"), b("\n$B\n")}, true, {"L:$A", "L:|$B"}, false},
      {"an empty line before an unfinished one is dropped with it",
       {b("\n$B")}, true, {}, false},
      {"CRs inside a line vanish", {b("$A\rB\n")}, false, {"L:$AB"}, false},
      {"only CR LF delivers nothing", {b("\r\n")}, false, {}, false},
      {"a chunk without LF delivers nothing yet", {b("$GPG")}, false, {}, false},
      {"a NUL byte is an ordinary character", {bytes_t{'$', 0, 'A', '\n'}}, false, {std::string("L:$\0A", 5)}, false},
      {"the first non-UTF-8 chunk switches to binary for good",
       {bytes_t{0xB5, 0x62, 0x01}, b("$A\r\n")}, false, {"B:3", "B:4"}, true},
      {"a lone 0xFF goes binary without switching",
       {bytes_t{0xFF}, b("$A\n")}, false, {"B:1", "L:$A"}, false},
      {"a lone 0x00 is text", {bytes_t{0x00}}, false, {}, false},
      {"0x00 0xFF goes binary without switching",
       {bytes_t{0x00, 0xFF}, b("$A\n")}, false, {"B:2", "L:$A"}, false},
      {"0xFF 0x00 switches", {bytes_t{0xFF, 0x00}}, false, {"B:2"}, true},
      {"a UTF-8 character cut between chunks switches",
       {bytes_t{'$', 0xC3}, bytes_t{0xA9, '\n'}}, false, {"B:2", "B:2"}, true},
      {"multi-byte UTF-8 is text", {b("$\xC3\xA9\xE2\x82\xAC\xF0\x9F\x9B\xB0\n")}, false,
       {"L:$\xC3\xA9\xE2\x82\xAC\xF0\x9F\x9B\xB0"}, false},
      {"overlong and surrogate forms are not UTF-8",
       {bytes_t{0xC0, 0x80}}, false, {"B:2"}, true},
  };
  for (const auto& s : scenarios) {
    chunk_splitter_t splitter(false, false);
    splitter.set_empty_lines(s.empty_lines);
    record_sink_t sink;
    for (const auto& c : s.chunks) splitter.feed(c, sink);
    EXPECT_EQ(sink.events, s.events) << s.name;
    EXPECT_EQ(splitter.binary(), s.binary_after) << s.name;
    EXPECT_EQ(sink.bridged, s.chunks) << s.name << ": every chunk goes to the bridge first";
  }
}

TEST(chunk_splitter, reset_returns_to_text_and_forgets_the_remainder) {
  chunk_splitter_t splitter(false, false);
  record_sink_t sink;
  splitter.feed(b("$GP"), sink);
  splitter.feed(bytes_t{0x80, 0x81}, sink);
  ASSERT_TRUE(splitter.binary());
  splitter.reset();
  splitter.feed(b("$A\n"), sink);
  EXPECT_EQ(sink.events, (std::vector<std::string>{"B:2", "L:$A"}));
}

TEST(chunk_splitter, force_text_tries_text_first_even_in_binary_mode) {
  chunk_splitter_t splitter(true, true);
  record_sink_t sink;
  splitter.feed(b("$A"), sink);      // text without a line: still binary, so also the binary way
  splitter.feed(b("\n"), sink);      // a line: back to text
  splitter.feed(bytes_t{0x90}, sink);
  EXPECT_EQ(sink.events, (std::vector<std::string>{"B:2", "L:$A", "B:1"}));
  EXPECT_TRUE(splitter.binary());
}

TEST(utf8_valid, rejects_what_is_not_utf8) {
  EXPECT_TRUE(utf8_valid(b("")));
  EXPECT_TRUE(utf8_valid(b("\xF4\x8F\xBF\xBF")));   // U+10FFFF
  EXPECT_FALSE(utf8_valid(b("\xF4\x90\x80\x80")));  // above U+10FFFF
  EXPECT_FALSE(utf8_valid(b("\xED\xA0\x80")));      // surrogate
  EXPECT_FALSE(utf8_valid(b("\xE0\x80\xAF")));      // overlong
  EXPECT_FALSE(utf8_valid(b("\xC1\xBF")));          // overlong
  EXPECT_FALSE(utf8_valid(b("\xE2\x82")));          // cut short
  EXPECT_FALSE(utf8_valid(b("\xBF")));              // lone continuation
  EXPECT_FALSE(utf8_valid(b("\xF8\x88\x80\x80\x80")));
}

}  // namespace

#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

// True when the bytes are well-formed UTF-8 (no overlong forms, no surrogates, at most U+10FFFF).
// A NUL byte is an ordinary character.
bool utf8_valid(std::span<const std::uint8_t> bytes);

// What one chunk gave: either the complete lines it finished (without CR and LF, valid until the
// next chunk), or, for a chunk that goes the binary way, no lines and binary set.
struct chunk_cut_t {
  bool binary = false;
  std::span<const std::string> lines;
};

// Turns a link's received chunks into lines or binary chunks. Text chunks are cut at LF with CRs
// removed and empty lines dropped; the unfinished end of one chunk is kept and prefixed to the next.
// A line keeps at most its first line_limit bytes and drops the rest up to its LF, so a stream that
// never sends LF costs no more memory than one that does.
// The first chunk that is not UTF-8 switches the stream to binary, except a lone 0x00 or 0xFF or
// exactly 0x00 0xFF, which go the binary way without switching: some receivers send such bytes
// around a power cycle in the middle of their text. Binary mode lasts until reset, or until
// binary_noise_limit bytes of binary chunks have gone by without a UBX record: a stray byte in a
// stream of sentences must not end their decoding for good.
class chunk_splitter_t {
public:
  static constexpr std::size_t line_limit = 1024;          // bytes kept of one line
  static constexpr std::size_t binary_noise_limit = 2048;  // bytes without a record that end binary mode

  chunk_splitter_t() { partial_.reserve(line_limit); }

  // A new connection: text mode and no unfinished line.
  void reset();
  chunk_cut_t feed(std::span<const std::uint8_t> chunk);
  // Told after each binary chunk of size bytes whether the UBX decoder passed a record on during
  // it. In binary mode a record clears the count of bytes without one, and when the count reaches
  // binary_noise_limit the stream returns to text as after reset. Returns that count when it did,
  // else 0.
  std::size_t binary_handled(std::size_t size, bool record);

  bool binary() const { return binary_; }

private:
  std::span<const std::string> cut_lines(std::span<const std::uint8_t> text);
  void add_line(std::string_view piece);
  void keep(const char* text, std::size_t size);

  bool binary_ = false;
  std::size_t noise_ = 0;           // binary bytes since the last record
  std::string partial_;             // the line being assembled; between chunks, the remainder
  std::vector<std::string> lines_;  // slots reused from chunk to chunk
  std::size_t line_count_ = 0;
};

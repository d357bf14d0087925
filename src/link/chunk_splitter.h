#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

// Where the chunk splitter delivers what it made of one received chunk.
class chunk_sink_t {
public:
  virtual ~chunk_sink_t() = default;
  // The chunk's raw bytes, before they are interpreted (for the bridge).
  virtual void chunk_bridge(std::span<const std::uint8_t> bytes) = 0;
  // The complete lines the chunk finished, without CR and LF.
  virtual void chunk_lines(std::span<const std::string> lines) = 0;
  // The chunk, to be handled as binary.
  virtual void chunk_binary(std::span<const std::uint8_t> bytes) = 0;
};

// True when the bytes are well-formed UTF-8 (no overlong forms, no surrogates, at most U+10FFFF).
// A NUL byte is an ordinary character.
bool utf8_valid(std::span<const std::uint8_t> bytes);

// Turns a link's received chunks into lines or binary chunks. Text chunks are cut at LF with CRs
// removed; the unfinished end of one chunk is kept and prefixed to the next. The first chunk that
// is not UTF-8 switches the stream to binary for good (until reset), except a lone 0x00 or 0xFF or
// exactly 0x00 0xFF, which go the binary way without switching: some receivers send such bytes
// around a power cycle in the middle of their text.
class chunk_splitter_t {
public:
  chunk_splitter_t(bool binary, bool force_text) : binary_(binary), force_text_(force_text) {}

  // A new connection: text mode and no unfinished line.
  void reset();
  void feed(std::span<const std::uint8_t> chunk, chunk_sink_t& sink);

  bool binary() const { return binary_; }
  bool force_text() const { return force_text_; }
  bool empty_lines() const { return empty_lines_; }
  void set_empty_lines(bool keep) { empty_lines_ = keep; }
  const std::string& remainder() const { return partial_; }

  // The text half of feed(), for a transport that decides text or binary by its own rule: cuts
  // (remainder + text without CRs) at every LF and returns the complete lines. Empty lines count
  // only with empty_lines. When the text ends with CR or LF every piece is complete; otherwise the
  // last piece becomes the remainder. A trailing empty piece is dropped. The lines stay valid until
  // the next call.
  std::span<const std::string> cut_lines(std::span<const std::uint8_t> text);

private:
  void add_line(std::string_view piece);
  void binary_switch(std::span<const std::uint8_t> chunk, chunk_sink_t& sink);

  bool binary_;
  bool force_text_;
  bool empty_lines_ = false;
  std::string partial_;             // the line being assembled; between chunks, the remainder
  std::vector<std::string> lines_;  // slots reused from chunk to chunk
  std::size_t line_count_ = 0;
};

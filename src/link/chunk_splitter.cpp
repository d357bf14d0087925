#include "link/chunk_splitter.h"

#include <algorithm>
#include <string_view>

#include "core/word_scan.h"

namespace {

// The index of the first CR or LF at or after from, or size.
std::size_t find_line_end(const char* text, std::size_t from, std::size_t size) {
  std::size_t i = from;
  if constexpr (word_scan::enabled) {
    for (; i + 8 <= size; i += 8) {
      const auto w = word_scan::load(text + i);
      const auto ends = word_scan::bytes_equal(w, '\r') | word_scan::bytes_equal(w, '\n');
      if (ends != 0) return i + word_scan::first_marked(ends);
    }
  }
  for (; i < size; ++i)
    if (text[i] == '\r' || text[i] == '\n') return i;
  return size;
}

}  // namespace

bool utf8_valid(std::span<const std::uint8_t> bytes) {
  std::size_t i = 0;
  const std::size_t n = bytes.size();
  while (i < n) {
    if constexpr (word_scan::enabled) {
      // Runs of ASCII, the usual content, are passed over a word at a time.
      if (i + 8 <= n && (word_scan::load(bytes.data() + i) & word_scan::high) == 0) {
        i += 8;
        continue;
      }
    }
    const std::uint8_t b = bytes[i];
    if (b < 0x80) {
      ++i;
      continue;
    }
    std::size_t len = 0;
    std::uint8_t lo = 0x80;
    std::uint8_t hi = 0xBF;
    if (b >= 0xC2 && b <= 0xDF) {
      len = 2;
    } else if (b >= 0xE0 && b <= 0xEF) {
      len = 3;
      if (b == 0xE0) lo = 0xA0;  // no overlong forms
      if (b == 0xED) hi = 0x9F;  // no surrogates
    } else if (b >= 0xF0 && b <= 0xF4) {
      len = 4;
      if (b == 0xF0) lo = 0x90;  // no overlong forms
      if (b == 0xF4) hi = 0x8F;  // nothing above U+10FFFF
    } else {
      return false;
    }
    if (n - i < len) return false;
    if (bytes[i + 1] < lo || bytes[i + 1] > hi) return false;
    for (std::size_t k = 2; k < len; ++k)
      if (bytes[i + k] < 0x80 || bytes[i + k] > 0xBF) return false;
    i += len;
  }
  return true;
}

void chunk_splitter_t::reset() {
  binary_ = false;
  noise_ = 0;
  partial_.clear();
}

std::size_t chunk_splitter_t::binary_handled(std::size_t size, bool record) {
  if (!binary_) return 0;
  noise_ = record ? 0 : noise_ + size;
  if (noise_ < binary_noise_limit) return 0;
  const std::size_t noise = noise_;
  reset();
  return noise;
}

chunk_cut_t chunk_splitter_t::feed(std::span<const std::uint8_t> chunk) {
  if (binary_) return {true, {}};
  if (!utf8_valid(chunk)) {
    const bool stray_bytes = (chunk.size() == 1 && (chunk[0] == 0x00 || chunk[0] == 0xFF)) ||
                             (chunk.size() == 2 && chunk[0] == 0x00 && chunk[1] == 0xFF);
    binary_ = !stray_bytes;
    return {true, {}};
  }
  return {false, cut_lines(chunk)};
}

// CRs are dropped wherever they stand and LF ends a line. A line that lies wholly in the chunk (no
// remainder before it, at most a CR right before its LF) is copied once, straight into its slot;
// anything else is assembled in partial_. Either way a line keeps at most line_limit bytes, so it is
// the same however the stream was cut into chunks.
std::span<const std::string> chunk_splitter_t::cut_lines(std::span<const std::uint8_t> chunk) {
  line_count_ = 0;
  const auto* text = reinterpret_cast<const char*>(chunk.data());
  const std::size_t size = chunk.size();
  std::size_t start = 0;
  for (std::size_t i = find_line_end(text, 0, size); i < size; i = find_line_end(text, start, size)) {
    std::size_t next = i + 1;
    if (text[i] == '\r') {
      if (next == size || text[next] != '\n') {
        keep(text + start, i - start);  // a CR inside a line, or at the chunk's end
        start = next;
        continue;
      }
      ++next;  // CR LF: the line ends at the CR
    }
    const std::string_view run(text + start, i - start);
    if (partial_.empty()) {
      if (!run.empty()) add_line(run.substr(0, line_limit));
    } else {
      keep(run.data(), run.size());
      add_line(partial_);
      partial_.clear();
    }
    start = next;
  }
  keep(text + start, size - start);
  const std::uint8_t last = chunk.empty() ? 0 : chunk.back();
  if (last == '\r' || last == '\n') {
    if (!partial_.empty()) add_line(partial_);
    partial_.clear();
  }
  return {lines_.data(), line_count_};
}

void chunk_splitter_t::add_line(std::string_view piece) {
  if (line_count_ == lines_.size()) lines_.emplace_back();
  lines_[line_count_++].assign(piece);
}

void chunk_splitter_t::keep(const char* text, std::size_t size) {
  partial_.append(text, std::min(size, line_limit - partial_.size()));
}

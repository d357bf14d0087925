#include "link/chunk_splitter.h"

bool utf8_valid(std::span<const std::uint8_t> bytes) {
  std::size_t i = 0;
  const std::size_t n = bytes.size();
  while (i < n) {
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
      if (b == 0xE0) lo = 0xA0;       // no overlong forms
      if (b == 0xED) hi = 0x9F;       // no surrogates
    } else if (b >= 0xF0 && b <= 0xF4) {
      len = 4;
      if (b == 0xF0) lo = 0x90;       // no overlong forms
      if (b == 0xF4) hi = 0x8F;       // nothing above U+10FFFF
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
  partial_.clear();
}

void chunk_splitter_t::feed(std::span<const std::uint8_t> chunk, chunk_sink_t& sink) {
  sink.chunk_bridge(chunk);
  if (!force_text_ && binary_) {
    sink.chunk_binary(chunk);
    return;
  }
  if (!utf8_valid(chunk)) {
    binary_switch(chunk, sink);
    return;
  }
  if (const auto lines = cut_lines(chunk); !lines.empty()) {
    binary_ = false;
    sink.chunk_lines(lines);
  }
  if (binary_) sink.chunk_binary(chunk);
}

void chunk_splitter_t::binary_switch(std::span<const std::uint8_t> chunk, chunk_sink_t& sink) {
  const bool stray_bytes = (chunk.size() == 1 && (chunk[0] == 0x00 || chunk[0] == 0xFF)) ||
                           (chunk.size() == 2 && chunk[0] == 0x00 && chunk[1] == 0xFF);
  if (!stray_bytes) binary_ = true;
  sink.chunk_binary(chunk);
}

std::span<const std::string> chunk_splitter_t::cut_lines(std::span<const std::uint8_t> chunk) {
  line_count_ = 0;
  const auto* text = reinterpret_cast<const char*>(chunk.data());
  std::size_t start = 0;
  for (std::size_t i = 0; i < chunk.size(); ++i) {
    const char c = text[i];
    if (c != '\r' && c != '\n') continue;
    partial_.append(text + start, i - start);  // the run up to this CR or LF; CRs are dropped
    start = i + 1;
    if (c == '\n') {
      if (!partial_.empty() || empty_lines_) add_line(partial_);
      partial_.clear();
    }
  }
  partial_.append(text + start, chunk.size() - start);
  const std::uint8_t last = chunk.empty() ? 0 : chunk.back();
  if (last == '\r' || last == '\n') {
    if (!partial_.empty() || empty_lines_) add_line(partial_);
    partial_.clear();
  }
  if (line_count_ > 0 && lines_[line_count_ - 1].empty()) --line_count_;
  return {lines_.data(), line_count_};
}

void chunk_splitter_t::add_line(const std::string& piece) {
  if (line_count_ == lines_.size()) lines_.emplace_back();
  lines_[line_count_++].assign(piece);
}

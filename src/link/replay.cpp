#include "link/replay.h"

#include <algorithm>

#include "link/chunk_splitter.h"

namespace {

// Hands the splitter's output to the delegate directly: a replay runs on the main thread.
class delegate_sink_t final : public chunk_sink_t {
public:
  explicit delegate_sink_t(tcp_client_delegate_t& delegate) : delegate_(delegate) {}
  void chunk_bridge(std::span<const std::uint8_t> bytes) override { delegate_.tcp_bridge(bytes); }
  void chunk_lines(std::span<const std::string> lines) override { delegate_.tcp_lines(lines); }
  void chunk_binary(std::span<const std::uint8_t> bytes) override { delegate_.tcp_binary(bytes); }

private:
  tcp_client_delegate_t& delegate_;
};

}  // namespace

void replay_chunks(std::span<const std::uint8_t> capture, std::size_t chunk_size, tcp_client_delegate_t& delegate) {
  chunk_splitter_t splitter(false, false);
  delegate_sink_t sink(delegate);
  for (std::size_t at = 0; at < capture.size(); at += chunk_size)
    splitter.feed(capture.subspan(at, std::min(chunk_size, capture.size() - at)), sink);
}

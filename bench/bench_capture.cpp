// Opening a large capture and seeking in it, as the window's seek bar does: a seek to a random
// offset, then one epoch played. KORVID_CAPTURE names the capture (make one of some hundred MB by
// joining samples in /tmp; see docs/performance.md); without it the benchmarks are skipped.
#include <benchmark/benchmark.h>

#include <cstdlib>
#include <random>

#include "link/link_status.h"
#include "session/capture_player.h"

namespace {

// The main queue of a benchmark: nothing is scheduled, since only open, seek and step run.
class still_queue_t final : public main_queue_t {
public:
  void post(std::function<void()>) override {}
  bool post_and_wait(std::function<void()> task) override {
    task();
    return true;
  }
  void post_after(double, std::function<void()>) override {}
  double now_s() const override { return 0; }
};

struct counting_link_t final : link_status_events_t {
  void link_up(const std::string&) override {}
  void link_down(const std::string&, std::int32_t) override {}
  void link_bytes(std::span<const std::uint8_t> bytes) override { received += bytes.size(); }
  void link_status(const std::string&) override {}
  std::uint64_t received = 0;
};

const char* capture_path(benchmark::State& state) {
  const char* path = std::getenv("KORVID_CAPTURE");
  if (path == nullptr) state.SkipWithError("set KORVID_CAPTURE to a capture file");
  return path;
}

void BM_capture_open(benchmark::State& state) {
  const char* path = capture_path(state);
  if (path == nullptr) return;
  still_queue_t queue;
  counting_link_t link;
  for (auto _ : state) {
    capture_player_t player(queue, link, [] {});
    benchmark::DoNotOptimize(player.open(path));
  }
}
BENCHMARK(BM_capture_open)->Unit(benchmark::kMillisecond);

void BM_capture_seek(benchmark::State& state) {
  const char* path = capture_path(state);
  if (path == nullptr) return;
  still_queue_t queue;
  counting_link_t link;
  capture_player_t player(queue, link, [] {});
  if (!player.open(path)) {
    state.SkipWithError("the capture cannot be read");
    return;
  }
  std::mt19937_64 random(1);
  for (auto _ : state) {
    player.seek(random() % player.size());
    player.step();
  }
  state.counters["bytes_per_step"] =
      benchmark::Counter(static_cast<double>(link.received), benchmark::Counter::kAvgIterations);
}
BENCHMARK(BM_capture_seek)->Unit(benchmark::kMillisecond);

}  // namespace

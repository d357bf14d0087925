// The text receive path: chunk splitter, hub validation, field list and every decoder.
#include <benchmark/benchmark.h>

#include "bench_streams.h"
#include "counting_allocator.h"
#include "link/chunk_splitter.h"
#include "link/connection.h"
#include "link/offline_links.h"
#include "link/replay.h"
#include "support/idle_harness.h"

namespace {

// Hands the splitter's output to the hub as a TCP link's receive loop does.
struct hub_sink_t final : chunk_sink_t {
  explicit hub_sink_t(connection_t& hub) : hub(hub) {}
  void chunk_bridge(std::span<const std::uint8_t> bytes) override { hub.tcp_bridge(bytes); }
  void chunk_lines(std::span<const std::string> lines) override { hub.tcp_lines(lines); }
  void chunk_binary(std::span<const std::uint8_t> bytes) override { hub.tcp_binary(bytes); }
  connection_t& hub;
};

void feed_stream(const std::vector<std::uint8_t>& stream, std::size_t chunk, chunk_splitter_t& splitter,
                 chunk_sink_t& sink) {
  for (std::size_t at = 0; at < stream.size(); at += chunk)
    splitter.feed(std::span(stream).subspan(at, std::min(chunk, stream.size() - at)), sink);
}

void report(benchmark::State& state, std::uint64_t sentences, std::uint64_t bytes, std::uint64_t allocations) {
  state.SetItemsProcessed(static_cast<std::int64_t>(sentences));
  state.SetBytesProcessed(static_cast<std::int64_t>(bytes));
  state.counters["allocs_per_sentence"] = static_cast<double>(allocations) / static_cast<double>(sentences);
}

// The whole stream through one hub again and again: after the first pass every bounded list is
// full, so the allocation count shows the steady state.
void line_path(benchmark::State& state) {
  const auto& stream = text_stream();
  const auto sentences = count_candidates(stream);
  idle_queue_t queue;
  silent_console_t console;
  offline_links_t links;
  connection_t hub(queue, console, links);
  chunk_splitter_t splitter(false, false);
  hub_sink_t sink(hub);
  feed_stream(stream, replay_default_chunk, splitter, sink);  // warm up: fill the bounded lists
  std::uint64_t allocations = 0;
  std::uint64_t passes = 0;
  for (auto _ : state) {
    const auto before = allocation_count();
    feed_stream(stream, replay_default_chunk, splitter, sink);
    allocations += allocation_count() - before;
    ++passes;
  }
  benchmark::DoNotOptimize(hub.msg_good);
  report(state, sentences * passes, stream.size() * passes, allocations);
}
BENCHMARK(line_path)->Unit(benchmark::kMillisecond);

struct null_sink_t final : chunk_sink_t {
  void chunk_bridge(std::span<const std::uint8_t>) override {}
  void chunk_lines(std::span<const std::string> lines) override { benchmark::DoNotOptimize(lines.data()); }
  void chunk_binary(std::span<const std::uint8_t>) override {}
};

void chunk_splitter(benchmark::State& state) {
  const auto& stream = text_stream();
  const auto chunk = static_cast<std::size_t>(state.range(0));
  chunk_splitter_t splitter(false, false);
  null_sink_t sink;
  std::uint64_t allocations = 0;
  std::uint64_t passes = 0;
  for (auto _ : state) {
    const auto before = allocation_count();
    feed_stream(stream, chunk, splitter, sink);
    allocations += allocation_count() - before;
    ++passes;
  }
  report(state, count_candidates(stream) * passes, stream.size() * passes, allocations);
}
BENCHMARK(chunk_splitter)->Arg(64)->Arg(2047)->Unit(benchmark::kMillisecond);

}  // namespace

// The text receive path: a link's chunks through the hub's splitter, validation, field list and every decoder.
#include <benchmark/benchmark.h>

#include "bench_streams.h"
#include "counting_allocator.h"
#include "link/chunk_splitter.h"
#include "link/connection.h"
#include "link/offline_links.h"
#include "link/replay.h"
#include "support/idle_harness.h"

namespace {

void feed_stream(const std::vector<std::uint8_t>& stream, std::size_t chunk, chunk_splitter_t& splitter) {
  for (std::size_t at = 0; at < stream.size(); at += chunk)
    benchmark::DoNotOptimize(splitter.feed(std::span(stream).subspan(at, std::min(chunk, stream.size() - at))));
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
  replay_chunks(stream, replay_default_chunk, hub.tcp_events());  // warm up: fill the bounded lists
  std::uint64_t allocations = 0;
  std::uint64_t passes = 0;
  for (auto _ : state) {
    const auto before = allocation_count();
    replay_chunks(stream, replay_default_chunk, hub.tcp_events());
    allocations += allocation_count() - before;
    ++passes;
  }
  benchmark::DoNotOptimize(hub.msg_good);
  report(state, sentences * passes, stream.size() * passes, allocations);
}
BENCHMARK(line_path)->Unit(benchmark::kMillisecond);

void chunk_splitter(benchmark::State& state) {
  const auto& stream = text_stream();
  const auto chunk = static_cast<std::size_t>(state.range(0));
  chunk_splitter_t splitter;
  std::uint64_t allocations = 0;
  std::uint64_t passes = 0;
  for (auto _ : state) {
    const auto before = allocation_count();
    feed_stream(stream, chunk, splitter);
    allocations += allocation_count() - before;
    ++passes;
  }
  report(state, count_candidates(stream) * passes, stream.size() * passes, allocations);
}
BENCHMARK(chunk_splitter)->Arg(64)->Arg(2047)->Unit(benchmark::kMillisecond);

}  // namespace

// The binary receive path: a link's chunks through the UBX framer, the six decoders' record paths and the log text of
// every decoded record.
#include <benchmark/benchmark.h>

#include "bench_streams.h"
#include "counting_allocator.h"
#include "link/connection.h"
#include "link/offline_links.h"
#include "link/replay.h"
#include "support/idle_harness.h"

namespace {

void ubx_path(benchmark::State& state) {
  const auto& stream = ubx_stream();
  const auto frames = count_nav_pvt(stream);
  const auto chunk = static_cast<std::size_t>(state.range(0));
  idle_queue_t queue;
  silent_console_t console;
  offline_links_t links;
  connection_t hub(queue, console, links);
  std::uint64_t allocations = 0;
  std::uint64_t passes = 0;
  for (auto _ : state) {
    const auto before = allocation_count();
    replay_chunks(stream, chunk, hub.tcp_events());  // its first byte, 0xB5, switches the link to binary
    allocations += allocation_count() - before;
    ++passes;
  }
  state.SetItemsProcessed(static_cast<std::int64_t>(frames * passes));
  state.SetBytesProcessed(static_cast<std::int64_t>(stream.size() * passes));
  state.counters["allocs_per_frame"] = static_cast<double>(allocations) / static_cast<double>(frames * passes);
}
BENCHMARK(ubx_path)->Arg(1)->Arg(100)->Arg(2047)->Unit(benchmark::kMicrosecond);

}  // namespace

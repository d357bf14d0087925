// The satellite table of every system alone: the GSV and GSA sentences of the text captures,
// split once, offered to it again and again as the hub offers them after the exact decoders.
#include <benchmark/benchmark.h>

#include <string>
#include <vector>

#include "bench_streams.h"
#include "gnss/gnss_sky.h"
#include "nmea/sentence.h"
#include "support/idle_harness.h"

namespace {

// The satellite sentences' text and fields, each kept in one block as the hub keeps a line's.
struct satellite_sentences_t {
  std::string text;
  std::vector<std::string_view> fields;
  std::vector<std::span<const std::string_view>> sentences;
};

satellite_sentences_t satellite_sentences(const std::vector<std::uint8_t>& stream) {
  satellite_sentences_t out;
  std::vector<std::pair<std::size_t, std::size_t>> lines;  // where each line starts in text, and its length
  const std::string_view all(reinterpret_cast<const char*>(stream.data()), stream.size());
  for (std::size_t at = 0; at < all.size();) {
    const auto end = std::min(all.find('\n', at), all.size());
    auto line = all.substr(at, end - at);
    at = end + 1;
    if (line.ends_with('\r')) line.remove_suffix(1);
    if (line.size() < 6 || line[0] != '$' || (line.substr(3, 3) != "GSV" && line.substr(3, 3) != "GSA")) continue;
    lines.emplace_back(out.text.size(), line.size());
    out.text += line;
  }
  std::vector<std::string_view> fields(sentence_max_length);
  std::vector<std::pair<std::size_t, std::size_t>> spans;
  for (const auto& [start, length] : lines) {
    const auto scan = scan_sentence(std::string_view(out.text).substr(start, length), fields);
    const auto count = std::min(scan.field_count, fields.size());
    spans.emplace_back(out.fields.size(), count);
    out.fields.insert(out.fields.end(), fields.begin(), fields.begin() + static_cast<std::ptrdiff_t>(count));
  }
  for (const auto& [start, count] : spans) out.sentences.push_back(std::span(out.fields).subspan(start, count));
  return out;
}

// One observer, as the hub is one, so each notice costs what it costs in the program.
void sky_decoder(benchmark::State& state) {
  const auto input = satellite_sentences(text_stream());
  idle_queue_t clock;
  gnss_sky_t sky(clock);
  std::uint64_t notices = 0;
  const auto watch = sky.subscribe([&] { ++notices; });
  std::uint64_t passes = 0;
  for (auto _ : state) {
    for (const auto& fields : input.sentences) sky.update(fields);
    ++passes;
  }
  benchmark::DoNotOptimize(notices);
  state.SetItemsProcessed(static_cast<std::int64_t>(input.sentences.size() * passes));
}
BENCHMARK(sky_decoder)->Unit(benchmark::kMicrosecond);

}  // namespace

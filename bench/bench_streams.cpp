#include "bench_streams.h"

#include <filesystem>
#include <fstream>
#include <iterator>

namespace {

std::vector<std::uint8_t> read_file(const std::filesystem::path& path) {
  std::ifstream in(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

}  // namespace

const std::vector<std::uint8_t>& text_stream() {
  static const std::vector<std::uint8_t> stream = [] {
    std::vector<std::uint8_t> all;
    const std::filesystem::path logs(KORVID_LOGS_DIR);
    for (const char* name : {"bu353-glonass.log", "gps-360.log", "neo-m8n.log", "telit-he910.log", "ublox-lea-5h.log"}) {
      const auto bytes = read_file(logs / name);
      all.insert(all.end(), bytes.begin(), bytes.end());
    }
    if (all.empty()) all = read_file(std::filesystem::path(KORVID_SAMPLES_DIR) / "demo.nmea");
    return all;
  }();
  return stream;
}

std::uint64_t count_candidates(const std::vector<std::uint8_t>& stream) {
  std::uint64_t n = 0;
  bool line_start = true;
  for (const auto b : stream) {
    if (line_start && b == '$') ++n;
    line_start = b == '\n';
  }
  return n;
}

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

const std::vector<std::uint8_t>& ubx_stream() {
  static const std::vector<std::uint8_t> stream = [] {
    constexpr std::size_t target_size = 1 << 20;  // bytes
    const auto capture = read_file(std::filesystem::path(KORVID_LOGS_DIR) / "ublox-neo-m8n.log");
    std::vector<std::uint8_t> binary;
    for (std::size_t i = 0; i + 1 < capture.size(); ++i) {
      if (capture[i] == 0xB5 && capture[i + 1] == 0x62) {
        binary.assign(capture.begin() + static_cast<std::ptrdiff_t>(i), capture.end());
        break;
      }
    }
    std::vector<std::uint8_t> all;
    while (!binary.empty() && all.size() < target_size) all.insert(all.end(), binary.begin(), binary.end());
    return all;
  }();
  return stream;
}

std::uint64_t count_nav_pvt(const std::vector<std::uint8_t>& stream) {
  std::uint64_t n = 0;
  for (std::size_t i = 0; i + 3 < stream.size(); ++i)
    n += stream[i] == 0xB5 && stream[i + 1] == 0x62 && stream[i + 2] == 0x01 && stream[i + 3] == 0x07;
  return n;
}

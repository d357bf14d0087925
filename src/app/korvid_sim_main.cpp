#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <fstream>
#include <iterator>
#include <string>
#include <string_view>
#include <vector>

#include "app/sim_engine.h"
#include "app/sim_server.h"
#include "nmea/fields.h"

namespace {

constexpr int usage_error = 2;
std::atomic<bool> stop_requested{false};  // set by SIGINT and SIGTERM
void request_stop(int) {
  stop_requested = true;
}

const char* const usage =
    "Usage: korvid-sim [options]\n"
    "\n"
    "A GNSS receiver simulator: serves a moving receiver's NMEA sentences (or UBX frames) to any\n"
    "number of TCP clients on 127.0.0.1.\n"
    "\n"
    "  --port N               port to listen on (default 10110; 0 picks a free one)\n"
    "  --rate HZ              epochs per second, or lines per second with --replay (default 1)\n"
    "  --lat DEG --lon DEG    centre of the loop the receiver walks (south and west negative)\n"
    "  --speed M/S            walking or driving speed (default 1.4)\n"
    "  --seed N               the same seed gives the same stream\n"
    "  --ubx                  send NAV-PVT and NAV-POSLLH frames instead of sentences\n"
    "  --bad-checksum-rate P  share of sentences sent with a wrong checksum, 0 to 1\n"
    "  --garbage-rate P       share of sentences followed by a line of junk, 0 to 1\n"
    "  --drop-after S         close each connection S seconds after it was made\n"
    "  --replay FILE          serve a capture line by line instead\n"
    "  --duration S           stop after S seconds (default: at Ctrl-C or SIGTERM)\n";

int fail(const std::string& message) {
  std::fprintf(stderr, "korvid-sim: %s (see --help)\n", message.c_str());
  return usage_error;
}

// Pieces of a capture: one line each (with its line end), in order, over and over.
class capture_lines_t {
public:
  explicit capture_lines_t(const std::string& bytes) {
    std::size_t start = 0;
    while (start < bytes.size()) {
      auto end = bytes.find('\n', start);
      end = end == std::string::npos ? bytes.size() : end + 1;
      lines_.push_back(bytes.substr(start, end - start));
      start = end;
    }
  }
  bool empty() const { return lines_.empty(); }
  std::string next() { return lines_[next_++ % lines_.size()]; }
  std::size_t served() const { return next_; }

private:
  std::vector<std::string> lines_;
  std::size_t next_ = 0;
};

}  // namespace

int main(int argc, char** argv) {
  sim_config_t sim;
  sim_server_config_t serve;
  double rate = 1.0;
  std::string replay_file;
  for (int i = 1; i < argc; ++i) {
    const std::string_view arg = argv[i];
    auto value = [&]() -> std::string_view { return i + 1 < argc ? std::string_view(argv[++i]) : std::string_view(); };
    auto number = [&](double low, double high, double& out) {
      const auto text = value();
      const auto v = parse_double(text);
      if (!v || !(*v >= low && *v <= high)) return false;
      out = *v;
      return true;
    };
    double v = 0;
    if (arg == "--help" || arg == "-h") {
      std::fputs(usage, stdout);
      return 0;
    } else if (arg == "--port") {
      if (!number(0, 65535, v) || v != static_cast<int>(v)) return fail("--port takes a port number 0 to 65535");
      serve.port = static_cast<std::uint16_t>(v);
    } else if (arg == "--rate") {
      if (!number(0.01, 1000, rate)) return fail("--rate takes a number of epochs per second, 0.01 to 1000");
    } else if (arg == "--lat") {
      if (!number(-89.9, 89.9, sim.lat)) return fail("--lat takes degrees, -89.9 to 89.9");
    } else if (arg == "--lon") {
      if (!number(-180, 180, sim.lon)) return fail("--lon takes degrees, -180 to 180");
    } else if (arg == "--speed") {
      if (!number(0, 100, sim.speed_mps)) return fail("--speed takes metres per second, 0 to 100");
    } else if (arg == "--seed") {
      const auto seed = parse_unsigned(value(), UINT64_MAX);
      if (!seed) return fail("--seed takes a whole number");
      sim.seed = *seed;
    } else if (arg == "--ubx") {
      sim.ubx = true;
    } else if (arg == "--bad-checksum-rate") {
      if (!number(0, 1, sim.bad_checksum_rate)) return fail("--bad-checksum-rate takes a share from 0 to 1");
    } else if (arg == "--garbage-rate") {
      if (!number(0, 1, sim.garbage_rate)) return fail("--garbage-rate takes a share from 0 to 1");
    } else if (arg == "--drop-after") {
      if (!number(0.01, 1e9, serve.drop_after_s)) return fail("--drop-after takes a positive number of seconds");
    } else if (arg == "--duration") {
      if (!number(0.01, 1e9, serve.duration_s)) return fail("--duration takes a positive number of seconds");
    } else if (arg == "--replay") {
      replay_file = std::string(value());
      if (replay_file.empty()) return fail("--replay needs a file name");
    } else {
      return fail("unknown option '" + std::string(arg) + "'");
    }
  }
  serve.period_s = 1.0 / rate;
  sim.epoch_s = serve.period_s;
  sim.start_utc_s = static_cast<std::int64_t>(std::time(nullptr));

  std::string capture;
  if (!replay_file.empty()) {
    std::ifstream in(replay_file, std::ios::binary);
    if (!in) return fail("cannot read '" + replay_file + "'");
    capture.assign(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
  }
  capture_lines_t lines(capture);
  if (!replay_file.empty() && lines.empty()) return fail("'" + replay_file + "' is empty");

  sim_server_t server(serve);
  if (!server.listen()) {
    std::fprintf(stderr, "korvid-sim: cannot listen on 127.0.0.1:%u: %s\n", serve.port, std::strerror(errno));
    return 1;
  }
  std::printf("korvid-sim: serving on 127.0.0.1:%u\n", server.port());
  std::fflush(stdout);
  std::signal(SIGINT, request_stop);
  std::signal(SIGTERM, request_stop);

  sim_engine_t engine(sim);
  if (replay_file.empty()) {
    server.run([&] { return engine.next_epoch(); }, stop_requested);
  } else {
    server.run([&] { return lines.next(); }, stop_requested);
  }
  std::printf("korvid-sim: %llu connections, %llu dropped; ", static_cast<unsigned long long>(server.connections()),
              static_cast<unsigned long long>(server.drops()));
  if (!replay_file.empty()) {
    std::printf("served %zu capture lines\n", lines.served());
  } else {
    const auto& c = engine.counts();
    std::printf("sent %llu sentences (%llu with a bad checksum), %llu junk lines, %llu UBX frames\n",
                static_cast<unsigned long long>(c.sentences), static_cast<unsigned long long>(c.bad_checksums),
                static_cast<unsigned long long>(c.garbage_lines), static_cast<unsigned long long>(c.frames));
  }
  return 0;
}

#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <fstream>
#include <functional>
#include <iterator>
#include <string>
#include <string_view>
#include <vector>

#include "app/sim_options.h"
#include "app/sim_rtcm_input.h"
#include "sim/capture_lines.h"
#include "sim/rtcm_encoder.h"
#include "sim/sim_pacer.h"
#include "sim/sim_pty.h"
#include "sim/sim_receiver.h"
#include "sim/sim_udp.h"

namespace {

constexpr int usage_error = 2;
std::atomic<bool> stop_requested{false};  // set by SIGINT and SIGTERM
void request_stop(int) {
  stop_requested = true;
}

int fail(const std::string& message) {
  std::fprintf(stderr, "korvid-sim: %s (see --help)\n", message.c_str());
  return usage_error;
}

// What was served, and with a TCP server how many connections it had.
void print_counts(const sim_server_t* server, const capture_lines_t* capture, const sim_counts_t& c) {
  std::printf("korvid-sim: ");
  if (server) {
    std::printf("%llu connections, %llu dropped; ", static_cast<unsigned long long>(server->connections()),
                static_cast<unsigned long long>(server->drops()));
  }
  if (capture) {
    std::printf("served %zu capture lines\n", capture->served());
  } else if (c.frames > 0) {
    std::printf("sent %llu UBX frames (%llu with a bad checksum), %llu runs of junk bytes\n",
                static_cast<unsigned long long>(c.frames), static_cast<unsigned long long>(c.bad_checksums),
                static_cast<unsigned long long>(c.garbage_lines));
  } else {
    std::printf("sent %llu sentences (%llu with a bad checksum), %llu junk lines\n",
                static_cast<unsigned long long>(c.sentences), static_cast<unsigned long long>(c.bad_checksums),
                static_cast<unsigned long long>(c.garbage_lines));
  }
}

// The stream on a pseudo-terminal, as a receiver on a serial port: a program opens the printed path.
int serve_pty(const sim_options_t& options, const std::function<std::string()>& next_piece, double& period_s,
              sim_input_t* commands) {
  sim_pty_t pty(options.baud, options.receiver.seed);
  if (!pty.open()) {
    std::fprintf(stderr, "korvid-sim: cannot create a pseudo-terminal: %s\n", std::strerror(errno));
    return 1;
  }
  std::printf("korvid-sim: serving on %s\n", pty.slave_path().c_str());
  std::fflush(stdout);
  const auto answer = [&] {
    if (const auto bytes = pty.receive(); !bytes.empty() && commands) pty.send(commands->received(bytes));
  };
  run_paced([&] { return period_s; }, options.server.duration_s, next_piece,
            [&](const std::string& piece) { pty.send(piece); }, answer, stop_requested);
  return 0;
}

int send_udp(const sim_options_t& options, const std::function<std::string()>& next_piece) {
  sim_udp_t udp;
  if (!udp.open(options.udp_host, options.udp_port)) {
    std::fprintf(stderr, "korvid-sim: cannot send to %s: %s\n", options.udp_host.c_str(), std::strerror(errno));
    return 1;
  }
  std::printf("korvid-sim: sending to %s port %u\n", options.udp_host.c_str(), options.udp_port);
  std::fflush(stdout);
  run_paced(
      options.server.period_s, options.server.duration_s, next_piece,
      [&](const std::string& piece) { udp.send(piece); }, stop_requested);
  return 0;
}

// What clients sent the receiver, when they sent anything.
void print_received(const sim_rtcm_input_t& input) {
  const auto& s = input.stats();
  if (s.bytes() == 0) return;
  std::printf("korvid-sim: received %llu bytes, %llu RTCM frames (%llu bad)\n",
              static_cast<unsigned long long>(s.bytes()), static_cast<unsigned long long>(s.frames()),
              static_cast<unsigned long long>(s.bad_frames()));
}

// A correction stream for a caster or a test: one epoch a second from the loop's centre.
int write_rtcm(const sim_options_t& options) {
  constexpr double default_epochs = 10;
  const auto epochs =
      static_cast<std::uint32_t>(options.server.duration_s > 0 ? options.server.duration_s : default_epochs);
  rtcm_base_t base;
  base.lat = options.receiver.lat;
  base.lon = options.receiver.lon;
  rtcm_encoder_t encoder(base, options.receiver.seed);
  std::ofstream out(options.rtcm_file, std::ios::binary);
  std::size_t bytes = 0;
  for (std::uint32_t i = 0; i < epochs && out; ++i) {
    const auto epoch = encoder.epoch(i * 1000);
    out.write(epoch.data(), static_cast<std::streamsize>(epoch.size()));
    bytes += epoch.size();
  }
  if (!out) return fail("cannot write '" + options.rtcm_file + "'");
  std::printf("korvid-sim: wrote %u RTCM epochs (%zu bytes) to %s\n", epochs, bytes, options.rtcm_file.c_str());
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  const std::vector<std::string_view> args(argv + 1, argv + argc);
  const auto parsed = parse_sim(args);
  if (!parsed.options) return fail(parsed.error);
  auto options = *parsed.options;
  if (options.help) {
    std::fputs(sim_usage, stdout);
    return 0;
  }
  options.receiver.start_utc_s = static_cast<std::int64_t>(std::time(nullptr));
  if (!options.rtcm_file.empty()) return write_rtcm(options);

  std::string capture;
  if (!options.replay_file.empty()) {
    std::ifstream in(options.replay_file, std::ios::binary);
    if (!in) return fail("cannot read '" + options.replay_file + "'");
    capture.assign(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
  }
  capture_lines_t lines(capture);
  const bool replay = !options.replay_file.empty();
  if (replay && lines.empty()) return fail("'" + options.replay_file + "' is empty");

  sim_engine_t engine(options.receiver);
  const std::function<std::string()> next_piece = [&] { return replay ? lines.next() : engine.next_epoch(); };
  std::signal(SIGINT, request_stop);
  std::signal(SIGTERM, request_stop);
  // The receiver's configuration port: a new measurement period paces the stream and the epochs.
  sim_server_t server(options.server);
  double pty_period_s = options.server.period_s;
  sim_receiver_t receiver(options.server.period_s, options.receiver.ubx, [&](double period_s) {
    engine.set_epoch_s(period_s);
    server.set_period_s(period_s);
    pty_period_s = period_s;
  });
  std::vector<sim_input_t*> inputs;
  if (!options.ignore_commands) inputs.push_back(&receiver);
  if (options.pty || !options.udp_host.empty()) {
    const int status = options.pty ? serve_pty(options, next_piece, pty_period_s, inputs.empty() ? nullptr : inputs[0])
                                   : send_udp(options, next_piece);
    if (status == 0) print_counts(nullptr, replay ? &lines : nullptr, engine.counts());
    return status;
  }

  if (!server.listen()) {
    std::fprintf(stderr, "korvid-sim: cannot listen on 127.0.0.1:%u: %s\n", options.server.port, std::strerror(errno));
    return 1;
  }
  std::printf("korvid-sim: serving on 127.0.0.1:%u\n", server.port());
  std::fflush(stdout);
  sim_rtcm_input_t rtcm(engine);
  inputs.push_back(&rtcm);
  server.run(next_piece, stop_requested, inputs);
  print_counts(&server, replay ? &lines : nullptr, engine.counts());
  print_received(rtcm);
  return 0;
}

#include "app/sim_options.h"

#include <cstdint>

#include "core/termios_speed.h"
#include "nmea/fields.h"
#include "sim/sim_sky.h"

const char* const sim_usage =
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
    "  --gnss LIST            a multi-GNSS receiver of these systems (gps,glo,gal,bds,qzss): NMEA 4.11\n"
    "                         talkers with system and signal ids; with --ubx also NAV-SAT, NAV-SIG and\n"
    "                         NAV-DOP frames once a second\n"
    "  --bad-checksum-rate P  share of sentences (or frames) sent with a wrong checksum, 0 to 1\n"
    "  --garbage-rate P       share of sentences followed by a line of junk (or frames by junk bytes), 0 to 1\n"
    "  --drop-after S         close each connection S seconds after it was made\n"
    "  --replay FILE          serve a capture line by line instead\n"
    "  --pty                  serve on a new pseudo-terminal instead of TCP, as a serial receiver\n"
    "  --baud N               with --pty: answer only when the terminal is set to N baud\n"
    "  --udp HOST:PORT        send each epoch as a datagram to HOST:PORT instead of serving TCP\n"
    "  --duration S           stop after S seconds (default: at Ctrl-C or SIGTERM)\n"
    "  --rtk                  the fix goes to RTK float, then fixed, while clients send RTCM 3\n"
    "                         corrections, and back when they stop for 10 s\n"
    "  --rtcm-out FILE        write an RTCM 3 correction stream (1005, 1077, 1087, 1097, 1127, 1230\n"
    "                         each epoch) of --duration epochs (default 10) to FILE and stop\n"
    "  --ignore-commands      answer no command a client sends (no ACK, no MON-VER)\n";

namespace {

// A number within [low, high]; a missing value reads as no number.
bool parse_number(std::string_view text, double low, double high, double& out) {
  const auto v = parse_double(text);
  if (!v || !(*v >= low && *v <= high)) return false;
  out = *v;
  return true;
}

// "127.0.0.1:10110" or "[::1]:10110": the host without brackets, and a port above 0.
bool parse_host_port(std::string_view text, std::string& host, std::uint16_t& port) {
  const auto colon = text.rfind(':');
  if (colon == std::string_view::npos) return false;
  auto name = text.substr(0, colon);
  if (name.size() >= 2 && name.front() == '[' && name.back() == ']') name = name.substr(1, name.size() - 2);
  const auto number = parse_unsigned(text.substr(colon + 1), 65535);
  if (name.empty() || !number || *number == 0) return false;
  host = std::string(name);
  port = static_cast<std::uint16_t>(*number);
  return true;
}

}  // namespace

sim_parse_t parse_sim(std::span<const std::string_view> args) {
  sim_options_t options;
  double rate_hz = 1.0;
  auto fail = [](std::string message) { return sim_parse_t{std::nullopt, std::move(message)}; };

  for (std::size_t i = 0; i < args.size(); ++i) {
    const auto arg = args[i];
    const auto value = [&] { return i + 1 < args.size() ? args[++i] : std::string_view(); };
    const auto number = [&](double low, double high, double& out) { return parse_number(value(), low, high, out); };
    double v = 0;
    if (arg == "--help" || arg == "-h") {
      options.help = true;
      return {options, {}};
    } else if (arg == "--port") {
      if (!number(0, 65535, v) || v != static_cast<int>(v)) return fail("--port takes a port number 0 to 65535");
      options.server.port = static_cast<std::uint16_t>(v);
    } else if (arg == "--rate") {
      if (!number(0.01, 1000, rate_hz)) return fail("--rate takes a number of epochs per second, 0.01 to 1000");
    } else if (arg == "--lat") {
      if (!number(-89.9, 89.9, options.receiver.lat)) return fail("--lat takes degrees, -89.9 to 89.9");
    } else if (arg == "--lon") {
      if (!number(-180, 180, options.receiver.lon)) return fail("--lon takes degrees, -180 to 180");
    } else if (arg == "--speed") {
      if (!number(0, 100, options.receiver.speed_mps)) return fail("--speed takes metres per second, 0 to 100");
    } else if (arg == "--seed") {
      const auto seed = parse_unsigned(value(), UINT64_MAX);
      if (!seed) return fail("--seed takes a whole number");
      options.receiver.seed = *seed;
    } else if (arg == "--ubx") {
      options.receiver.ubx = true;
    } else if (arg == "--gnss") {
      const auto systems = parse_gnss_list(value());
      if (!systems) return fail("--gnss takes a list of gps, glo, gal, bds and qzss");
      options.receiver.gnss = *systems;
    } else if (arg == "--bad-checksum-rate") {
      if (!number(0, 1, options.receiver.bad_checksum_rate))
        return fail("--bad-checksum-rate takes a share from 0 to 1");
    } else if (arg == "--garbage-rate") {
      if (!number(0, 1, options.receiver.garbage_rate)) return fail("--garbage-rate takes a share from 0 to 1");
    } else if (arg == "--drop-after") {
      if (!number(0.01, 1e9, options.server.drop_after_s))
        return fail("--drop-after takes a positive number of seconds");
    } else if (arg == "--duration") {
      if (!number(0.01, 1e9, options.server.duration_s)) return fail("--duration takes a positive number of seconds");
    } else if (arg == "--replay") {
      options.replay_file = std::string(value());
      if (options.replay_file.empty()) return fail("--replay needs a file name");
    } else if (arg == "--pty") {
      options.pty = true;
    } else if (arg == "--baud") {
      const auto baud = parse_unsigned(value(), UINT32_MAX);
      if (!baud || !termios_speed(static_cast<std::uint32_t>(*baud)))
        return fail("--baud takes one of 4800, 9600, 19200, 38400, 57600, 115200, 230400, 460800");
      options.baud = static_cast<std::uint32_t>(*baud);
    } else if (arg == "--udp") {
      if (!parse_host_port(value(), options.udp_host, options.udp_port))
        return fail("--udp takes HOST:PORT, an IPv4 address or a bracketed IPv6 one");
    } else if (arg == "--rtk") {
      options.receiver.rtk = true;
    } else if (arg == "--rtcm-out") {
      options.rtcm_file = std::string(value());
      if (options.rtcm_file.empty()) return fail("--rtcm-out needs a file name");
    } else if (arg == "--ignore-commands") {
      options.ignore_commands = true;
    } else {
      return fail("unknown option '" + std::string(arg) + "'");
    }
  }
  if (options.pty && !options.udp_host.empty()) return fail("--pty and --udp exclude each other");
  if (options.baud != 0 && !options.pty) return fail("--baud needs --pty");
  options.server.period_s = 1.0 / rate_hz;
  options.receiver.epoch_s = options.server.period_s;
  return {options, {}};
}

#include "app/cli_options.h"

#include "command/typed_command.h"
#include "link/host_address.h"
#include "link/replay.h"
#include "nmea/fields.h"

const char* const cli_usage =
    "Usage: korvid-cli --replay FILE [--chunk N] [--json] [--show-all]\n"
    "       korvid-cli --connect ADDRESS|saved [--settings FILE] [--duration S]\n"
    "                  [--interval S] [--json] [--show-all] [--send CMD]... [--read-only]\n"
    "                  [--serve :PORT [--allow-client-writes]]\n"
    "       korvid-cli --bridge --connect ble://NAME|serial://PATH --connect tcp://HOST:PORT [...]\n"
    "\n"
    "Runs Korvid's receive path and decoders without a window.\n"
    "\n"
    "  --replay FILE   feed a capture through the receive path of a connected TCP link\n"
    "                  (\"-\" reads standard input)\n"
    "  --chunk N       replay in chunks of N bytes, 1 to 65536 (default 2047)\n"
    "  --connect tcp://HOST:PORT\n"
    "                  connect to a receiver; HOST is an IPv4 address such as 127.0.0.1, a host\n"
    "                  name or an IPv6 address in brackets such as [::1];\n"
    "                  a lost or refused link is retried every 4 s\n"
    "  --connect ble://NAME\n"
    "                  connect to the Bluetooth LE peripheral advertising NAME (Nordic UART Service)\n"
    "  --connect serial:///dev/ttyACM0[?baud=N]\n"
    "                  read a receiver on a serial or USB port; without a rate it is detected\n"
    "  --connect udp://:PORT\n"
    "                  read the datagrams sent to a local port (IPv4 and IPv6)\n"
    "  --connect gpsd://HOST[:PORT][?raw]\n"
    "                  read what a gpsd daemon relays (port 2947): NMEA, or with ?raw every byte\n"
    "  --bridge        with a tcp:// and one other connection: open both and forward the bytes\n"
    "                  received on either to the other (a BLE-to-TCP relay, corrections to a\n"
    "                  receiver on a serial port)\n"
    "  --connect saved connect as the saved settings say (the host and port, the name, or both)\n"
    "  --settings FILE use this INI file instead of the user's settings\n"
    "  --duration S    stop after S seconds (default: at Ctrl-C or SIGTERM)\n"
    "  --interval S    with --json, seconds between snapshots (default 1)\n"
    "  --json          print the state as one JSON object per line; the last one at the end\n"
    "  --show-all      log every valid sentence, not only GGA\n"
    "  --corrections ntrip://[USER[:PASS]@]HOST[:PORT]/MOUNT\n"
    "                  stream an NTRIP mountpoint's corrections to the receiver (port 2101)\n"
    "  --gga           with --corrections: send the receiver's position every 10 s (a network\n"
    "                  mountpoint)\n"
    "  --sourcetable ntrip://HOST[:PORT]\n"
    "                  print the caster's mountpoints, nearest first once a fix is known, and exit\n"
    "  --record FILE   write every received byte to FILE exactly as it came\n"
    "  --record-rotate SIZE|HOURS\n"
    "                  with --record: start a new file after SIZE bytes (100M, 512K, 2G) or on\n"
    "                  each whole HOURS of UTC (1h); the names carry the UTC start time\n"
    "  --speed X       with --replay: play at the receiver's own pace times X (0.5, 1, 2, 10, ...),\n"
    "                  or \"max\", as fast as the epochs can be delivered\n"
    "  --gpx FILE      when the run ends, write the session's track and markers as GPX 1.1\n"
    "  --geojson FILE  the same as GeoJSON (one LineString, the markers as Points)\n"
    "  --send CMD      send a command to the receiver once the link is up (repeatable, in order):\n"
    "                  $SENTENCE (checksum added), ubx:CLASS,ID,PAYLOADHEX, hex:BYTES,\n"
    "                  set:KEY=VALUE, get:KEY, del:KEY, rate:MS, msg:CLASS,ID,RATE\n"
    "  --read-only     send the receiver nothing, whatever else asks to\n"
    "  --serve :PORT   share every received byte with TCP clients on PORT (0: a free one)\n"
    "  --allow-client-writes\n"
    "                  with --serve: pass what the clients send on to the receiver\n"
    "  --help          show this text\n";

namespace {

bool parse_seconds(std::string_view text, double& seconds) {
  const auto v = parse_double(text);
  if (!v || !(*v > 0.0) || *v > cli_max_seconds) return false;
  seconds = *v;
  return true;
}

}  // namespace

cli_parse_t parse_cli(std::span<const std::string_view> args) {
  cli_options_t options;
  options.chunk = replay_default_chunk;
  auto fail = [](std::string message) { return cli_parse_t{std::nullopt, std::move(message)}; };

  for (std::size_t i = 0; i < args.size(); ++i) {
    const auto arg = args[i];
    auto next = [&](std::string_view& out) {
      if (i + 1 >= args.size()) return false;
      out = args[++i];
      return true;
    };
    std::string_view value;
    if (arg == "--help" || arg == "-h") {
      options.help = true;
    } else if (arg == "--json") {
      options.json = true;
    } else if (arg == "--show-all") {
      options.show_all = true;
    } else if (arg == "--replay") {
      if (!next(value)) return fail("--replay needs a file name");
      options.replay_file = std::string(value);
    } else if (arg == "--connect") {
      if (!next(value)) return fail("--connect needs tcp://HOST:PORT");
      constexpr std::string_view ble_scheme = "ble://";
      if (value == "saved") {
        options.connect_saved = true;
      } else if (is_source_url(value)) {
        const auto source = parse_source_url(value);
        if (!source.address) return fail("--connect " + source.error);
        options.source = source.address;
      } else if (value.substr(0, ble_scheme.size()) == ble_scheme) {
        options.ble_name = std::string(value.substr(ble_scheme.size()));
        if (options.ble_name.empty()) return fail("--connect ble://NAME needs the peripheral's name");
      } else {
        const auto tcp = parse_tcp_url(value);
        if (!tcp.address) return fail("--connect " + tcp.error);
        options.host = tcp.address->host;
        options.port = tcp.address->port;
      }
    } else if (arg == "--bridge") {
      options.bridge = true;
    } else if (arg == "--settings") {
      if (!next(value)) return fail("--settings needs a file name");
      options.settings_file = std::string(value);
    } else if (arg == "--duration" || arg == "--interval") {
      if (!next(value)) return fail(std::string(arg) + " needs a number of seconds");
      if (!parse_seconds(value, arg == "--duration" ? options.duration_s : options.interval_s))
        return fail(std::string(arg) + " must be a positive number of seconds up to 2147483, not '" +
                    std::string(value) + "'");
    } else if (arg == "--chunk") {
      if (!next(value)) return fail("--chunk needs a number of bytes");
      const auto n = parse_unsigned(value, cli_max_chunk);
      if (!n || *n < 1) return fail("--chunk must be a whole number from 1 to 65536, not '" + std::string(value) + "'");
      options.chunk = static_cast<std::size_t>(*n);
    } else if (arg == "--corrections" || arg == "--sourcetable") {
      const bool stream = arg == "--corrections";
      if (!next(value)) return fail(std::string(arg) + " needs an ntrip:// address");
      const auto ntrip = parse_ntrip_url(value, stream);
      if (!ntrip.address) return fail(std::string(arg) + " " + ntrip.error);
      (stream ? options.corrections : options.sourcetable) = ntrip.address;
    } else if (arg == "--gga") {
      options.gga = true;
    } else if (arg == "--record") {
      if (!next(value)) return fail("--record needs a file name");
      options.record_file = std::string(value);
    } else if (arg == "--record-rotate") {
      if (!next(value)) return fail("--record-rotate needs a size or a number of hours");
      const auto rotation = parse_record_rotation(value);
      if (!rotation)
        return fail("--record-rotate takes a size such as 100M or hours such as 1h, not '" + std::string(value) + "'");
      options.record_rotate = *rotation;
    } else if (arg == "--speed") {
      if (!next(value)) return fail("--speed needs a number or max");
      const auto speed = value == "max" ? std::optional<double>(0.0) : parse_double(value);
      if (!speed || !(*speed >= 0.0) || *speed > cli_max_speed || (*speed == 0.0 && value != "max"))
        return fail("--speed takes a number above 0 up to 1000 or max, not '" + std::string(value) + "'");
      options.speed = speed;
    } else if (arg == "--gpx" || arg == "--geojson") {
      if (!next(value)) return fail(std::string(arg) + " needs a file name");
      (arg == "--gpx" ? options.gpx_file : options.geojson_file) = std::string(value);
    } else if (arg == "--send") {
      if (!next(value)) return fail("--send needs a command");
      if (const auto typed = parse_typed_command(value); !typed.command) return fail("--send " + typed.error);
      options.sends.emplace_back(value);
    } else if (arg == "--read-only") {
      options.read_only = true;
    } else if (arg == "--serve") {
      const auto port = next(value) && value.starts_with(':') ? parse_unsigned(value.substr(1), 65535) : std::nullopt;
      if (!port) return fail("--serve takes :PORT, a port from 0 to 65535");
      options.serve = true;
      options.serve_port = static_cast<std::uint16_t>(*port);
    } else if (arg == "--allow-client-writes") {
      options.allow_client_writes = true;
    } else {
      return fail("unknown option '" + std::string(arg) + "'");
    }
  }
  if (options.help) return {options, {}};
  const bool tcp = !options.host.empty(), ble = !options.ble_name.empty(), source = options.source.has_value();
  const int links = int{tcp} + int{ble} + int{source};
  if (options.bridge ? !(tcp && links == 2) : links > 1)
    return fail("--bridge goes with one tcp:// and one ble://, serial://, udp:// or gpsd:// connection");
  if (options.connect_saved && (tcp || ble || source)) return fail("--connect saved stands alone");
  if (options.gga && !options.corrections) return fail("--gga goes with --corrections");
  if (options.sourcetable && (tcp || ble || source || options.connect_saved || options.corrections))
    return fail("--sourcetable stands alone");
  const bool connect = tcp || ble || source || options.connect_saved || options.corrections || options.sourcetable;
  if (!options.replay_file.empty() && connect) return fail("give either --replay or --connect, not both");
  if (options.record_rotate.rotates() && options.record_file.empty()) return fail("--record-rotate goes with --record");
  if (options.speed && (options.replay_file.empty() || options.replay_file == "-"))
    return fail("--speed goes with --replay FILE, a capture file");
  if (!connect && (!options.sends.empty() || options.serve)) return fail("--send and --serve need a --connect");
  if (options.allow_client_writes && !options.serve) return fail("--allow-client-writes needs --serve");
  if (options.replay_file.empty() && !connect)
    return fail("nothing to do: give --replay FILE or --connect tcp://HOST:PORT");
  return {options, {}};
}

#include <QCoreApplication>
#include <QTimer>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "app/cli_options.h"
#include "app/corrections_output.h"
#include "app/program_links.h"
#include "app/radio_lines.h"
#include "app/snapshot_json.h"
#include "app/stop_signals.h"
#include "core/console.h"
#include "link/config_connection.h"
#include "link/connect_action.h"
#include "link/connection.h"
#include "link/offline_links.h"
#include "link/receiver_console.h"
#include "link/replay.h"
#include "link/stream_server.h"
#include "link/tcp_client.h"
#include "ntrip/corrections.h"
#include "platform/qsettings_store.h"
#include "platform/qt_main_queue.h"
#include "platform/track_export.h"
#include "session/capture_player.h"
#include "session/recorder.h"
#include "session/track_store.h"

namespace {

constexpr int usage_error = 2;  // exit status for a bad command line

void print_summary(const connection_t& hub) {
  std::printf("messages %llu, good %llu, acknowledged %s, binary %s", static_cast<unsigned long long>(hub.msg_count),
              static_cast<unsigned long long>(hub.msg_good), hub.msg_ack ? "yes" : "no", hub.binary() ? "yes" : "no");
  if (const auto crc = hub.crc_error_text(); !crc.empty()) std::printf(", bad %s", crc.c_str());
  std::printf("\n");
  for (std::size_t i = 0; i < hub.arr_rx->size(); ++i) std::printf("  %s\n", (*hub.arr_rx)[i].c_str());
}

void print_result(const connection_t& hub, bool json, const corrections_t* corrections = nullptr) {
  if (json) {
    std::printf("%s\n", snapshot_json(hub, corrections).c_str());
  } else {
    print_summary(hub);
    if (corrections && corrections->asked()) std::fputs(corrections_summary(*corrections).c_str(), stdout);
  }
  std::fflush(stdout);
}

int replay(const cli_options_t& options, connection_t& hub) {
  // Read in chunks, so a capture of any size replays in constant memory.
  std::FILE* stream = options.replay_file == "-" ? stdin : std::fopen(options.replay_file.c_str(), "rb");
  const bool read = stream && replay_stream(stream, options.chunk, hub.tcp_events());
  if (stream && stream != stdin) std::fclose(stream);
  if (!read) {
    std::fprintf(stderr, "korvid-cli: cannot read '%s'\n", options.replay_file.c_str());
    return usage_error;
  }
  print_result(hub, options.json);
  return 0;
}

// Prints the caster's source table once it has come, or why it did not, and quits.
int run_sourcetable(const cli_options_t& options, QCoreApplication& app, corrections_t& corrections) {
  stop_signal_watch_t stop_watch(app);
  // A notice comes before the change: the table is read on the next turn.
  const auto watch = corrections.subscribe([&] {
    QTimer::singleShot(0, &app, [&] {
      if (!corrections.table_pending()) app.quit();
    });
  });
  corrections.fetch_table(*options.sourcetable);
  if (options.duration_s > 0)
    QTimer::singleShot(static_cast<int>(options.duration_s * 1000), Qt::PreciseTimer, &app, &QCoreApplication::quit);
  app.exec();
  std::fputs(source_table_text(corrections.table).c_str(), stdout);
  std::printf("%s\n", corrections.table_status.get().c_str());
  return corrections.table->empty() ? 1 : 0;
}

// A replay that exports a track delivers epoch by epoch, so that the track holds every one: as fast
// as possible unless a speed is given. Otherwise it takes the plain replay path.
bool paces(const cli_options_t& options) {
  const bool exports = !options.gpx_file.empty() || !options.geojson_file.empty();
  return options.speed || (exports && options.replay_file != "-");
}

// The capture at the receiver's own pace, through the hub as a link of its own; ends at its end.
int paced_replay(const cli_options_t& options, QCoreApplication& app, main_queue_t& queue, connection_t& hub) {
  stop_signal_watch_t stop_watch(app);
  capture_player_t player(queue, hub.source_events(), [&hub] { hub.reset(); });
  if (!player.open(options.replay_file)) {
    std::fprintf(stderr, "korvid-cli: cannot read '%s'\n", options.replay_file.c_str());
    return usage_error;
  }
  const auto at_end = player.subscribe([&player, &app] {
    if (player.ended()) QTimer::singleShot(0, &app, &QCoreApplication::quit);
  });
  QTimer snapshots;
  if (options.json) {
    QObject::connect(&snapshots, &QTimer::timeout, &app, [&hub] { print_result(hub, true); });
    snapshots.start(static_cast<int>(options.interval_s * 1000));
  }
  player.set_speed(options.speed.value_or(capture_player_t::max_speed));
  player.play();
  if (!player.ended()) app.exec();
  print_result(hub, options.json);
  return 0;
}

// The console for --send and --read-only: the commands go in order once a link is up, after a
// MON-VER poll, and each answer is a dated line. Without either nothing is sent at all.
std::unique_ptr<receiver_console_t> start_commands(const cli_options_t& options, connection_t& hub, main_queue_t& queue,
                                                   console_t& console) {
  if (options.sends.empty() && !options.read_only) return nullptr;
  auto commands = std::make_unique<receiver_console_t>(hub, queue, console);
  commands->set_read_only(options.read_only);
  for (const auto& typed : options.sends) commands->send(typed);
  return commands;
}

// --serve: the received bytes for TCP clients; theirs go to the receiver only when allowed.
std::unique_ptr<stream_server_t> start_sharing(const cli_options_t& options, connection_t& hub, main_queue_t& queue,
                                               console_t& console) {
  if (!options.serve) return nullptr;
  const bool writes = options.allow_client_writes && !options.read_only;
  auto server = std::make_unique<stream_server_t>(
      queue, console, [&hub](std::span<const std::uint8_t> bytes) { hub.send_to_receiver(bytes); });
  if (!server->listen(options.serve_port)) {
    console.print(console.date() + "  share: cannot listen on port " + std::to_string(options.serve_port) + ": " +
                  std::strerror(errno));
    return nullptr;
  }
  server->set_allow_writes(writes);
  hub.add_tap(*server);
  console.print(console.date() + "  sharing the stream on port " + std::to_string(server->port()) +
                (writes ? ", clients may write to the receiver" : ""));
  return server;
}

int run_connected(const cli_options_t& options, QCoreApplication& app, main_queue_t& queue, connection_t& hub,
                  console_t& console, corrections_t& corrections) {
  stop_signal_watch_t stop_watch(app);
  const radio_lines_t radio_lines(hub, queue, console);
  QTimer snapshots;
  if (options.json) {
    QObject::connect(&snapshots, &QTimer::timeout, &app,
                     [&hub, &corrections] { print_result(hub, true, &corrections); });
    snapshots.start(static_cast<int>(options.interval_s * 1000));
  }
  // A precise timer: a coarse one may end a long run up to 5 % early.
  if (options.duration_s > 0)
    QTimer::singleShot(static_cast<int>(options.duration_s * 1000), Qt::PreciseTimer, &app, &QCoreApplication::quit);

  const auto commands = start_commands(options, hub, queue, console);
  const auto sharing = start_sharing(options, hub, queue, console);
  std::unique_ptr<qsettings_store_t> store;
  std::unique_ptr<config_connection_t> settings;
  if (options.connect_saved) {
    store = options.settings_file.empty()
                ? std::make_unique<qsettings_store_t>()
                : std::make_unique<qsettings_store_t>(QString::fromStdString(options.settings_file));
    settings = std::make_unique<config_connection_t>(*store, console);
    connect_or_disconnect(*settings, hub);
  } else {
    if (!options.ble_name.empty()) hub.connect_ble(options.ble_name);
    if (options.source) hub.connect_source(*options.source);
    if (!options.host.empty()) hub.connect_tcp(options.host, options.port);
  }
  if (options.corrections) corrections.connect(*options.corrections, options.gga);
  app.exec();
  if (sharing) hub.remove_tap(*sharing);
  print_result(hub, options.json, &corrections);
  return 0;
}

// For as long as this lives, the stream as received goes to the file given with --record and the
// epochs' fixes to the track that --gpx and --geojson write when it ends.
class cli_recording_t {
public:
  cli_recording_t(const cli_options_t& options, connection_t& hub, main_queue_t& queue, console_t& console)
      : options_(options), hub_(hub), recorder_(queue, console), track_(hub) {
    if (!options.gpx_file.empty() || !options.geojson_file.empty()) hub_.add_tap(track_);
    if (options.record_file.empty()) return;
    hub_.add_tap(recorder_);
    recorder_.start(options.record_file, options.record_rotate);
  }
  ~cli_recording_t() {
    hub_.remove_tap(recorder_);
    hub_.remove_tap(track_);
    recorder_.stop();
  }
  cli_recording_t(const cli_recording_t&) = delete;
  cli_recording_t& operator=(const cli_recording_t&) = delete;

  // False, having said why, when a track file could not be written.
  bool export_track() {
    track_.sample();
    bool written = true;
    for (const auto& path : {options_.gpx_file, options_.geojson_file}) {
      if (path.empty()) continue;
      const auto problem = ::export_track(QString::fromStdString(path), track_, hub_.gga.map_annotations);
      if (problem.isEmpty()) continue;
      std::fprintf(stderr, "korvid-cli: cannot write '%s': %s\n", path.c_str(), problem.toLocal8Bit().constData());
      written = false;
    }
    return written;
  }

private:
  const cli_options_t& options_;
  connection_t& hub_;
  recorder_t recorder_;
  track_store_t track_;
};

}  // namespace

int main(int argc, char** argv) {
  std::vector<std::string_view> args(argv + 1, argv + argc);
  const auto parsed = parse_cli(args);
  if (!parsed.options) {
    std::fprintf(stderr, "korvid-cli: %s (see --help)\n", parsed.error.c_str());
    return usage_error;
  }
  const auto& options = *parsed.options;
  if (options.help) {
    std::fputs(cli_usage, stdout);
    return 0;
  }
  if (!options.replay_file.empty() && options.replay_file != "-" &&
      !std::ifstream(options.replay_file, std::ios::binary)) {
    std::fprintf(stderr, "korvid-cli: cannot read '%s'\n", options.replay_file.c_str());
    return usage_error;
  }

  if (!options.settings_file.empty()) {
    if (const auto problem = qsettings_store_t::ini_file_problem(QString::fromStdString(options.settings_file));
        !problem.empty()) {
      std::fprintf(stderr, "korvid-cli: --settings: %s\n", problem.c_str());
      return usage_error;
    }
  }

  QCoreApplication app(argc, argv);
  qt_main_queue_t queue(&app);
  stdout_console_t console;
  // A replay is a receive path, not a link: it opens no transport.
  program_links_t program_links(queue, console);
  offline_links_t replay_links;
  link_factory_t& links = options.replay_file.empty() ? static_cast<link_factory_t&>(program_links) : replay_links;
  connection_t hub(queue, console, links);
  hub.show_all = options.show_all;
  // Destroyed after the queue closes, as the hub's links are: its TCP threads may be waiting on it.
  corrections_t corrections(hub, queue, console, [&queue, &console](link_events_t& events) {
    return std::make_unique<tcp_client_t>(events, queue, console);
  });
  std::optional<cli_recording_t> recording(std::in_place, options, hub, queue, console);

  int status = 0;
  if (!options.replay_file.empty()) {
    status = paces(options) ? paced_replay(options, app, queue, hub) : replay(options, hub);
  } else {
    status = options.sourcetable ? run_sourcetable(options, app, corrections)
                                 : run_connected(options, app, queue, hub, console, corrections);
  }
  const bool exported = recording->export_track();
  recording.reset();
  // Threads waiting for the main thread give up from here on; then the links are closed.
  queue.close();
  if (options.replay_file.empty()) hub.disconnect();
  corrections.disconnect();
  return status == 0 && !exported ? 1 : status;
}

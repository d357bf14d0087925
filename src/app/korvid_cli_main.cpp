#include <QCoreApplication>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <string>
#include <string_view>
#include <vector>

#include "app/cli_options.h"
#include "link/offline_links.h"
#include "app/snapshot_json.h"
#include "core/console.h"
#include "link/connection.h"
#include "link/replay.h"
#include "platform/qt_main_queue.h"

namespace {

constexpr int usage_error = 2;  // exit status for a bad command line

void print_summary(const connection_t& hub) {
  std::printf("messages %llu, good %llu, acknowledged %s, binary %s", static_cast<unsigned long long>(hub.msg_count),
              static_cast<unsigned long long>(hub.msg_good), hub.msg_ack ? "yes" : "no", hub.binary ? "yes" : "no");
  if (const auto crc = hub.crc_error_text(); !crc.empty()) std::printf(", bad %s", crc.c_str());
  std::printf("\n");
  for (std::size_t i = 0; i < hub.arr_rx->size(); ++i) std::printf("  %s\n", (*hub.arr_rx)[i].c_str());
}

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

  std::ifstream file(options.replay_file, std::ios::binary);
  if (!file) {
    std::fprintf(stderr, "korvid-cli: cannot read '%s'\n", options.replay_file.c_str());
    return usage_error;
  }
  const std::vector<std::uint8_t> capture((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
  if (file.bad()) {
    std::fprintf(stderr, "korvid-cli: cannot read '%s'\n", options.replay_file.c_str());
    return usage_error;
  }

  QCoreApplication app(argc, argv);
  qt_main_queue_t queue(&app);
  stdout_console_t console;
  offline_links_t links;
  connection_t hub(queue, console, links);
  hub.show_all = options.show_all;

  replay_chunks(capture, options.chunk, hub);

  if (options.json) {
    std::printf("%s\n", snapshot_json(hub).c_str());
  } else {
    print_summary(hub);
  }
  queue.close();
  return 0;
}

#include "app/cli_options.h"

#include "link/replay.h"
#include "nmea/fields.h"

const char* const cli_usage =
    "Usage: korvid-cli --replay FILE [--chunk N] [--json] [--show-all]\n"
    "\n"
    "Runs Korvid's receive path and decoders without a window.\n"
    "\n"
    "  --replay FILE   feed a capture through the receive path of a connected TCP link\n"
    "  --chunk N       replay in chunks of N bytes, 1 to 65536 (default 2047)\n"
    "  --json          print the state as one JSON object per line; the last one at the end\n"
    "  --show-all      log every valid sentence, not only GGA\n"
    "  --help          show this text\n";

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
    } else if (arg == "--chunk") {
      if (!next(value)) return fail("--chunk needs a number of bytes");
      const auto n = parse_unsigned(value, cli_max_chunk);
      if (!n || *n < 1) return fail("--chunk must be a whole number from 1 to 65536, not '" + std::string(value) + "'");
      options.chunk = static_cast<std::size_t>(*n);
    } else {
      return fail("unknown option '" + std::string(arg) + "'");
    }
  }
  if (!options.help && options.replay_file.empty()) return fail("nothing to do: give --replay FILE");
  return {options, {}};
}

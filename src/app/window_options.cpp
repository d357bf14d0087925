#include "app/window_options.h"

#include <charconv>

#include "sim/sim_sky.h"

namespace {

bool read_double(std::string_view text, double& out) {
  const auto* end = text.data() + text.size();
  const auto r = std::from_chars(text.data(), end, out);
  return r.ec == std::errc() && r.ptr == end;
}

bool read_int(std::string_view text, int& out) {
  const auto* end = text.data() + text.size();
  const auto r = std::from_chars(text.data(), end, out);
  return r.ec == std::errc() && r.ptr == end;
}

std::optional<sheet_id_t> sheet_named(std::string_view name) {
  if (name == "log") return sheet_id_t::log;
  if (name == "details") return sheet_id_t::details;
  if (name == "settings") return sheet_id_t::settings;
  if (name == "sky") return sheet_id_t::sky;
  if (name == "console") return sheet_id_t::console;
  return std::nullopt;
}

}  // namespace

const char* const window_usage =
    "usage: korvid [--demo [--ubx] [--gnss LIST]] [--screenshot FILE [--after S]] [--size WxH]\n"
    "              [--sheet log|details|settings|sky|console] [--dark] [CAPTURE]\n"
    "  --demo             start the built-in receiver simulator on 127.0.0.1 and connect to it;\n"
    "                     nothing is saved to your settings\n"
    "  --ubx              the demo's receiver sends u-blox UBX frames instead of NMEA sentences\n"
    "  --gnss LIST        the demo's receiver tracks these systems (gps,glo,gal,bds,qzss)\n"
    "  --screenshot FILE  render the window to a PNG after --after seconds (default 3) and exit\n"
    "  --size WxH         the window's size (default 1100x760)\n"
    "  --sheet NAME       open the log, the satellites and details, the satellites of every system\n"
    "                     (sky), the connection settings, or the console (may be given more than once)\n"
    "  --dark             draw with a dark palette\n"
    "  --corrections ntrip://[USER[:PASS]@]HOST[:PORT]/MOUNT\n"
    "                     stream an NTRIP mountpoint's corrections to the receiver from the start\n"
    "  CAPTURE            play a recorded stream at the receiver's own pace, with the player bar\n"
    "Without a display korvid runs headless and prints a summary every second.\n";

window_parse_t parse_window(std::span<const std::string_view> args) {
  window_options_t o;
  for (std::size_t i = 0; i < args.size(); ++i) {
    const std::string_view a = args[i];
    auto value = [&](std::string_view& out) {
      if (i + 1 >= args.size()) return false;
      out = args[++i];
      return true;
    };
    std::string_view v;
    if (a == "--demo") {
      o.demo = true;
    } else if (a == "--ubx") {
      o.ubx = true;
    } else if (a == "--dark") {
      o.dark = true;
    } else if (a == "--help" || a == "-h") {
      o.help = true;
    } else if (a == "--screenshot") {
      if (!value(v) || v.empty()) return {{}, "--screenshot needs a file name"};
      o.screenshot = std::string(v);
    } else if (a == "--after") {
      if (!value(v) || !read_double(v, o.after_s) || !(o.after_s >= 0.0 && o.after_s <= 3600.0))
        return {{}, "--after needs seconds from 0 to 3600"};
    } else if (a == "--size") {
      const auto x = value(v) ? v.find('x') : std::string_view::npos;
      if (x == std::string_view::npos || !read_int(v.substr(0, x), o.width) || !read_int(v.substr(x + 1), o.height) ||
          o.width < 200 || o.height < 200 || o.width > 8192 || o.height > 8192)
        return {{}, "--size needs WIDTHxHEIGHT, each 200 to 8192"};
    } else if (a == "--sheet") {
      const auto sheet = value(v) ? sheet_named(v) : std::nullopt;
      if (!sheet) return {{}, "--sheet needs log, details, settings, sky or console"};
      o.sheets.push_back(*sheet);
    } else if (a == "--gnss") {
      const auto systems = value(v) ? parse_gnss_list(v) : std::nullopt;
      if (!systems) return {{}, "--gnss needs a list of gps, glo, gal, bds and qzss"};
      o.gnss = *systems;
    } else if (a == "--corrections") {
      const auto ntrip = value(v) ? parse_ntrip_url(v, true) : ntrip_address_parse_t{{}, "needs an ntrip:// address"};
      if (!ntrip.address) return {{}, "--corrections " + ntrip.error};
      o.corrections = ntrip.address;
    } else if (!a.empty() && a.front() != '-' && o.capture.empty()) {
      o.capture = std::string(a);
    } else {
      return {{}, "unknown argument '" + std::string(a) + "'"};
    }
  }
  if (!o.capture.empty() && o.demo) return {{}, "a capture plays without --demo"};
  if (o.ubx && !o.demo) return {{}, "--ubx goes with --demo"};
  if (o.gnss != 0 && !o.demo) return {{}, "--gnss goes with --demo"};
  return {o, {}};
}

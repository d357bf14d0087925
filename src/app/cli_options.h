#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "link/source_address.h"
#include "ntrip/ntrip_address.h"
#include "session/record_rotation.h"

// What korvid-cli was asked to do.
struct cli_options_t {
  std::string replay_file;
  std::string host;                        // --connect tcp://HOST:PORT
  std::string ble_name;                    // --connect ble://NAME
  std::optional<source_address_t> source;  // --connect serial://..., udp://... or gpsd://...
  bool bridge = false;                     // both links at once, bytes forwarded between them
  bool connect_saved = false;              // --connect saved: as the saved settings say
  std::string settings_file;               // an INI file instead of the user's settings
  std::uint16_t port = 0;
  double duration_s = 0;  // 0: until interrupted
  double interval_s = 1;  // between JSON snapshots
  std::size_t chunk = 0;  // replay chunk size in bytes
  bool json = false;
  bool show_all = false;
  bool help = false;
  std::optional<ntrip_address_t> corrections;  // --corrections ntrip://...: a mountpoint for the receiver
  bool gga = false;                            // --gga: send the receiver's position to the caster
  std::optional<ntrip_address_t> sourcetable;  // --sourcetable ntrip://HOST[:PORT]: print the table
  std::string record_file;                     // --record: the received stream goes to this file as it came
  record_rotation_t record_rotate;             // --record-rotate: a new file after so many bytes or hours
  std::optional<double> speed;     // --speed: replay at the receiver's pace times this; 0 as fast as possible
  std::string gpx_file;            // --gpx: the session's track as GPX 1.1 when the run ends
  std::string geojson_file;        // --geojson: the same as GeoJSON
  std::vector<std::string> sends;  // --send: commands for the receiver, in order, once a link is up
  bool read_only = false;          // send the receiver nothing
  bool serve = false;              // --serve :PORT: share the received bytes with TCP clients
  std::uint16_t serve_port = 0;    // 0: a free port, said on the console
  bool allow_client_writes = false;

  bool operator==(const cli_options_t&) const = default;
};

inline constexpr std::size_t cli_max_chunk = 65536;  // bytes
inline constexpr double cli_max_speed = 1000;        // times the receiver's pace
// s: the longest wait a timer of whole milliseconds in an int holds (about 24.8 days)
inline constexpr double cli_max_seconds = 2147483.0;

// Either the options or a one-line message naming what was wrong.
struct cli_parse_t {
  std::optional<cli_options_t> options;
  std::string error;
};

cli_parse_t parse_cli(std::span<const std::string_view> args);

extern const char* const cli_usage;

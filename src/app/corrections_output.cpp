#include "app/corrections_output.h"

#include <cmath>
#include <cstdio>
#include <limits>

#include "app/json_writer.h"

namespace {

constexpr double absent = std::numeric_limits<double>::quiet_NaN();  // written as null

void write_base(json_writer_t& w, const corrections_t& c) {
  w.key("base");
  const auto base = c.base();
  if (!base) {
    w.value(absent);
    return;
  }
  w.begin_object();
  w.put("station_id", static_cast<std::uint64_t>(c.stats().station()->id));
  w.put("lat", base->coordinate.latitude);
  w.put("lon", base->coordinate.longitude);
  w.put("height_m", base->height_m);
  w.put("distance_m", c.base_distance_m().value_or(absent));
  w.end_object();
}

}  // namespace

void write_corrections(json_writer_t& w, const corrections_t& c) {
  w.key("corrections");
  w.begin_object();
  w.put("address", c.address().text());
  w.put("status", c.status.get());
  w.put("enabled", c.enabled());
  w.put("bytes", c.stats().bytes());
  w.put("bytes_per_s", c.bytes_per_s());
  w.put("frames", c.stats().frames());
  w.put("bad_frames", c.stats().bad_frames());
  w.key("types");
  w.begin_array();
  for (const auto& [type, count] : c.stats().types()) {
    w.begin_object();
    w.put("type", static_cast<std::uint64_t>(type));
    w.put("count", count.count);
    w.put("interval_s", count.interval_s);
    w.end_object();
  }
  w.end_array();
  w.put("age_s", c.age_s().value_or(absent));
  w.put("stale", c.stale());
  write_base(w, c);
  w.put("rtk", rtk_text(c.rtk()));
  w.put("send_gga", c.send_gga());
  w.put("gga_sent", c.gga_sent());
  w.end_object();
}

std::string source_table_text(const std::vector<source_entry_t>& entries) {
  std::string out;
  for (const auto& e : entries) {
    char position[48];
    std::snprintf(position, sizeof position, "%.2f %.2f", e.position.latitude, e.position.longitude);
    out += e.mountpoint + "  " + e.identifier + "  " + entry_summary(e) + "  " + position + "\n";
  }
  return out;
}

std::string corrections_summary(const corrections_t& c) {
  char line[160];
  std::snprintf(line, sizeof line, "corrections %s: %llu bytes, %llu frames, %llu bad; %s\n",
                c.address().text().c_str(), static_cast<unsigned long long>(c.stats().bytes()),
                static_cast<unsigned long long>(c.stats().frames()),
                static_cast<unsigned long long>(c.stats().bad_frames()), c.rtk_status().c_str());
  std::string out = line;
  for (const auto& [type, count] : c.stats().types()) {
    std::snprintf(line, sizeof line, "  RTCM %u: %llu\n", static_cast<unsigned>(type),
                  static_cast<unsigned long long>(count.count));
    out += line;
  }
  return out;
}

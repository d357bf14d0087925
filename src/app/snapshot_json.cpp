#include "app/snapshot_json.h"

#include <iterator>

#include "app/corrections_output.h"
#include "app/json_writer.h"
#include "link/connection.h"

namespace {

void write_hub(json_writer_t& w, const connection_t& hub) {
  w.key("hub");
  w.begin_object();
  w.put("status_tcp", hub.status_tcp.get());
  w.put("status_ble", hub.status_ble.get());
  w.put("msg_count", hub.msg_count);
  w.put("msg_good", hub.msg_good);
  w.put("msg_ack", hub.msg_ack);
  w.put("msg_ack_count", hub.msg_ack_count);
  w.put("binary", hub.binary());
  w.put("show_all", hub.show_all.get());
  w.put("crc_error_text", hub.crc_error_text());
  w.key("arr_rx");
  w.begin_array();
  for (std::size_t i = 0; i < hub.arr_rx->size(); ++i) w.value((*hub.arr_rx)[i]);
  w.end_array();
  w.end_object();
}

// Only once a serial, UDP or gpsd link was asked for, so that other snapshots keep their sections.
void write_source(json_writer_t& w, const connection_t& hub) {
  if (!hub.source()) return;
  w.key("source");
  w.begin_object();
  w.put("address", hub.source()->address().text());
  w.put("status", hub.status_source.get());
  w.put("enabled", hub.source_enabled());
  w.put("valid", hub.source()->valid());
  w.end_object();
}

void write_time(json_writer_t& w, const time_hms_t& t) {
  w.key("time");
  w.begin_object();
  w.put("hh", t.hh);
  w.put("mm", t.mm);
  w.put("ss", t.ss);
  w.put("ms", t.ms);
  w.end_object();
}

void write_position(json_writer_t& w, double lat, double lon, std::string_view lat_dir, std::string_view lon_dir) {
  w.put("lat", lat);
  w.put("lon", lon);
  w.put("lat_dir", lat_dir);
  w.put("lon_dir", lon_dir);
}

void write_history(json_writer_t& w, std::string_view name, const motion_history_t& history) {
  w.key(name);
  w.begin_array();
  for (const double v : history) w.value(v);
  w.end_array();
}

void write_annotations(json_writer_t& w, const annotations_t& annotations) {
  w.key("map_annotations");
  w.begin_array();
  for (std::size_t i = 0; i < annotations.list().size(); ++i) {
    const auto& a = *annotations.list()[i];
    w.begin_object();
    w.put("title", a.title);
    w.put("lat", a.coordinate.latitude);
    w.put("lon", a.coordinate.longitude);
    w.end_object();
  }
  w.end_array();
}

void write_coordinates(json_writer_t& w, std::string_view name, const ring_t<geo_coordinate_t>& list) {
  w.key(name);
  w.begin_array();
  for (std::size_t i = 0; i < list.size(); ++i) {
    w.begin_array();
    w.value(list[i].latitude);
    w.value(list[i].longitude);
    w.end_array();
  }
  w.end_array();
}

void write_gga(json_writer_t& w, const gps_gngga_t& gga) {
  w.key("gga");
  w.begin_object();
  write_time(w, gga.time);
  write_position(w, gga.lat, gga.lon, gga.lat_dir, gga.lon_dir);
  w.put("fix_i", gga.fix_i);
  w.put("fix_text", gga.fix_text());
  w.put("sat_count_i", gga.sat_count_i);
  w.put("hdop_d", gga.hdop_d);
  w.put("alt_d", gga.alt_d);
  w.put("mean_sea_level_d", gga.mean_sea_level_d);
  w.put("pvt_mode", gga.pvt_mode);
  write_history(w, "direction_history", gga.direction_history);
  write_history(w, "magnitude_history", gga.magnitude_history);
  write_annotations(w, gga.map_annotations);
  w.key("map_path");
  w.begin_object();
  write_coordinates(w, "list", gga.map_path.list());
  write_coordinates(w, "history", gga.map_path.history());
  w.end_object();
  w.end_object();
}

void write_gll(json_writer_t& w, const gps_gngll_t& gll) {
  w.key("gll");
  w.begin_object();
  write_time(w, gll.time);
  write_position(w, gll.lat, gll.lon, gll.lat_dir, gll.lon_dir);
  w.put("data_status", gll.data_status);
  write_annotations(w, gll.map_annotations);
  w.end_object();
}

void write_rmc(json_writer_t& w, const gps_gnrmc_t& rmc) {
  w.key("rmc");
  w.begin_object();
  write_time(w, rmc.time);
  w.key("date");
  w.begin_object();
  w.put("y", rmc.date.y);
  w.put("m", rmc.date.m);
  w.put("d", rmc.date.d);
  w.end_object();
  w.put("lat", rmc.lat);
  w.put("lon", rmc.lon);
  w.put("speed_knots", rmc.speed_knots);
  w.put("track_angle", rmc.track_angle);
  w.put("magnetic_variation", rmc.magnetic_variation);
  w.put("lat_dir", rmc.lat_dir);
  w.put("lon_dir", rmc.lon_dir);
  w.put("data_status", rmc.data_status);
  write_annotations(w, rmc.map_annotations);
  w.end_object();
}

void write_vtg(json_writer_t& w, const gps_gnvtg_t& vtg) {
  w.key("vtg");
  w.begin_object();
  w.put("true_track_mode_deg", vtg.true_track_mode_deg);
  w.put("magnetic_track_mode_deg", vtg.magnetic_track_mode_deg);
  w.put("speed_knots", vtg.speed_knots);
  w.put("speed_kph", vtg.speed_kph);
  w.end_object();
}

void write_gsa(json_writer_t& w, const gps_gngsa_t& gsa) {
  w.key("gsa");
  w.begin_object();
  w.put("fix_mode_c", gsa.fix_mode_c);
  w.put("fix_type_i", static_cast<int>(gsa.fix_type_i));
  w.put("fix_type_text", gsa.fix_type_text());
  w.put("pvt_mode", gsa.pvt_mode);
  w.key("PRN_arr");
  w.begin_array();
  for (const auto& [prn, when] : *gsa.PRN_arr) w.value(static_cast<int>(prn));
  w.end_array();
  w.put("PRN_text", gsa.PRN_text());
  w.put("pdop_d", gsa.pdop_d);
  w.put("hdop_d", gsa.hdop_d);
  w.put("vdop_d", gsa.vdop_d);
  w.end_object();
}

void write_gsv(json_writer_t& w, const gps_gpgsv_t& gsv) {
  w.key("gsv");
  w.begin_object();
  w.put("sentence_count", static_cast<int>(gsv.sentence_count));
  w.put("sentence_last", static_cast<int>(gsv.sentence_last));
  w.put("satellites_in_view", static_cast<int>(gsv.satellites_in_view.get()));
  w.key("satellite_arr");
  w.begin_array();
  for (const auto& [prn, s] : *gsv.satellite_arr) {
    w.begin_object();
    w.put("prn", static_cast<int>(s->prn));
    w.put("elevation", static_cast<int>(s->elevation));
    w.put("azimuth", static_cast<int>(s->azimuth));
    w.put("snr", static_cast<int>(s->snr));
    w.put("valid", s->valid);
    w.end_object();
  }
  w.end_array();
  w.end_object();
}

void write_count(json_writer_t& w, const sky_count_t& c) {
  w.put("in_view", static_cast<int>(c.in_view));
  w.put("used", static_cast<int>(c.used));
  w.put("signals", static_cast<int>(c.tracked));
}

std::string_view health_text(std::uint8_t health) {
  constexpr std::string_view texts[] = {"unknown", "healthy", "unhealthy"};
  return health < std::size(texts) ? texts[health] : "unknown";
}

void write_sky_satellite(json_writer_t& w, sky_key_t key, const sky_satellite_t& s) {
  constexpr double decimetre = 0.1;  // m
  w.begin_object();
  w.put("system", system_name(key.system));
  w.put("number", static_cast<int>(key.number));
  w.put("placed", s.placed);
  w.put("elevation", static_cast<int>(s.elevation));
  w.put("azimuth", static_cast<int>(s.azimuth));
  w.put("used", s.used);
  w.put("health", health_text(s.health));
  w.put("quality", static_cast<int>(s.quality));
  w.put("residual_m", s.residual_dm * decimetre);
  w.key("signals");
  w.begin_array();
  for (const auto& signal : s.tracked) {
    w.begin_object();
    w.put("signal", signal_name(key.system, signal.id));
    w.put("cn0", static_cast<int>(signal.cn0));
    w.put("used", signal.used);
    w.end_object();
  }
  w.end_array();
  w.end_object();
}

// Every system that has a satellite in view, the totals, the DOPs and the satellites by system
// and number, each named in words so that a script needs no table of ids.
void write_sky(json_writer_t& w, const gnss_sky_t& sky) {
  w.key("sky");
  w.begin_object();
  const auto counts = sky.counts();
  sky_count_t total;
  for (const auto& c : counts) total = {total.in_view + c.in_view, total.used + c.used, total.tracked + c.tracked};
  write_count(w, total);
  w.key("systems");
  w.begin_array();
  for (const auto system : gnss_systems) {
    const auto& c = counts[index_of(system)];
    if (c.in_view == 0) continue;
    w.begin_object();
    w.put("system", system_name(system));
    write_count(w, c);
    w.end_object();
  }
  w.end_array();
  const auto& d = *sky.dop;
  w.key("dop");
  w.begin_object();
  w.put("gdop", d.gdop);
  w.put("pdop", d.pdop);
  w.put("tdop", d.tdop);
  w.put("vdop", d.vdop);
  w.put("hdop", d.hdop);
  w.put("ndop", d.ndop);
  w.put("edop", d.edop);
  w.end_object();
  w.key("satellites");
  w.begin_array();
  for (const auto& [key, satellite] : *sky.satellites) write_sky_satellite(w, key, satellite);
  w.end_array();
  w.end_object();
}

}  // namespace

std::string snapshot_json(const connection_t& hub, const corrections_t* corrections) {
  json_writer_t w;
  w.begin_object();
  write_hub(w, hub);
  write_gga(w, hub.gga);
  write_gll(w, hub.gll);
  write_rmc(w, hub.rmc);
  write_vtg(w, hub.vtg);
  write_gsa(w, hub.gsa);
  write_gsv(w, hub.gsv);
  write_sky(w, hub.sky);
  write_source(w, hub);
  if (corrections && corrections->asked()) write_corrections(w, *corrections);
  w.end_object();
  return w.text();
}

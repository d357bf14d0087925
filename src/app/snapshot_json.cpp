#include "app/snapshot_json.h"

#include <iterator>

#include "app/corrections_output.h"
#include "app/json_writer.h"
#include "link/connection.h"

namespace {

template <class T>
void put(json_writer_t& w, std::string_view key, const T& value) {
  w.key(key);
  w.value(value);
}

void write_hub(json_writer_t& w, const connection_t& hub) {
  w.key("hub");
  w.begin_object();
  put(w, "status_tcp", hub.status_tcp.get());
  put(w, "status_ble", hub.status_ble.get());
  put(w, "msg_count", hub.msg_count);
  put(w, "msg_good", hub.msg_good);
  put(w, "msg_ack", hub.msg_ack);
  put(w, "msg_ack_count", hub.msg_ack_count);
  put(w, "binary", hub.binary());
  put(w, "show_all", hub.show_all.get());
  put(w, "crc_error_text", hub.crc_error_text());
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
  put(w, "address", hub.source()->address().text());
  put(w, "status", hub.status_source.get());
  put(w, "enabled", hub.source_enabled());
  put(w, "valid", hub.source()->valid());
  w.end_object();
}

void write_time(json_writer_t& w, const time_hms_t& t) {
  w.key("time");
  w.begin_object();
  put(w, "hh", t.hh);
  put(w, "mm", t.mm);
  put(w, "ss", t.ss);
  put(w, "ms", t.ms);
  w.end_object();
}

void write_position(json_writer_t& w, double lat, double lon, std::string_view lat_dir, std::string_view lon_dir) {
  put(w, "lat", lat);
  put(w, "lon", lon);
  put(w, "lat_dir", lat_dir);
  put(w, "lon_dir", lon_dir);
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
    put(w, "title", a.title);
    put(w, "lat", a.coordinate.latitude);
    put(w, "lon", a.coordinate.longitude);
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
  put(w, "fix_i", gga.fix_i);
  put(w, "fix_text", gga.fix_text());
  put(w, "sat_count_i", gga.sat_count_i);
  put(w, "hdop_d", gga.hdop_d);
  put(w, "alt_d", gga.alt_d);
  put(w, "mean_sea_level_d", gga.mean_sea_level_d);
  put(w, "pvt_mode", gga.pvt_mode);
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
  put(w, "data_status", gll.data_status);
  write_annotations(w, gll.map_annotations);
  w.end_object();
}

void write_rmc(json_writer_t& w, const gps_gnrmc_t& rmc) {
  w.key("rmc");
  w.begin_object();
  write_time(w, rmc.time);
  w.key("date");
  w.begin_object();
  put(w, "y", rmc.date.y);
  put(w, "m", rmc.date.m);
  put(w, "d", rmc.date.d);
  w.end_object();
  put(w, "lat", rmc.lat);
  put(w, "lon", rmc.lon);
  put(w, "speed_knots", rmc.speed_knots);
  put(w, "track_angle", rmc.track_angle);
  put(w, "magnetic_variation", rmc.magnetic_variation);
  put(w, "lat_dir", rmc.lat_dir);
  put(w, "lon_dir", rmc.lon_dir);
  put(w, "data_status", rmc.data_status);
  write_annotations(w, rmc.map_annotations);
  w.end_object();
}

void write_vtg(json_writer_t& w, const gps_gnvtg_t& vtg) {
  w.key("vtg");
  w.begin_object();
  put(w, "true_track_mode_deg", vtg.true_track_mode_deg);
  put(w, "magnetic_track_mode_deg", vtg.magnetic_track_mode_deg);
  put(w, "speed_knots", vtg.speed_knots);
  put(w, "speed_kph", vtg.speed_kph);
  w.end_object();
}

void write_gsa(json_writer_t& w, const gps_gngsa_t& gsa) {
  w.key("gsa");
  w.begin_object();
  put(w, "fix_mode_c", gsa.fix_mode_c);
  put(w, "fix_type_i", static_cast<int>(gsa.fix_type_i));
  put(w, "fix_type_text", gsa.fix_type_text());
  put(w, "pvt_mode", gsa.pvt_mode);
  w.key("PRN_arr");
  w.begin_array();
  for (const auto& [prn, when] : *gsa.PRN_arr) w.value(static_cast<int>(prn));
  w.end_array();
  put(w, "PRN_text", gsa.PRN_text());
  put(w, "pdop_d", gsa.pdop_d);
  put(w, "hdop_d", gsa.hdop_d);
  put(w, "vdop_d", gsa.vdop_d);
  w.end_object();
}

void write_gsv(json_writer_t& w, const gps_gpgsv_t& gsv) {
  w.key("gsv");
  w.begin_object();
  put(w, "sentence_count", static_cast<int>(gsv.sentence_count));
  put(w, "sentence_last", static_cast<int>(gsv.sentence_last));
  put(w, "satellites_in_view", static_cast<int>(gsv.satellites_in_view.get()));
  w.key("satellite_arr");
  w.begin_array();
  for (const auto& [prn, s] : *gsv.satellite_arr) {
    w.begin_object();
    put(w, "prn", static_cast<int>(s->prn));
    put(w, "elevation", static_cast<int>(s->elevation));
    put(w, "azimuth", static_cast<int>(s->azimuth));
    put(w, "snr", static_cast<int>(s->snr));
    put(w, "valid", s->valid);
    w.end_object();
  }
  w.end_array();
  w.end_object();
}

void write_count(json_writer_t& w, const sky_count_t& c) {
  put(w, "in_view", static_cast<int>(c.in_view));
  put(w, "used", static_cast<int>(c.used));
  put(w, "signals", static_cast<int>(c.tracked));
}

std::string_view health_text(std::uint8_t health) {
  constexpr std::string_view texts[] = {"unknown", "healthy", "unhealthy"};
  return health < std::size(texts) ? texts[health] : "unknown";
}

void write_sky_satellite(json_writer_t& w, sky_key_t key, const sky_satellite_t& s) {
  constexpr double decimetre = 0.1;  // m
  w.begin_object();
  put(w, "system", system_name(key.system));
  put(w, "number", static_cast<int>(key.number));
  put(w, "placed", s.placed);
  put(w, "elevation", static_cast<int>(s.elevation));
  put(w, "azimuth", static_cast<int>(s.azimuth));
  put(w, "used", s.used);
  put(w, "health", health_text(s.health));
  put(w, "quality", static_cast<int>(s.quality));
  put(w, "residual_m", s.residual_dm * decimetre);
  w.key("signals");
  w.begin_array();
  for (const auto& signal : s.tracked) {
    w.begin_object();
    put(w, "signal", signal_name(key.system, signal.id));
    put(w, "cn0", static_cast<int>(signal.cn0));
    put(w, "used", signal.used);
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
    put(w, "system", system_name(system));
    write_count(w, c);
    w.end_object();
  }
  w.end_array();
  const auto& d = *sky.dop;
  w.key("dop");
  w.begin_object();
  put(w, "gdop", d.gdop);
  put(w, "pdop", d.pdop);
  put(w, "tdop", d.tdop);
  put(w, "vdop", d.vdop);
  put(w, "hdop", d.hdop);
  put(w, "ndop", d.ndop);
  put(w, "edop", d.edop);
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

#include "app/snapshot_json.h"

#include "app/json_writer.h"
#include "link/connection.h"

namespace {

void write_hub(json_writer_t& w, const connection_t& hub) {
  w.key("hub");
  w.begin_object();
  w.key("status_tcp");
  w.value(hub.status_tcp.get());
  w.key("status_ble");
  w.value(hub.status_ble.get());
  w.key("msg_count");
  w.value(hub.msg_count);
  w.key("msg_good");
  w.value(hub.msg_good);
  w.key("msg_ack");
  w.value(hub.msg_ack);
  w.key("msg_ack_count");
  w.value(hub.msg_ack_count);
  w.key("binary");
  w.value(hub.binary);
  w.key("show_all");
  w.value(hub.show_all.get());
  w.key("crc_error_text");
  w.value(hub.crc_error_text());
  w.key("arr_rx");
  w.begin_array();
  for (std::size_t i = 0; i < hub.arr_rx->size(); ++i) w.value((*hub.arr_rx)[i]);
  w.end_array();
  w.end_object();
}

void write_time(json_writer_t& w, const time_hms_t& t) {
  w.key("time");
  w.begin_object();
  w.key("hh");
  w.value(t.hh);
  w.key("mm");
  w.value(t.mm);
  w.key("ss");
  w.value(t.ss);
  w.key("ms");
  w.value(t.ms);
  w.end_object();
}

void write_position(json_writer_t& w, double lat, double lon, std::string_view lat_dir, std::string_view lon_dir) {
  w.key("lat");
  w.value(lat);
  w.key("lon");
  w.value(lon);
  w.key("lat_dir");
  w.value(lat_dir);
  w.key("lon_dir");
  w.value(lon_dir);
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
    w.key("title");
    w.value(a.title);
    w.key("lat");
    w.value(a.coordinate.latitude);
    w.key("lon");
    w.value(a.coordinate.longitude);
    w.end_object();
  }
  w.end_array();
}

void write_coordinates(json_writer_t& w, std::string_view name, const newest_first_t<geo_coordinate_t>& list) {
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
  w.key("fix_i");
  w.value(gga.fix_i);
  w.key("fix_text");
  w.value(gga.fix_text());
  w.key("sat_count_i");
  w.value(gga.sat_count_i);
  w.key("hdop_d");
  w.value(gga.hdop_d);
  w.key("alt_d");
  w.value(gga.alt_d);
  w.key("mean_sea_level_d");
  w.value(gga.mean_sea_level_d);
  w.key("pvt_mode");
  w.value(gga.pvt_mode);
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
  w.key("data_status");
  w.value(gll.data_status);
  write_annotations(w, gll.map_annotations);
  w.end_object();
}

void write_rmc(json_writer_t& w, const gps_gnrmc_t& rmc) {
  w.key("rmc");
  w.begin_object();
  write_time(w, rmc.time);
  w.key("date");
  w.begin_object();
  w.key("y");
  w.value(rmc.date.y);
  w.key("m");
  w.value(rmc.date.m);
  w.key("d");
  w.value(rmc.date.d);
  w.end_object();
  w.key("lat");
  w.value(rmc.lat);
  w.key("lon");
  w.value(rmc.lon);
  w.key("speed_knots");
  w.value(rmc.speed_knots);
  w.key("track_angle");
  w.value(rmc.track_angle);
  w.key("magnetic_variation");
  w.value(rmc.magnetic_variation);
  w.key("lat_dir");
  w.value(rmc.lat_dir);
  w.key("lon_dir");
  w.value(rmc.lon_dir);
  w.key("data_status");
  w.value(rmc.data_status);
  write_annotations(w, rmc.map_annotations);
  w.end_object();
}

void write_vtg(json_writer_t& w, const gps_gnvtg_t& vtg) {
  w.key("vtg");
  w.begin_object();
  w.key("true_track_mode_deg");
  w.value(vtg.true_track_mode_deg);
  w.key("magnetic_track_mode_deg");
  w.value(vtg.magnetic_track_mode_deg);
  w.key("speed_knots");
  w.value(vtg.speed_knots);
  w.key("speed_kph");
  w.value(vtg.speed_kph);
  w.end_object();
}

void write_gsa(json_writer_t& w, const gps_gngsa_t& gsa) {
  w.key("gsa");
  w.begin_object();
  w.key("fix_mode_c");
  w.value(gsa.fix_mode_c);
  w.key("fix_type_i");
  w.value(static_cast<int>(gsa.fix_type_i));
  w.key("fix_type_text");
  w.value(gsa.fix_type_text());
  w.key("pvt_mode");
  w.value(gsa.pvt_mode);
  w.key("PRN_arr");
  w.begin_array();
  for (const auto& [prn, when] : *gsa.PRN_arr) w.value(static_cast<int>(prn));
  w.end_array();
  w.key("PRN_text");
  w.value(gsa.PRN_text());
  w.key("pdop_d");
  w.value(gsa.pdop_d);
  w.key("hdop_d");
  w.value(gsa.hdop_d);
  w.key("vdop_d");
  w.value(gsa.vdop_d);
  w.end_object();
}

void write_gsv(json_writer_t& w, const gps_gpgsv_t& gsv) {
  w.key("gsv");
  w.begin_object();
  w.key("sentence_count");
  w.value(static_cast<int>(gsv.sentence_count));
  w.key("sentence_last");
  w.value(static_cast<int>(gsv.sentence_last));
  w.key("satellites_in_view");
  w.value(static_cast<int>(gsv.satellites_in_view.get()));
  w.key("satellite_arr");
  w.begin_array();
  for (const auto& [prn, s] : *gsv.satellite_arr) {
    w.begin_object();
    w.key("prn");
    w.value(static_cast<int>(s->prn));
    w.key("elevation");
    w.value(static_cast<int>(s->elevation));
    w.key("azimuth");
    w.value(static_cast<int>(s->azimuth));
    w.key("snr");
    w.value(static_cast<int>(s->snr));
    w.key("valid");
    w.value(s->valid);
    w.end_object();
  }
  w.end_array();
  w.end_object();
}

}  // namespace

std::string snapshot_json(const connection_t& hub) {
  json_writer_t w;
  w.begin_object();
  write_hub(w, hub);
  write_gga(w, hub.gga);
  write_gll(w, hub.gll);
  write_rmc(w, hub.rmc);
  write_vtg(w, hub.vtg);
  write_gsa(w, hub.gsa);
  write_gsv(w, hub.gsv);
  w.end_object();
  return w.text();
}

#include "sim/sim_engine.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <ctime>
#include <numbers>
#include <span>
#include <utility>
#include <vector>

#include "nmea/sentence.h"
#include "sim/sim_sky.h"
#include "ubx/records.h"

namespace {

constexpr double pi = std::numbers::pi;
constexpr double meters_per_deg_lat = 111320.0;  // m per degree, close enough for a loop of a few hundred m
constexpr double knots_per_mps = 1.943844;
constexpr std::size_t gsv_group = 4;   // satellites in one GSV sentence
constexpr std::size_t gsa_slots = 12;  // satellite numbers in one GSA sentence
constexpr double pdop_per_hdop = 1.6;  // the simulated DOPs as multiples of HDOP
constexpr double vdop_per_hdop = 1.3;
constexpr double gdop_per_hdop = 1.9;
constexpr double ndop_per_hdop = 0.7;  // and EDOP

// The HDOP at t seconds, wandering slowly.
double sim_hdop(double t) {
  return 0.8 + 0.3 * std::sin(t / 60.0);
}

std::string nmea_coordinate(double degrees, int degree_digits) {
  const double magnitude = std::fabs(degrees);
  const int whole = static_cast<int>(magnitude);
  char text[32];
  std::snprintf(text, sizeof text, "%0*d%08.5f", degree_digits, whole, (magnitude - whole) * 60.0);
  return text;
}

int used_count(const std::vector<sim_satellite_t>& sky) {
  int used = 0;
  for (const auto& s : sky) used += s.used ? 1 : 0;
  return used;
}

// The talker of a system's sentences, NMEA 4.11.
const char* talker_of(gnss_system_t system) {
  switch (system) {
    case gnss_system_t::glonass:
      return "GL";
    case gnss_system_t::galileo:
      return "GA";
    case gnss_system_t::beidou:
      return "GB";
    case gnss_system_t::qzss:
      return "GQ";
    default:
      return "GP";
  }
}

// A record's latitude, longitude or other scaled value, rounded to its integer unit.
std::int32_t record_value(double v) {
  return static_cast<std::int32_t>(std::lround(v));
}

}  // namespace

sim_engine_t::sim_engine_t(const sim_config_t& config) : config_(config), rng_(config.seed) {}

double sim_engine_t::uniform() {
  return static_cast<double>(rng_() >> 11) * 0x1.0p-53;
}

// A loop through the start point, walked at a constant speed.
sim_engine_t::position_t sim_engine_t::position(double t) const {
  const double r = config_.loop_radius_m;
  const double angle = config_.speed_mps * t / r;  // rad around the loop
  const double north = r * std::sin(angle);
  const double east = r * (1.0 - std::cos(angle));
  const double m_per_deg_lon = meters_per_deg_lat * std::cos(config_.lat * pi / 180.0);
  double course = std::fmod(90.0 - angle * 180.0 / pi, 360.0);
  if (course < 0) course += 360.0;
  return {config_.lat + north / meters_per_deg_lat, config_.lon + east / m_per_deg_lon, course, config_.speed_mps};
}

void sim_engine_t::add_sentence(std::string& out, const std::string& body) {
  unsigned sum = body_checksum(body);
  if (uniform() < config_.bad_checksum_rate) {
    sum ^= 0x5A;
    ++counts_.bad_checksums;
  }
  char tail[8];
  std::snprintf(tail, sizeof tail, "*%02X\r\n", sum);
  out += "$" + body + tail;
  ++counts_.sentences;
  if (uniform() < config_.garbage_rate) {
    // Printable junk that does not start with "$", as a line-noise burst on a serial bridge would.
    const int length = 5 + static_cast<int>(uniform() * 40);
    std::string junk = "#";
    for (int i = 0; i < length; ++i) junk.push_back(static_cast<char>(' ' + static_cast<int>(uniform() * 94)));
    out += junk + "\r\n";
    ++counts_.garbage_lines;
  }
}

// A frame with, by the configured shares, a wrong checksum or a run of junk bytes after it. The junk
// never holds the first sync byte, so it cannot start a false frame that swallows the next one.
void sim_engine_t::add_frame(std::string& out, std::span<const std::uint8_t> image) {
  auto frame = frame_of(image);
  if (uniform() < config_.bad_checksum_rate) {
    frame.back() ^= 0x5A;
    ++counts_.bad_checksums;
  }
  out.append(frame.begin(), frame.end());
  ++counts_.frames;
  if (uniform() < config_.garbage_rate) {
    const int length = 5 + static_cast<int>(uniform() * 40);
    for (int i = 0; i < length; ++i) {
      const auto junk = static_cast<char>(uniform() * 255);
      out.push_back(junk == static_cast<char>(ubx_sync[0]) ? '\xFF' : junk);
    }
    ++counts_.garbage_lines;
  }
}

void sim_engine_t::set_epoch_s(double epoch_s) {
  rate_t_ += static_cast<double>(epoch_ - rate_epoch_) * config_.epoch_s;
  rate_epoch_ = epoch_;
  config_.epoch_s = epoch_s;
}

std::string sim_engine_t::next_epoch() {
  const double t = rate_t_ + static_cast<double>(epoch_++ - rate_epoch_) * config_.epoch_s;
  now_s_ = t;
  std::string out;
  if (config_.ubx) {
    add_ubx_epoch(out, t);
  } else {
    add_text_epoch(out, t);
  }
  return out;
}

void sim_engine_t::add_text_epoch(std::string& out, double t) {
  const auto p = position(t);
  const std::time_t now = static_cast<std::time_t>(config_.start_utc_s) + static_cast<std::time_t>(t);
  std::tm utc{};
  gmtime_r(&now, &utc);
  char clock[48];
  const auto millis = static_cast<int>(std::fmod(t, 1.0) * 100);
  std::snprintf(clock, sizeof clock, "%02d%02d%02d.%02d", utc.tm_hour, utc.tm_min, utc.tm_sec, millis);
  char date[48];
  std::snprintf(date, sizeof date, "%02d%02d%02d", utc.tm_mday, utc.tm_mon + 1, utc.tm_year % 100);
  const std::string lat = nmea_coordinate(p.lat, 2) + (p.lat < 0 ? ",S" : ",N");
  const std::string lon = nmea_coordinate(p.lon, 3) + (p.lon < 0 ? ",W" : ",E");
  const double hdop = sim_hdop(t);
  const double knots = p.speed_mps * knots_per_mps;
  char body[192];

  // A multi-GNSS receiver reports its fix with the GN talker.
  const char* talker = config_.gnss != 0 ? "GN" : "GP";
  const int in_fix = config_.gnss != 0 ? used_count(sim_sky(config_.gnss, t)) : satellite_count - 2;
  const int quality = config_.rtk ? rtk_.quality(t) : sim_rtk_t::autonomous;
  std::snprintf(body, sizeof body, "%sGGA,%s,%s,%s,%d,%02d,%.1f,%.1f,M,47.0,M,,", talker, clock, lat.c_str(),
                lon.c_str(), quality, in_fix, hdop, 520.0 + 3.0 * std::sin(t / 30.0));
  add_sentence(out, body);
  std::snprintf(body, sizeof body, "%sGLL,%s,%s,%s,A,A", talker, lat.c_str(), lon.c_str(), clock);
  add_sentence(out, body);
  std::snprintf(body, sizeof body, "%sRMC,%s,A,%s,%s,%.3f,%.1f,%s,,,A", talker, clock, lat.c_str(), lon.c_str(), knots,
                p.course_deg, date);
  add_sentence(out, body);
  std::snprintf(body, sizeof body, "%sVTG,%.1f,T,,M,%.3f,N,%.3f,K,A", talker, p.course_deg, knots, p.speed_mps * 3.6);
  add_sentence(out, body);
  if (config_.gnss != 0) {
    add_gnss_sentences(out, t, hdop);
    return;
  }

  // A dozen satellites crossing the sky slowly, with signals that rise and fade.
  struct sat_t {
    int prn, elevation, azimuth, snr;
  };
  sat_t sats[satellite_count];
  for (int i = 0; i < satellite_count; ++i) {
    const double phase = i * 0.9 + t / 900.0;
    sats[i].prn = 2 + 3 * i;
    sats[i].elevation = static_cast<int>(5 + 80 * std::fabs(std::sin(phase)));
    sats[i].azimuth = static_cast<int>(std::fmod(i * 30.0 + t / 20.0, 360.0));
    const int snr_of_elevation = sats[i].elevation / 3;  // whole dB-Hz: the stream stays as it was
    sats[i].snr = static_cast<int>(18 + snr_of_elevation + 6 * std::sin(t / 7.0 + i));
  }
  std::string used = "GPGSA,A,3";
  for (int i = 0; i < satellite_count; ++i) {
    char prn[8];
    std::snprintf(prn, sizeof prn, i < satellite_count - 2 ? ",%02d" : ",", sats[i].prn);
    used += prn;
  }
  std::snprintf(body, sizeof body, ",%.1f,%.1f,%.1f", hdop * pdop_per_hdop, hdop, hdop * vdop_per_hdop);
  add_sentence(out, used + body);

  const int sentences = (satellite_count + 3) / 4;
  for (int s = 0; s < sentences; ++s) {
    std::string gsv;
    std::snprintf(body, sizeof body, "GPGSV,%d,%d,%02d", sentences, s + 1, satellite_count);
    gsv = body;
    for (int k = 4 * s; k < 4 * s + 4; ++k) {
      if (k < satellite_count) {
        std::snprintf(body, sizeof body, ",%02d,%02d,%03d,%02d", sats[k].prn, sats[k].elevation, sats[k].azimuth,
                      sats[k].snr);
        gsv += body;
      } else {
        gsv += ",,,,";
      }
    }
    add_sentence(out, gsv);
  }
}

void sim_engine_t::add_ubx_epoch(std::string& out, double t) {
  const auto p = position(t);
  const std::time_t now = static_cast<std::time_t>(config_.start_utc_s) + static_cast<std::time_t>(t);
  std::tm utc{};
  gmtime_r(&now, &utc);
  const auto itow =
      static_cast<std::uint32_t>(((utc.tm_wday * 24 + utc.tm_hour) * 60 + utc.tm_min) * 60 + utc.tm_sec) * 1000u;
  const double course = p.course_deg * pi / 180.0;

  // The sky records once a second, at the epoch that starts it.
  const bool second_starts = std::floor(t) != std::floor(t - config_.epoch_s) || t == 0.0;
  if (config_.gnss != 0 && second_starts) add_sky_frames(out, t, itow);

  // NAV-POSLLH next: an epoch ends with its NAV-PVT, whose fix type the screens then show.
  constexpr std::int32_t height_mm = 567000;  // above the ellipsoid
  constexpr std::int32_t msl_mm = 520000;     // above mean sea level
  constexpr std::uint32_t h_acc_mm = 1200;
  constexpr std::uint32_t v_acc_mm = 1800;
  gps_posllh_t posllh;
  posllh.cls = ubx_class_nav;
  posllh.id = gps_posllh_t::message_id;
  posllh.length = gps_posllh_t::payload_length;
  posllh.iTOW = itow;
  posllh.lon = record_value(p.lon * 1e7);
  posllh.lat = record_value(p.lat * 1e7);
  posllh.height = height_mm;
  posllh.hMSL = msl_mm;
  posllh.hAcc = h_acc_mm;
  posllh.vAcc = v_acc_mm;
  add_frame(out, image_of(posllh));

  gps_pvt_t pvt;
  pvt.cls = ubx_class_nav;
  pvt.id = gps_pvt_t::message_id;
  pvt.length = gps_pvt_t::payload_length;
  pvt.iTOW = itow;
  pvt.year = static_cast<std::uint16_t>(utc.tm_year + 1900);
  pvt.month = static_cast<std::uint8_t>(utc.tm_mon + 1);
  pvt.day = static_cast<std::uint8_t>(utc.tm_mday);
  pvt.hour = static_cast<std::uint8_t>(utc.tm_hour);
  pvt.min = static_cast<std::uint8_t>(utc.tm_min);
  pvt.sec = static_cast<std::uint8_t>(utc.tm_sec);
  pvt.valid = 0x37;  // date, time and fully resolved
  pvt.tAcc = 25;     // ns
  pvt.fixType = 3;   // 3D fix
  pvt.flags = 0x01;  // gnssFixOK
  // With corrections: differential, and the carrier solution in bits 6-7 (1 float, 2 fixed).
  if (config_.rtk) {
    const int quality = rtk_.quality(t);
    if (quality == sim_rtk_t::rtk_float) pvt.flags |= 0x42;
    if (quality == sim_rtk_t::rtk_fixed) pvt.flags |= 0x82;
  }
  pvt.flags2 = 0x0A;
  pvt.numSV = static_cast<std::uint8_t>(config_.gnss != 0 ? used_count(sim_sky(config_.gnss, t)) : satellite_count - 2);
  pvt.lon = posllh.lon;
  pvt.lat = posllh.lat;
  pvt.height = height_mm;
  pvt.hMSL = msl_mm;
  pvt.hAcc = h_acc_mm;
  pvt.vAcc = v_acc_mm;
  pvt.velN = record_value(p.speed_mps * std::cos(course) * 1000);
  pvt.velE = record_value(p.speed_mps * std::sin(course) * 1000);
  pvt.gSpeed = record_value(p.speed_mps * 1000);
  pvt.headMot = record_value(p.course_deg * 1e5);
  pvt.sAcc = 150;        // mm/s
  pvt.headAcc = 500000;  // 1e-5 degree
  pvt.pDOP = 145;        // 0.01
  pvt.headVeh = pvt.headMot;
  add_frame(out, image_of(pvt));
}

// $GNGSA,A,3,02,05,08,,,,,,,,,,1.4,0.8,1.1,1 for each system, then per system and signal
// $GPGSV,3,1,10,02,45,123,38,05,12,234,40,08,67,345,44,11,23,056,33,1 (4.11: the signal id last).
void sim_engine_t::add_gnss_sentences(std::string& out, double t, double hdop) {
  const auto sky = sim_sky(config_.gnss, t);
  char body[192];
  for (const auto system : gnss_systems) {
    const auto of_system = [system](const sim_satellite_t& s) { return s.system == system; };
    if (std::none_of(sky.begin(), sky.end(), of_system)) continue;
    std::string gsa = "GNGSA,A,3";
    std::size_t listed = 0;
    for (const auto& s : sky) {
      if (!of_system(s) || !s.used || listed == gsa_slots) continue;
      std::snprintf(body, sizeof body, ",%02d", s.number);
      gsa += body;
      ++listed;
    }
    for (; listed < gsa_slots; ++listed) gsa += ",";
    const auto system_id = index_of(system) + 1;  // NMEA system ids follow the screens' order
    std::snprintf(body, sizeof body, ",%.1f,%.1f,%.1f,%zu", hdop * pdop_per_hdop, hdop, hdop * vdop_per_hdop,
                  system_id);
    add_sentence(out, gsa + body);
  }
  for (const auto system : gnss_systems) {
    // The bands of this system, the first band first.
    std::vector<gnss_signal_t> bands;
    for (const auto& s : sky)
      for (const auto& signal : s.bands)
        if (s.system == system && std::find(bands.begin(), bands.end(), signal.id) == bands.end())
          bands.push_back(signal.id);
    for (const auto band : bands) {
      std::vector<std::pair<const sim_satellite_t*, int>> on_band;
      for (const auto& s : sky)
        for (const auto& signal : s.bands)
          if (s.system == system && signal.id == band) on_band.emplace_back(&s, signal.cn0);
      const std::size_t sentences = (on_band.size() + gsv_group - 1) / gsv_group;
      for (std::size_t k = 0; k < sentences; ++k) {
        std::snprintf(body, sizeof body, "%sGSV,%zu,%zu,%02zu", talker_of(system), sentences, k + 1, on_band.size());
        std::string gsv = body;
        for (std::size_t j = k * gsv_group; j < std::min(on_band.size(), (k + 1) * gsv_group); ++j) {
          const auto& [s, cn0] = on_band[j];
          std::snprintf(body, sizeof body, ",%02d,%02d,%03d,%02d", s->number, s->elevation, s->azimuth, cn0);
          gsv += body;
        }
        std::snprintf(body, sizeof body, ",%X", static_cast<unsigned>(band));
        add_sentence(out, gsv + body);
      }
    }
  }
}

void sim_engine_t::add_sky_frames(std::string& out, double t, std::uint32_t itow) {
  constexpr std::uint32_t healthy = 1u << gps_sat_sv_t::health_shift;
  constexpr std::uint32_t locked = 7;     // code and carrier locked
  constexpr int glonass_first_slot = 65;  // NMEA numbers GLONASS slot 1 so
  const auto sky = sim_sky(config_.gnss, t);
  gps_sat_t sat;
  gps_sig_t sig;
  for (const auto& s : sky) {
    const auto gnss_id = ubx_gnss_id(s.system);
    const auto sv_id =
        static_cast<std::uint8_t>(s.system == gnss_system_t::glonass ? s.number - glonass_first_slot + 1 : s.number);
    const std::uint32_t flags = locked | healthy | (s.used ? gps_sat_sv_t::flag_used : 0);
    sat.entries.push_back({gnss_id, sv_id, static_cast<std::uint8_t>(s.bands.front().cn0),
                           static_cast<std::int8_t>(s.elevation), static_cast<std::int16_t>(s.azimuth), 0, flags});
    for (const auto& signal : s.bands) {
      const std::uint16_t sig_flags = healthy >> gps_sat_sv_t::health_shift | (s.used ? gps_sig_sv_t::flag_pr_used : 0);
      sig.entries.push_back({gnss_id, sv_id, ubx_sig_id(s.system, signal.id), 0, 0,
                             static_cast<std::uint8_t>(signal.cn0), locked, 0, 0, sig_flags, 0});
    }
  }
  for (auto* header : {&sat.cls, &sig.cls}) *header = ubx_class_nav;
  sat.id = gps_sat_t::message_id;
  sig.id = gps_sig_t::message_id;
  sat.version = gps_sat_t::known_version;
  sig.version = gps_sig_t::known_version;
  sat.iTOW = sig.iTOW = itow;
  sat.count = static_cast<std::uint8_t>(sat.entries.size());
  sig.count = static_cast<std::uint8_t>(sig.entries.size());
  sat.length = sat.length_of_count();
  sig.length = sig.length_of_count();
  add_frame(out, image_of(sat));
  add_frame(out, image_of(sig));

  const double hdop = sim_hdop(t);
  const auto hundredths = [](double dop) { return static_cast<std::uint16_t>(std::lround(dop * 100)); };
  add_frame(out, image_of(gps_dop_t{ubx_class_nav, gps_dop_t::message_id, gps_dop_t::payload_length, itow,
                                    hundredths(hdop * gdop_per_hdop), hundredths(hdop * pdop_per_hdop),
                                    hundredths(hdop), hundredths(hdop * vdop_per_hdop), hundredths(hdop),
                                    hundredths(hdop * ndop_per_hdop), hundredths(hdop * ndop_per_hdop)}));
}

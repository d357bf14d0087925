#include "app/sim_engine.h"

#include <cmath>
#include <cstdio>
#include <ctime>
#include <numbers>

namespace {

constexpr double pi = std::numbers::pi;
constexpr double meters_per_deg_lat = 111320.0;  // m per degree, close enough for a loop of a few hundred m
constexpr double knots_per_mps = 1.943844;

std::string nmea_coordinate(double degrees, int degree_digits) {
  const double magnitude = std::fabs(degrees);
  const int whole = static_cast<int>(magnitude);
  char text[32];
  std::snprintf(text, sizeof text, "%0*d%08.5f", degree_digits, whole, (magnitude - whole) * 60.0);
  return text;
}

void put_u8(std::string& out, std::uint32_t v) { out.push_back(static_cast<char>(v & 0xFF)); }
void put_u16(std::string& out, std::uint32_t v) {
  put_u8(out, v);
  put_u8(out, v >> 8);
}
void put_u32(std::string& out, std::uint32_t v) {
  put_u16(out, v);
  put_u16(out, v >> 16);
}
void put_i32(std::string& out, double v) { put_u32(out, static_cast<std::uint32_t>(static_cast<std::int32_t>(std::lround(v)))); }

// B5 62, class, id, length, payload, Fletcher checksum over class to payload.
std::string ubx_frame(std::uint8_t id, const std::string& payload) {
  std::string body;
  put_u8(body, 0x01);
  put_u8(body, id);
  put_u16(body, static_cast<std::uint32_t>(payload.size()));
  body += payload;
  std::uint8_t a = 0;
  std::uint8_t b = 0;
  for (const char c : body) {
    a = static_cast<std::uint8_t>(a + static_cast<std::uint8_t>(c));
    b = static_cast<std::uint8_t>(b + a);
  }
  std::string frame = "\xB5\x62";
  frame += body;
  put_u8(frame, a);
  put_u8(frame, b);
  return frame;
}

}  // namespace

sim_engine_t::sim_engine_t(const sim_config_t& config) : config_(config), rng_(config.seed) {}

double sim_engine_t::uniform() { return static_cast<double>(rng_() >> 11) * 0x1.0p-53; }

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
  unsigned sum = 0;
  for (const char c : body) sum ^= static_cast<unsigned char>(c);
  if (uniform() < config_.bad_checksum_rate) {
    sum ^= 0x5A;
    ++counts_.bad_checksums;
  }
  char tail[8];
  std::snprintf(tail, sizeof tail, "*%02X\r\n", sum & 0xFF);
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

std::string sim_engine_t::next_epoch() {
  const double t = static_cast<double>(epoch_++) * config_.epoch_s;
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
  const double hdop = 0.8 + 0.3 * std::sin(t / 60.0);
  const double knots = p.speed_mps * knots_per_mps;
  char body[192];

  std::snprintf(body, sizeof body, "GPGGA,%s,%s,%s,1,%02d,%.1f,%.1f,M,47.0,M,,", clock, lat.c_str(), lon.c_str(),
                satellite_count - 2, hdop, 520.0 + 3.0 * std::sin(t / 30.0));
  add_sentence(out, body);
  std::snprintf(body, sizeof body, "GPGLL,%s,%s,%s,A,A", lat.c_str(), lon.c_str(), clock);
  add_sentence(out, body);
  std::snprintf(body, sizeof body, "GPRMC,%s,A,%s,%s,%.3f,%.1f,%s,,,A", clock, lat.c_str(), lon.c_str(), knots,
                p.course_deg, date);
  add_sentence(out, body);
  std::snprintf(body, sizeof body, "GPVTG,%.1f,T,,M,%.3f,N,%.3f,K,A", p.course_deg, knots, p.speed_mps * 3.6);
  add_sentence(out, body);

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
    sats[i].snr = static_cast<int>(18 + sats[i].elevation / 3 + 6 * std::sin(t / 7.0 + i));
  }
  std::string used = "GPGSA,A,3";
  for (int i = 0; i < satellite_count; ++i) {
    char prn[8];
    std::snprintf(prn, sizeof prn, i < satellite_count - 2 ? ",%02d" : ",", sats[i].prn);
    used += prn;
  }
  std::snprintf(body, sizeof body, ",%.1f,%.1f,%.1f", hdop * 1.6, hdop, hdop * 1.3);
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
  const auto itow = static_cast<std::uint32_t>(((utc.tm_wday * 24 + utc.tm_hour) * 60 + utc.tm_min) * 60 + utc.tm_sec) * 1000u;
  const double course = p.course_deg * pi / 180.0;

  // NAV-POSLLH first: an epoch ends with its NAV-PVT, whose fix type the screens then show.
  std::string posllh;
  put_u32(posllh, itow);
  put_i32(posllh, p.lon * 1e7);
  put_i32(posllh, p.lat * 1e7);
  put_i32(posllh, 567000);
  put_i32(posllh, 520000);
  put_u32(posllh, 1200);
  put_u32(posllh, 1800);
  out += ubx_frame(0x02, posllh);

  std::string pvt;
  put_u32(pvt, itow);
  put_u16(pvt, static_cast<std::uint32_t>(utc.tm_year + 1900));
  put_u8(pvt, static_cast<std::uint32_t>(utc.tm_mon + 1));
  put_u8(pvt, static_cast<std::uint32_t>(utc.tm_mday));
  put_u8(pvt, static_cast<std::uint32_t>(utc.tm_hour));
  put_u8(pvt, static_cast<std::uint32_t>(utc.tm_min));
  put_u8(pvt, static_cast<std::uint32_t>(utc.tm_sec));
  put_u8(pvt, 0x37);            // date, time and fully resolved
  put_u32(pvt, 25);             // tAcc, ns
  put_i32(pvt, 0);              // nano
  put_u8(pvt, 3);               // 3D fix
  put_u8(pvt, 0x01);            // gnssFixOK
  put_u8(pvt, 0x0A);
  put_u8(pvt, satellite_count - 2);
  put_i32(pvt, p.lon * 1e7);
  put_i32(pvt, p.lat * 1e7);
  put_i32(pvt, 567000);         // height above the ellipsoid, mm
  put_i32(pvt, 520000);         // above mean sea level, mm
  put_u32(pvt, 1200);           // hAcc, mm
  put_u32(pvt, 1800);           // vAcc, mm
  put_i32(pvt, p.speed_mps * std::cos(course) * 1000);
  put_i32(pvt, p.speed_mps * std::sin(course) * 1000);
  put_i32(pvt, 0);
  put_i32(pvt, p.speed_mps * 1000);
  put_i32(pvt, p.course_deg * 1e5);
  put_u32(pvt, 150);            // sAcc, mm/s
  put_u32(pvt, 500000);         // headAcc, 1e-5 degree
  put_u16(pvt, 145);            // pDOP, 0.01
  put_u16(pvt, 0);
  put_u32(pvt, 0);
  put_i32(pvt, p.course_deg * 1e5);
  put_u16(pvt, 0);
  put_u16(pvt, 0);
  out += ubx_frame(0x07, pvt);
  counts_.frames += 2;
}

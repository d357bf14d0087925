#include "ubx/record_text.h"

#include <charconv>
#include <cstdint>
#include <iterator>
#include <string_view>

namespace {

constexpr std::uint32_t mm = 1000;           // mm and mm/s to m and m/s
constexpr std::uint32_t deg_1e5 = 100000;    // 1e-5 degree
constexpr std::uint32_t deg_1e7 = 10000000;  // 1e-7 degree
constexpr std::uint32_t hundredths = 100;    // 0.01 units
constexpr std::uint32_t decimetres = 10;     // 0.1 m
constexpr std::uint32_t ms_per_hour = 3600000;
constexpr std::uint32_t ms_per_minute = 60000;
constexpr std::uint32_t ms_per_second = 1000;
constexpr std::uint32_t ms_per_day = 86400000;
constexpr std::uint32_t hours_per_day = 24;
constexpr std::uint32_t minutes_per_hour = 60;
constexpr std::uint32_t seconds_per_minute = 60;
constexpr std::uint32_t widest_accuracy_mm = 999999;  // wider accuracies take the space before "["

// The digits a fraction of `scale` shows: those of scale - 1 (3 for 1000, 7 for 10000000).
constexpr int fraction_digits(std::uint32_t scale) {
  int digits = 0;
  for (std::uint32_t rest = scale - 1; rest > 0; rest /= 10) ++digits;
  return digits;
}

// Appends the pieces of a fixed-column text in the manner of printf conversions, without parsing a
// format string at run time: the log renders a record for every decoded frame.
class text_writer_t {
public:
  explicit text_writer_t(std::string& out) : out_(out) {}

  // Literal text.
  text_writer_t& text(std::string_view piece) {
    out_.append(piece);
    return *this;
  }

  // "%*s": right-aligned in `width` columns.
  text_writer_t& right(std::string_view piece, int width) {
    pad(width - static_cast<int>(piece.size()), ' ');
    return text(piece);
  }

  // "%*i" and "%*u": a decimal number right-aligned in `width` columns.
  text_writer_t& number(std::int64_t v, int width = 0) {
    char digits[24];
    const auto end = std::to_chars(std::begin(digits), std::end(digits), v).ptr;
    return right(std::string_view(digits, static_cast<std::size_t>(end - digits)), width);
  }

  // "%0*u": at least `digits` digits, zero-padded.
  text_writer_t& zero_padded(std::uint64_t v, int digits) { return based(v, digits, 10); }

  // "%0*x": lower-case hexadecimal, at least `digits` digits, zero-padded.
  text_writer_t& hex(std::uint64_t v, int digits) { return based(v, digits, 16); }

  // A scaled value as the pair "%*i.%0*u": the whole part, truncated toward zero with its sign,
  // right-aligned in `width` columns, then the fraction zero-padded. The fraction comes from the
  // magnitude, so the most negative value of a type renders without overflow. A value between -1
  // and 0 units keeps its sign as a whole part of "-0".
  text_writer_t& fixed(std::int64_t v, std::uint32_t scale, int width) {
    const std::uint64_t magnitude = v < 0 ? 0 - static_cast<std::uint64_t>(v) : static_cast<std::uint64_t>(v);
    const std::int64_t whole = v / static_cast<std::int64_t>(scale);
    if (v < 0 && whole == 0) {
      right("-0", width);
    } else {
      number(whole, width);
    }
    return text(".").zero_padded(magnitude % scale, fraction_digits(scale));
  }

private:
  void pad(int count, char c) {
    if (count > 0) out_.append(static_cast<std::size_t>(count), c);
  }

  text_writer_t& based(std::uint64_t v, int digits, int base) {
    char text_digits[24];
    const auto end = std::to_chars(std::begin(text_digits), std::end(text_digits), v, base).ptr;
    const auto length = static_cast<int>(end - text_digits);
    pad(digits - length, '0');
    out_.append(text_digits, static_cast<std::size_t>(length));
    return *this;
  }

  std::string& out_;
};

// The record's name by its id alone, whatever its class.
std::string_view label(std::uint8_t id) {
  constexpr std::uint8_t posecef_id = 0x01;
  switch (id) {
    case posecef_id:
      return "POSECEF";
    case gps_posllh_t::message_id:
      return "POSLLH";
    case gps_pvt_t::message_id:
      return "PVT";
    case gps_dop_t::message_id:
      return "DOP";
    case gps_sat_t::message_id:
      return "SAT";
    case gps_sig_t::message_id:
      return "SIG";
    default:
      return "?";
  }
}

// "cls %u  id %u %8s  len %2u<gap>iTOW %10u<gap><weekday> %2u:%02u:%02u.%03u\n", the weekday and
// the time of day taken from iTOW; a week or more has no weekday.
void append_header(text_writer_t& w, std::uint8_t cls, std::uint8_t id, std::uint16_t length, std::uint32_t iTOW,
                   std::string_view gap_before_itow, std::string_view gap_after_itow) {
  const auto day = iTOW / ms_per_day;
  const std::string_view weekday = day < std::size(ubx_weekday_text) ? ubx_weekday_text[day] : "";
  w.text("cls ").number(cls).text("  id ").number(id).text(" ").right(label(id), 8);
  w.text("  len ").number(length, 2).text(gap_before_itow).text("iTOW ").number(iTOW, 10).text(gap_after_itow);
  w.text(weekday).text(" ").number((iTOW / ms_per_hour) % hours_per_day, 2);
  w.text(":").zero_padded((iTOW / ms_per_minute) % minutes_per_hour, 2);
  w.text(":").zero_padded((iTOW / ms_per_second) % seconds_per_minute, 2);
  w.text(".").zero_padded(iTOW % ms_per_second, 3).text("\n");
}

}  // namespace

// cls 1  id 2   POSLLH  len 28       iTOW  291023400         wed  8:50:23.400
// accuracy H     1.500  [height above elipsoid      -0.500]  lat   42.6912345
// accuracy V  1000.000  [height mean sea level      -1.500]  lon -122.5000000
void append_text(std::string& out, const gps_posllh_t& r) {
  text_writer_t w(out);
  append_header(w, r.cls, r.id, r.length, r.iTOW, "       ", "         ");
  w.text("accuracy H ").fixed(r.hAcc, mm, 5).text("  [height above elipsoid ").fixed(r.height, mm, 7);
  w.text("]  lat ").fixed(r.lat, deg_1e7, 4).text("\n");
  w.text("accuracy V ").fixed(r.vAcc, mm, 5).text("  [height mean sea level ").fixed(r.hMSL, mm, 7);
  w.text("]  lon ").fixed(r.lon, deg_1e7, 4).text("\n");
}

// cls 1  id 7      PVT  len 92              iTOW  291023400  wed  8:50:23.400
// accuracy H     1.500  [height above elipsoid      27.240]  lat  -34.9062349
// accuracy V  1000.000 [height mean sea level      -0.500]  lon  138.6081181
// valid 37 flags 03 0a  e000     velocity  -0.009N   -0.015E        0.003D
// magnetic declination -0.05     accuracy 327.68      pDOP          1.45
// ground speed          0.017    accuracy   0.172     sat count    14
// heading of motion    31.47178  accuracy   8.76849   3 3D fix
// heading of vehicle    0.00000  nano sec -399901547  UTC 2017-07-19 08:50:05
void append_text(std::string& out, const gps_pvt_t& r) {
  text_writer_t w(out);
  append_header(w, r.cls, r.id, r.length, r.iTOW, "              ", "  ");

  w.text("accuracy H").fixed(r.hAcc, mm, 6).text(r.hAcc <= widest_accuracy_mm ? " " : "");
  w.text(" [height above elipsoid").fixed(r.height, mm, 8).text("]  lat ").fixed(r.lat, deg_1e7, 4).text("\n");

  w.text("accuracy V").fixed(r.vAcc, mm, 6).text(r.vAcc <= widest_accuracy_mm ? " " : "");
  w.text(" [height mean sea level").fixed(r.hMSL, mm, 8).text("]  lon ").fixed(r.lon, deg_1e7, 4).text("\n");

  w.text("valid ").hex(r.valid, 2).text(" flags ").hex(r.flags, 2).text(" ").hex(r.flags2, 2);
  w.text("  ").hex(r.flags3, 4).text("     velocity").fixed(r.velN, mm, 4).text("N ").fixed(r.velE, mm, 4);
  w.text("E     ").fixed(r.velD, mm, 4).text("D\n");

  w.text("magnetic declination ").fixed(r.magDec, hundredths, 2).text("     accuracy ").fixed(r.magAcc, hundredths, 3);
  w.text("      pDOP        ").fixed(r.pDOP, hundredths, 3).text("\n");

  w.text("ground speed       ").fixed(r.gSpeed, mm, 4).text("    accuracy ").fixed(r.sAcc, mm, 3);
  w.text("     sat count   ").number(r.numSV, 3).text("\n");

  const std::string_view fix = r.fixType < std::size(ubx_fix_type_text) ? ubx_fix_type_text[r.fixType] : "invalid";
  w.text("heading of motion  ").fixed(r.headMot, deg_1e5, 4).text("  accuracy ").fixed(r.headAcc, deg_1e5, 3);
  w.text("   ").number(r.fixType).text(" ").text(fix).text("\n");

  w.text("heading of vehicle ").fixed(r.headVeh, deg_1e5, 4).text("  nano sec").number(r.nano, 11);
  w.text("  UTC ").number(r.year, 4).text("-").zero_padded(r.month, 2).text("-").zero_padded(r.day, 2);
  w.text(" ").zero_padded(r.hour, 2).text(":").zero_padded(r.min, 2).text(":").zero_padded(r.sec, 2).text("\n");
}

// cls 1  id 4      DOP  len 18       iTOW  291023400         wed  8:50:23.400
// gDOP   1.56  pDOP   1.45  tDOP   0.77  vDOP   1.27  hDOP   0.91  nDOP   0.61  eDOP   0.68
void append_text(std::string& out, const gps_dop_t& r) {
  text_writer_t w(out);
  append_header(w, r.cls, r.id, r.length, r.iTOW, "       ", "         ");
  w.text("gDOP ").fixed(r.gDOP, hundredths, 3).text("  pDOP ").fixed(r.pDOP, hundredths, 3);
  w.text("  tDOP ").fixed(r.tDOP, hundredths, 3).text("  vDOP ").fixed(r.vDOP, hundredths, 3);
  w.text("  hDOP ").fixed(r.hDOP, hundredths, 3).text("  nDOP ").fixed(r.nDOP, hundredths, 3);
  w.text("  eDOP ").fixed(r.eDOP, hundredths, 3).text("\n");
}

// cls 1  id 53      SAT  len 32       iTOW  291023400         wed  8:50:23.400
// version 1  satellites   2
// gnss 0  sv   5  cno 38  elev  45  azim 123  prRes   -1.2  flags 0000001f
// gnss 6  sv   1  cno 30  elev -91  azim   0  prRes    0.3  flags 00000017
void append_text(std::string& out, const gps_sat_t& r) {
  text_writer_t w(out);
  append_header(w, r.cls, r.id, r.length, r.iTOW, "       ", "         ");
  w.text("version ").number(r.version).text("  satellites ").number(r.count, 3).text("\n");
  for (const auto& sv : r.entries) {
    w.text("gnss ").number(sv.gnssId).text("  sv ").number(sv.svId, 3).text("  cno ").number(sv.cno, 2);
    w.text("  elev ").number(sv.elev, 3).text("  azim ").number(sv.azim, 3);
    w.text("  prRes ").fixed(sv.prRes, decimetres, 4).text("  flags ").hex(sv.flags, 8).text("\n");
  }
}

// cls 1  id 67      SIG  len 24       iTOW  291023400         wed  8:50:23.400
// version 0  signals   1
// gnss 2  sv  11  sig 1  freq  0  cno 44  quality 7  prRes    0.4  flags 0029
void append_text(std::string& out, const gps_sig_t& r) {
  text_writer_t w(out);
  append_header(w, r.cls, r.id, r.length, r.iTOW, "       ", "         ");
  w.text("version ").number(r.version).text("  signals ").number(r.count, 3).text("\n");
  for (const auto& sv : r.entries) {
    w.text("gnss ").number(sv.gnssId).text("  sv ").number(sv.svId, 3).text("  sig ").number(sv.sigId);
    w.text("  freq ").number(sv.freqId, 2).text("  cno ").number(sv.cno, 2).text("  quality ").number(sv.qualityInd);
    w.text("  prRes ").fixed(sv.prRes, decimetres, 4).text("  flags ").hex(sv.sigFlags, 4).text("\n");
  }
}

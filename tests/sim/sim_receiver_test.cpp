#include "sim/sim_receiver.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "command/hex_text.h"
#include "command/typed_command.h"
#include "command/ubx_scanner.h"

namespace {

// What the simulated receiver answers to one typed command, frame by frame.
struct answers_t {
  std::vector<double> periods;
  sim_receiver_t receiver{1.0, false, [this](double p) { periods.push_back(p); }};

  std::vector<std::string> to(std::string_view typed) {
    const auto bytes = parse_typed_command(typed).command->bytes;
    const auto out = receiver.received({reinterpret_cast<const char*>(bytes.data()), bytes.size()});
    std::vector<std::string> frames;
    ubx_scanner_t scanner([&](ubx_id_t m, std::span<const std::uint8_t> p) {
      frames.push_back(ubx_name(m) + (m == ubx_mon_ver ? "" : " " + hex_text(p)));
    });
    scanner.feed({reinterpret_cast<const std::uint8_t*>(out.data()), out.size()});
    return frames;
  }
};

TEST(SimReceiver, AnswersAsAGeneration9Receiver) {
  using frames = std::vector<std::string>;
  answers_t a;
  const struct {
    const char* typed;
    frames answer;
  } cases[] = {
      {"get:CFG-MSGOUT-NMEA_ID_GGA_UART1,CFG-MSGOUT-NMEA_ID_ZDA_USB,CFG-RATE-NAV",
       {"CFG-VALGET 01 00 00 00 BB 00 91 20 01 DB 00 91 20 00 02 00 21 30 01 00", "ACK-ACK 06 8B"}},
      {"get:CFG-RATE-MEAS,CFG-SIGNAL-GPS_ENA",
       {"CFG-VALGET 01 00 00 00 01 00 21 30 E8 03 1F 00 31 10 01", "ACK-ACK 06 8B"}},
      {"set:CFG-RATE-MEAS=200,CFG-NAVSPG-DYNMODEL=4", {"ACK-ACK 06 8A"}},
      {"get:CFG-RATE-MEAS,CFG-NAVSPG-DYNMODEL",
       {"CFG-VALGET 01 00 00 00 01 00 21 30 C8 00 21 00 11 20 04", "ACK-ACK 06 8B"}},
      // One unknown key refuses the whole message: the dynamic model stays 4.
      {"set:CFG-NAVSPG-DYNMODEL=2,0x10990001=1", {"ACK-NAK 06 8A"}},
      {"get:0x10990001", {"ACK-NAK 06 8B"}},
      {"get:CFG-NAVSPG-DYNMODEL", {"CFG-VALGET 01 00 00 00 21 00 11 20 04", "ACK-ACK 06 8B"}},
      {"set:CFG-RATE-MEAS=10", {"ACK-NAK 06 8A"}},
      {"del:CFG-RATE-MEAS", {"ACK-ACK 06 8C"}},
      {"del:0x10990001", {"ACK-NAK 06 8C"}},
      {"ubx:06,8a,00010000", {"ACK-NAK 06 8A"}},
      {"rate:100", {"ACK-ACK 06 08"}},
      {"rate:100,2", {"ACK-ACK 06 08"}},
      {"set:CFG-RATE-MEAS=100", {"ACK-ACK 06 8A"}},
      {"get:CFG-RATE-NAV", {"CFG-VALGET 01 00 00 00 02 00 21 30 02 00", "ACK-ACK 06 8B"}},
      {"ubx:06,08,6400", {"ACK-NAK 06 08"}},
      {"msg:01,07,1", {"ACK-ACK 06 01"}},
      {"ubx:06,3e", {"ACK-NAK 06 3E"}},
      {"ubx:0a,04", {"MON-VER"}},
      {"ubx:01,07", {}},
      {"$PUBX,00", {}},
  };
  for (const auto& c : cases) EXPECT_EQ(a.to(c.typed), c.answer) << c.typed;
  EXPECT_EQ(a.periods, (std::vector<double>{0.2, 0.1})) << "a period only when it changes";
}

}  // namespace

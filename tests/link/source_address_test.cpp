#include "link/source_address.h"

#include <gtest/gtest.h>

namespace {

// Each address as it reads back, or the start of what is wrong with it.
TEST(source_address, reads_serial_udp_and_gpsd_addresses) {
  const struct {
    const char* url;
    const char* result;
  } cases[] = {
      {"serial:///dev/ttyACM0", "serial:///dev/ttyACM0"},
      {"serial:///dev/serial/by-id/usb-u-blox-if00?baud=38400",
       "serial:///dev/serial/by-id/usb-u-blox-if00?baud=38400"},
      {"serial:///dev/ttyUSB0?baud=38401", "takes ?baud= with one of"},
      {"serial:///dev/ttyUSB0?speed=9600", "takes ?baud= with one of"},
      {"serial://ttyUSB0", "takes serial:///dev/NAME"},
      {"serial:///", "takes serial:///dev/NAME"},
      {"udp://:10110", "udp://:10110"},
      {"udp://10110", "takes udp://:PORT"},
      {"udp://:0", "takes udp://:PORT"},
      {"udp://:", "takes udp://:PORT"},
      {"gpsd://localhost", "gpsd://localhost:2947"},
      {"gpsd://127.0.0.010:3000?raw", "gpsd://127.0.0.10:3000?raw"},
      {"gpsd://[::1]", "gpsd://[::1]:2947"},
      {"gpsd://[::1]:2948", "gpsd://[::1]:2948"},
      {"gpsd://::1", "takes gpsd://HOST[:PORT]"},
      {"gpsd://host:99999", "takes gpsd://HOST[:PORT]"},
      {"gpsd://?raw", "takes gpsd://HOST[:PORT]"},
      {"gpsd://", "takes serial://, udp:// or gpsd://"},
  };
  for (const auto& c : cases) {
    const auto parsed = parse_source_url(c.url);
    const auto got = parsed.address ? parsed.address->text() : parsed.error.substr(0, std::string(c.result).size());
    EXPECT_EQ(got, c.result) << c.url;
  }
}

}  // namespace

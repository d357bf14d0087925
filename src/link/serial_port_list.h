#pragma once

#include <string>
#include <vector>

// A serial port as a user recognises it in a list.
struct serial_port_info_t {
  std::string path;     // "/dev/ttyACM0"
  std::string by_id;    // "/dev/serial/by-id/usb-u-blox_AG_GNSS_receiver-if00"; empty when none
  std::string usb_id;   // vendor:product, "1546:01a8"; empty for a port that is not on USB
  std::string product;  // the device's product string, "u-blox GNSS receiver"; may be empty

  // The name to remember: the by-id path where there is one, which stays the same when the
  // receiver is plugged into another socket.
  const std::string& stable_path() const { return by_id.empty() ? path : by_id; }
};

// The serial ports of this machine, as the platform lists them.
class serial_port_list_t {
public:
  virtual ~serial_port_list_t() = default;
  virtual std::vector<serial_port_info_t> ports() const = 0;
};

inline constexpr const char* serial_by_id_dir = "/dev/serial/by-id";

// The link in by_id_dir that leads to the device, or empty when none does.
std::string by_id_path(const std::string& device, const std::string& by_id_dir);

#include "link/serial_link.h"

#include <cerrno>
#include <cstring>

std::string serial_error_text(std::int32_t error) {
  switch (error) {
    case EACCES:
    case EPERM:
      return "permission denied: add your user to the dialout group";
    case EBUSY:
      return "port busy: another program has opened it for itself";
    case EWOULDBLOCK:
      return "port in use: another program holds its lock";
    case ENOTTY:
      return "not a serial device";
    case ENOENT:
      return "no such device";
    case ENODEV:
      return "device removed";
    case ETIMEDOUT:
      return "no NMEA or UBX data at any baud rate";
    case EINVAL:
      return "baud rate not supported";
    default:
      return std::strerror(error);
  }
}

std::string serial_peer(const std::string& path, std::uint32_t baud) {
  return path + " at " + std::to_string(baud) + " baud";
}

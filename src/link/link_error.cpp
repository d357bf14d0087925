#include "link/link_error.h"

#include <netdb.h>

#include <cerrno>
#include <cstring>

std::string link_error_text(std::int32_t error) {
  if (error == ENODATA) return "no data for " + std::to_string(tcp_silence_limit_s) + " s";
  return error < 0 ? ::gai_strerror(error) : std::strerror(error);
}

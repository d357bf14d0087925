#pragma once

#include <cstdint>
#include <string>

// A TCP link on which no byte arrived for this long is lost: a receiver speaks at least once a second.
inline constexpr int tcp_silence_limit_s = 15;

// The text a status shows for link_down's error: the C library's text for an error number, a failed
// name lookup's text for a getaddrinfo code (negative), and "no data for 15 s" for ENODATA, which
// the TCP link reports for a peer that went silent.
std::string link_error_text(std::int32_t error);

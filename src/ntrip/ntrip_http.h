#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "ntrip/ntrip_address.h"

// The request for a mountpoint's stream, or with an empty mountpoint for the caster's source table.
// It asks in NTRIP 2.0 (HTTP/1.1 with Ntrip-Version), which NTRIP 1.0 casters answer in their own
// way ("ICY 200 OK"); credentials go in a Basic Authorization header.
std::string ntrip_request(const ntrip_address_t& address);

std::string base64(std::string_view text);

// What the caster's answer head says.
struct ntrip_answer_t {
  enum class kind_t {
    incomplete,   // the head has not all arrived yet
    stream,       // the mountpoint's data follows
    sourcetable,  // the source table follows
    refused,      // an error the user must act on; text says which
  };
  kind_t kind = kind_t::incomplete;
  std::size_t head_size = 0;  // bytes of the head; the body starts after them
  bool chunked = false;       // the body comes in HTTP/1.1 chunks
  bool version2 = false;      // an HTTP/1.1 answer, not ICY
  std::string text;           // for refused: "401: user name or password refused", ...
};

inline constexpr std::size_t ntrip_head_limit = 8192;  // bytes of an answer head; real ones are far shorter

// Reads the answer head at the start of `received`, the bytes since the request. mountpoint names
// what was asked for (empty for the source table), for the texts.
ntrip_answer_t read_ntrip_answer(std::string_view received, std::string_view mountpoint);

// Undoes HTTP/1.1 chunked transfer coding: chunk sizes in hex (extensions ignored), each chunk's
// data and CRLF, up to the last chunk of size 0, after which ended() holds and the trailer is
// ignored. A malformed size line or chunk end makes failed() hold: the caller drops the connection.
class chunked_decoder_t {
public:
  static constexpr std::size_t size_line_limit = 64;

  // Appends the data in bytes to out.
  void feed(std::span<const std::uint8_t> bytes, std::vector<std::uint8_t>& out);
  bool failed() const { return state_ == state_t::failed; }
  bool ended() const { return state_ == state_t::ended; }

private:
  enum class state_t { size, data, data_cr, data_lf, ended, failed };
  void size_byte(std::uint8_t b);

  state_t state_ = state_t::size;
  std::string line_;
  std::size_t left_ = 0;
};

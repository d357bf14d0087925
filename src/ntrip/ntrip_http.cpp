#include "ntrip/ntrip_http.h"

#include <cctype>
#include <charconv>

namespace {

constexpr std::string_view user_agent = "NTRIP Korvid/0.1";

std::string lower(std::string_view text) {
  std::string out(text);
  for (auto& c : out) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  return out;
}

// The value of a header line in the head, case-insensitive by name; empty when absent.
std::string header(std::string_view head, std::string_view name) {
  const auto low = lower(head);
  const auto key = "\r\n" + lower(name) + ":";
  const auto at = low.find(key);
  if (at == std::string::npos) return {};
  auto start = at + key.size();
  const auto end = low.find("\r\n", start);
  while (start < end && low[start] == ' ') ++start;
  return low.substr(start, end - start);
}

ntrip_answer_t refused(std::string text) {
  return {ntrip_answer_t::kind_t::refused, 0, false, false, std::move(text)};
}

std::string printable(std::string_view text) {
  std::string out;
  for (const char c : text.substr(0, 40)) out += c >= ' ' && c <= '~' ? c : '?';
  return out;
}

}  // namespace

std::string base64(std::string_view text) {
  static constexpr char alphabet[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  std::string out;
  std::size_t i = 0;
  for (; i + 2 < text.size(); i += 3) {
    const auto n = (static_cast<unsigned char>(text[i]) << 16) | (static_cast<unsigned char>(text[i + 1]) << 8) |
                   static_cast<unsigned char>(text[i + 2]);
    for (int shift = 18; shift >= 0; shift -= 6) out += alphabet[(n >> shift) & 63];
  }
  if (const auto left = text.size() - i; left > 0) {
    const unsigned n =
        (static_cast<unsigned char>(text[i]) << 16) | (left == 2 ? static_cast<unsigned char>(text[i + 1]) << 8 : 0u);
    out += alphabet[(n >> 18) & 63];
    out += alphabet[(n >> 12) & 63];
    out += left == 2 ? alphabet[(n >> 6) & 63] : '=';
    out += '=';
  }
  return out;
}

std::string ntrip_request(const ntrip_address_t& address) {
  std::string r = "GET /" + address.mountpoint + " HTTP/1.1\r\n";
  r += "Host: " + address.caster() + "\r\n";
  r += "Ntrip-Version: Ntrip/2.0\r\n";
  r += "User-Agent: " + std::string(user_agent) + "\r\n";
  if (!address.user.empty()) r += "Authorization: Basic " + base64(address.user + ":" + address.password) + "\r\n";
  r += "Connection: close\r\n\r\n";
  return r;
}

ntrip_answer_t read_ntrip_answer(std::string_view received, std::string_view mountpoint) {
  const auto line_end = received.find("\r\n");
  if (line_end == std::string_view::npos) {
    if (received.size() >= ntrip_head_limit) return refused("the caster's answer has no end of line");
    return {};
  }
  const auto status_line = received.substr(0, line_end);
  // An NTRIP 1.0 caster's stream follows its one status line at once.
  if (status_line == "ICY 200 OK") {
    std::size_t head = line_end + 2;
    if (received.substr(head, 2) == "\r\n") head += 2;
    return {ntrip_answer_t::kind_t::stream, head, false, false, {}};
  }
  const bool sourcetable_line = status_line.starts_with("SOURCETABLE 200");
  const bool http = status_line.starts_with("HTTP/1.");
  if (!http && !sourcetable_line) return refused("not an NTRIP caster: it answered '" + printable(status_line) + "'");

  int status = 200;
  std::string reason = "OK";
  if (http) {
    const auto code = status_line.substr(std::min<std::size_t>(9, status_line.size()));
    const auto [ptr, ec] = std::from_chars(code.data(), code.data() + code.size(), status);
    if (ec != std::errc() || ptr != code.data() + 3)
      return refused("not an NTRIP caster: it answered '" + printable(status_line) + "'");
    reason = std::string(code.substr(std::min<std::size_t>(4, code.size())));
  }
  // A refusal is told by its status line alone: some casters close the connection right after it.
  if (status == 401) return refused("401: user name or password refused");
  if (status == 404)
    return refused(mountpoint.empty() ? "404: no source table on this caster"
                                      : "404: no mountpoint " + std::string(mountpoint) + " on this caster");
  if (status != 200) {
    const std::string what = mountpoint.empty() ? "the source table" : "mountpoint " + std::string(mountpoint);
    return refused(std::to_string(status) + ": " + printable(reason) + " (asking for " + what + ")");
  }

  const auto end = received.find("\r\n\r\n");
  if (end == std::string_view::npos) {
    if (received.size() >= ntrip_head_limit) return refused("the caster's answer head is too long");
    return {};
  }
  const auto head = received.substr(0, end + 2);
  const bool table = sourcetable_line || header(head, "Content-Type") == "gnss/sourcetable";
  // A caster answers a mountpoint it does not have with its source table.
  if (table && !mountpoint.empty()) return refused("404: no mountpoint " + std::string(mountpoint) + " on this caster");
  ntrip_answer_t a;
  a.kind = table ? ntrip_answer_t::kind_t::sourcetable : ntrip_answer_t::kind_t::stream;
  a.head_size = end + 4;
  a.chunked = header(head, "Transfer-Encoding") == "chunked";
  a.version2 = http;
  return a;
}

void chunked_decoder_t::feed(std::span<const std::uint8_t> bytes, std::vector<std::uint8_t>& out) {
  for (std::size_t i = 0; i < bytes.size() && state_ != state_t::failed;) {
    const auto b = bytes[i];
    switch (state_) {
      case state_t::size:
        size_byte(b);
        ++i;
        break;
      case state_t::data: {
        const auto n = std::min(left_, bytes.size() - i);
        out.insert(out.end(), bytes.begin() + static_cast<std::ptrdiff_t>(i),
                   bytes.begin() + static_cast<std::ptrdiff_t>(i + n));
        i += n;
        left_ -= n;
        if (left_ == 0) state_ = state_t::data_cr;
        break;
      }
      case state_t::data_cr:
        state_ = b == '\r' ? state_t::data_lf : state_t::failed;
        ++i;
        break;
      case state_t::data_lf:
        state_ = b == '\n' ? state_t::size : state_t::failed;
        ++i;
        break;
      case state_t::ended:  // the trailer after the last chunk carries nothing for us
      case state_t::failed:
        ++i;
        break;
    }
  }
}

// A size line: hex digits, perhaps ";extension", then CRLF.
void chunked_decoder_t::size_byte(std::uint8_t b) {
  if (b != '\n') {
    if (line_.size() >= size_line_limit) state_ = state_t::failed;
    line_.push_back(static_cast<char>(b));
    return;
  }
  std::string_view line(line_);
  if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
  line = line.substr(0, line.find(';'));
  std::size_t size = 0;
  const auto [ptr, ec] = std::from_chars(line.data(), line.data() + line.size(), size, 16);
  line_.clear();
  if (line.empty() || ec != std::errc() || ptr != line.data() + line.size() || size > 0xFFFFFF) {
    state_ = state_t::failed;
    return;
  }
  left_ = size;
  state_ = size == 0 ? state_t::ended : state_t::data;
}

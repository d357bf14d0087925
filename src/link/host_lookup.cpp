#include "link/host_lookup.h"

#include <netdb.h>

#include <cerrno>
#include <chrono>
#include <condition_variable>
#include <cstring>
#include <memory>
#include <mutex>
#include <thread>

namespace {

struct lookup_t {
  std::mutex mutex;
  std::condition_variable cv;
  bool done = false;
  host_addresses_t result;
};

host_addresses_t get_addresses(const std::string& name, std::uint16_t port) {
  addrinfo hints{};
  hints.ai_family = AF_UNSPEC;
  hints.ai_socktype = SOCK_STREAM;
  hints.ai_flags = AI_NUMERICSERV;
  addrinfo* list = nullptr;
  host_addresses_t out;
  const int code = ::getaddrinfo(name.c_str(), std::to_string(port).c_str(), &hints, &list);
  if (code != 0) {
    out.error = code == EAI_SYSTEM ? errno : code;
    return out;
  }
  for (const addrinfo* a = list; a != nullptr; a = a->ai_next) {
    socket_address_t address;
    address.family = a->ai_family;
    address.length = a->ai_addrlen;
    std::memcpy(&address.storage, a->ai_addr, a->ai_addrlen);
    out.addresses.push_back(address);
  }
  ::freeaddrinfo(list);
  return out;
}

}  // namespace

std::optional<host_addresses_t> look_up(const std::string& name, std::uint16_t port, int poll_ms,
                                        const std::function<bool()>& stay) {
  auto lookup = std::make_shared<lookup_t>();
  std::thread([lookup, name, port] {
    auto result = get_addresses(name, port);
    std::lock_guard lock(lookup->mutex);
    lookup->result = std::move(result);
    lookup->done = true;
    lookup->cv.notify_all();
  }).detach();
  std::unique_lock lock(lookup->mutex);
  while (!lookup->cv.wait_for(lock, std::chrono::milliseconds(poll_ms), [&] { return lookup->done; }))
    if (!stay()) return std::nullopt;
  return std::move(lookup->result);
}

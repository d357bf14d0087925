#include "sim/sim_server.h"

#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <string>
#include <thread>

namespace {

// Echoes what a client sends, upper-cased, so the test sees that input reached it and that the
// answer went back.
struct shouting_input_t final : sim_input_t {
  std::string received(std::string_view bytes) override {
    std::string answer(bytes);
    for (auto& c : answer) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    return answer;
  }
};

TEST(sim_server, answers_what_a_client_sends_among_the_pieces) {
  sim_server_t server({.port = 0, .period_s = 0.02, .duration_s = 5.0});
  ASSERT_TRUE(server.listen());
  shouting_input_t input;
  std::atomic<bool> stop = false;
  std::thread serving([&] { server.run([] { return std::string("."); }, stop, {&input}); });

  const int fd = ::socket(AF_INET, SOCK_STREAM, 0);
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_port = htons(server.port());
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  ASSERT_EQ(::connect(fd, reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
  ASSERT_EQ(::send(fd, "poll", 4, 0), 4);
  std::string seen;
  char buffer[256];
  while (seen.find("POLL") == std::string::npos || seen.find('.') == std::string::npos) {
    const auto n = ::recv(fd, buffer, sizeof buffer, 0);
    if (n <= 0) break;
    seen.append(buffer, static_cast<std::size_t>(n));
  }
  ::close(fd);
  stop = true;
  serving.join();
  EXPECT_NE(seen.find("POLL"), std::string::npos) << seen;
  EXPECT_NE(seen.find('.'), std::string::npos) << "the stream goes on beside the answers";
}

}  // namespace

#include "link/receiver_console.h"

#include <gtest/gtest.h>

#include "command/hex_text.h"
#include "support/fake_links.h"
#include "support/link_feed.h"
#include "support/recording_console.h"
#include "support/test_queue.h"

namespace {

class console_test : public ::testing::Test {
protected:
  void SetUp() override { hub.connect_tcp("127.0.0.1", 10110); }
  void up() {
    links.tcp->is_valid = true;
    hub.tcp_events().link_up("127.0.0.1:10110");
  }
  void answer(ubx_id_t message, const std::vector<std::uint8_t>& payload) {
    hub.tcp_events().link_bytes(ubx_frame(message, payload));
  }
  std::vector<std::string> sent() const {
    std::vector<std::string> out;
    for (const auto& bytes : links.tcp->sent) out.push_back(hex_text(bytes));
    return out;
  }
  std::vector<std::string> answers() const {
    std::vector<std::string> out;
    for (std::size_t i = 0; i < commands.answers->size(); ++i) out.push_back((*commands.answers)[i]);
    return out;
  }

  test_queue_t queue;
  recording_console_t console;
  fake_links_t links;
  connection_t hub{queue, console, links};
  receiver_console_t commands{hub, queue, console};
};

TEST_F(console_test, SendsWhatWaitedForTheLinkAfterTheIdentityPollAndShowsEachAnswer) {
  EXPECT_EQ(commands.send("rate:200"), "");
  EXPECT_EQ(commands.send("ubx:6"), "ubx: needs CLASS,ID[,PAYLOAD] in hex, such as ubx:06,08,c80001000100");
  EXPECT_TRUE(links.tcp->sent.empty());
  up();
  EXPECT_EQ(sent(), (std::vector<std::string>{"B5 62 0A 04 00 00 0E 34", "B5 62 06 08 06 00 C8 00 01 00 01 00 DE 6A"}));
  answer(ubx_mon_ver, mon_ver_payload({"SIM 1.0", "0001", {"MOD=SIM"}}));
  answer(ubx_ack_nak, {0x06, 0x08});
  EXPECT_EQ(commands.identity.get(), "SIM 1.0, 0001, MOD=SIM");
  EXPECT_EQ(answers(), (std::vector<std::string>{"12:00:00  sent MON-VER", "12:00:00  sent CFG-RATE 200 ms, 1",
                                                 "12:00:00  MON-VER  answered: SIM 1.0, 0001, MOD=SIM",
                                                 "12:00:00  CFG-RATE 200 ms, 1  refused"}));
  EXPECT_EQ(console.lines.back(), "2026-01-01 12:00:00 +0000  CFG-RATE 200 ms, 1  refused");
  EXPECT_EQ(hub.arr_rx->back(), "2026-01-01 12:00:00 +0000  sent CFG-RATE 200 ms, 1");
  hub.disconnect();
  EXPECT_EQ(commands.send("$PUBX,00"), "");
  EXPECT_EQ(console.lines.back(), "2026-01-01 12:00:00 +0000  no link to send $PUBX,00*33");
}

TEST_F(console_test, ASilentUserOfAReceiverOfSentencesSendsNothingUntilItSpeaksUbx) {
  up();
  feed_line(hub.tcp_events(), "$GPGGA,123519,4807.038,N,01131.000,E,1,08,0.9,545.4,M,46.9,M,,*47");
  EXPECT_TRUE(links.tcp->sent.empty());
  answer(ubx_ack_ack, {0x06, 0x8A});
  answer(ubx_ack_ack, {0x06, 0x8A});
  EXPECT_EQ(sent(), std::vector<std::string>{"B5 62 0A 04 00 00 0E 34"}) << "asked once";
}

TEST_F(console_test, AReadOnlyLinkIsSentNothingNotEvenTheIdentityPoll) {
  commands.set_read_only(true);
  up();
  EXPECT_EQ(commands.send("$PUBX,00"), "the link is read-only: nothing is sent");
  answer(ubx_ack_ack, {0x06, 0x8A});
  EXPECT_TRUE(links.tcp->sent.empty());
  EXPECT_EQ(console.lines.back(), "2026-01-01 12:00:00 +0000  read-only link: not sent $PUBX,00*33");
}

}  // namespace

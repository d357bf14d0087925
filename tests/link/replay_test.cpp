#include "link/replay.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <string>

#include "support/recording_link_events.h"

namespace {

// A stream replays in chunks of the given size, the last one shorter, whatever the read block.
TEST(replay_stream, reports_the_stream_in_chunks_of_the_given_size) {
  std::string capture(300 * 1024 + 5, 'x');
  for (std::size_t i = 0; i < capture.size(); ++i) capture[i] = static_cast<char>('a' + i % 26);
  for (const std::size_t chunk : {std::size_t{1}, std::size_t{7}, std::size_t{2047}, capture.size() + 1}) {
    std::FILE* stream = fmemopen(capture.data(), capture.size(), "rb");
    ASSERT_NE(stream, nullptr);
    recording_link_events_t link;
    EXPECT_TRUE(replay_stream(stream, chunk, link)) << chunk;
    std::fclose(stream);
    EXPECT_EQ(link.received, capture) << chunk;
    EXPECT_EQ(link.chunks, (capture.size() + chunk - 1) / chunk) << chunk;
    EXPECT_TRUE(link.events.empty()) << "a replay connects nothing";
  }
  recording_link_events_t link;
  EXPECT_FALSE(replay_stream(stdin, 0, link)) << "a chunk size of 0 reads nothing";
}

}  // namespace

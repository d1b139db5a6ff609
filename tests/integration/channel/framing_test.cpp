// SPDX-License-Identifier: GPL-3.0-or-later
#include <gtest/gtest.h>

#include <vector>

#include "adapters/channel/message_link.h"
#include "platform/data_exchange.h"

namespace orven::test {
namespace {

using Messages = std::vector<std::string>;

/// What comes out when `stream` arrives in pieces of `size` bytes.
Messages Read(MessageReader& reader, const std::string& stream, std::size_t size) {
  Messages messages;
  for (std::size_t at = 0; at < stream.size(); at += size) {
    reader.Add(std::string_view(stream).substr(at, size));
    while (auto message = reader.Next()) messages.push_back(*message);
  }
  return messages;
}

TEST(MessageFraming, MessagesSurviveEverySplitOfTheStream) {
  const Messages sent = {"GVC:", "", "Say:line\r\nline\nZoë 😀", std::string(300, 'x'),
                         std::string("a\0b", 3)};
  std::string stream;
  for (const auto& message : sent) stream += Framed(message);
  for (std::size_t size = 1; size <= stream.size(); ++size) {
    MessageReader reader;
    EXPECT_EQ(Read(reader, stream, size), sent) << size;
    EXPECT_FALSE(reader.Broken());
  }
  MessageReader reader;
  EXPECT_EQ(Read(reader, Framed(std::string(DataExchange::kLongestMessage, 'y')), 65'536).size(), 1U);
}

TEST(MessageFraming, GarbageBreaksTheStreamForEver) {
  const std::string garbage[] = {std::string("\x00\x10\x00\x01", 4), "\xff\xff\xff\xff", Framed("\xc3"),
                                 Framed("\xed\xa0\x80"), "GET / HTTP/1.1\r\n\r\n"};
  for (const auto& bytes : garbage) {
    MessageReader reader;
    EXPECT_EQ(Read(reader, Framed("before") + bytes + Framed("after"), 7), Messages{"before"});
    EXPECT_TRUE(reader.Broken());
  }
}

}  // namespace
}  // namespace orven::test

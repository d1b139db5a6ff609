// SPDX-License-Identifier: GPL-3.0-or-later
// The parts of the line that need no network: order of packets, key presses, caller names.
#include <gtest/gtest.h>

#include <numeric>

#include "adapters/line/sip/caller_identity.h"
#include "adapters/line/sip/digits.h"
#include "adapters/line/sip/jitter_buffer.h"
#include "adapters/line/sip/media_agreement.h"
#include "integration/line/sip/test_audio.h"

namespace orven::test {
namespace {

using std::chrono::milliseconds;

/// Block number n of a sound in which no two blocks near each other are alike.
Samples Block(int n) {
  Samples block(kBlockSamples);
  std::iota(block.begin(), block.end(), static_cast<std::int16_t>(1000 + n % 150 * kBlockSamples));
  return block;
}

/// A stream played out block by block; packets are pushed just before the pull they arrive for.
struct Stream {
  void Arrive(int n, std::uint32_t ssrc = 1, std::uint32_t offset = 0) {
    playout.Push(ssrc, offset + static_cast<std::uint32_t>(n * kBlockSamples), Block(n));
  }
  /// Plays a block and notes its number when it is one unchanged.
  void Pull() {
    Samples block(kBlockSamples);
    playout.Pull(block);
    ++pulled;
    const int n = (block[0] - 1000) / kBlockSamples;
    if (block == Block(n)) heard.push_back(n);
  }
  void Drain() {
    while (!playout.Empty()) Pull();
  }

  Playout playout;
  std::vector<int> heard;
  int pulled = 0;
};

std::vector<int> Numbers(int first, int last) {
  std::vector<int> numbers(static_cast<std::size_t>(last - first + 1));
  std::iota(numbers.begin(), numbers.end(), first);
  return numbers;
}

TEST(PlayoutTest, OrdersPacketsDropsDoublesAndPlaysLateOnes) {
  Stream stream;
  for (const int n : {0, 2, 1, 1, 4, 3, 5, 5, 0}) {
    stream.Arrive(n);
    stream.Pull();
  }
  for (int i = 0; i < 5; ++i) stream.Pull();  // the network stalls, then brings everything at once
  for (int n = 6; n < 12; ++n) stream.Arrive(n);
  stream.Drain();
  std::vector<int> expected = Numbers(0, 11);
  std::erase(expected, 6);  // blended with what was made up before it
  EXPECT_EQ(stream.heard, expected);
}

TEST(PlayoutTest, ConcealsLossForExactlyItsLength) {
  Stream stream;
  for (int n = 0; n < 20; ++n) {
    if (n != 8 && n != 9) stream.Arrive(n);
    stream.Pull();
  }
  stream.Drain();
  std::vector<int> expected = Numbers(0, 19);
  std::erase_if(expected, [](int n) { return n >= 8 && n <= 10; });
  EXPECT_EQ(stream.heard, expected);
  EXPECT_EQ(stream.pulled, 22) << "20 blocks after the two of the wait at the beginning";
}

TEST(PlayoutTest, ALossOfOneSampleIsMadeUpWithinTheBlock) {
  Stream stream;
  stream.Pull();  // from now on there is room for one block and no more: writing behind it damages the heap
  Samples most = Block(0);
  most.pop_back();
  stream.playout.Push(1, 0, most);
  for (int n = 1; n < 4; ++n) stream.Arrive(n);
  for (int n = 0; n < 4; ++n) stream.Pull();
  EXPECT_EQ(stream.heard, Numbers(2, 3)) << "the first blends with what was made up before it";
  EXPECT_TRUE(stream.playout.Empty());
}

TEST(PlayoutTest, ContinuesWhenTheSenderStartsOver) {
  Stream stream;
  for (int n = 0; n < 20; ++n) {
    if (n < 10) stream.Arrive(n, 1, 0xFFFFFD00);  // the timestamps wrap on the way
    if (n >= 10) stream.Arrive(n, 2, 77'000'000);
    stream.Pull();
  }
  stream.Drain();
  EXPECT_EQ(stream.heard, Numbers(0, 19));
}

TEST(PlayoutTest, LimitsTheDelayThatAFasterSenderBuildsUp) {
  Stream stream;
  int next = 0;
  for (int i = 0; i < 3000; ++i) {
    stream.Arrive(next++);
    if (i < 150 && i % 10 == 0) stream.Arrive(next++);
    stream.Pull();
  }
  const int before = stream.pulled;
  stream.Drain();
  EXPECT_LE(stream.pulled - before, 10);
}

TEST(MediaNegotiationTest, WhatIsRefusedChangesNothing) {
  sa local{};
  ASSERT_EQ(sa_set_str(&local, "127.0.0.1", 4000), 0);
  MediaNegotiation negotiation(local, SrtpUse::kIfOffered);
  const auto read = [&](const std::string& media, bool is_offer = true) {
    return negotiation.Read("v=0\r\ns=-\r\nc=IN IP6 ::1\r\n" + media, is_offer, local);
  };
  const auto offer = [&negotiation] {
    const LibrePtr<mbuf> text = negotiation.Write(true);
    return std::string(reinterpret_cast<const char*>(text->buf), text->end);
  };
  const auto agreed = read("o=- 1 1 IN IP4 0.0.0.0\r\nm=audio 0 RTP/AVP 0\r\nm=audio 4002/2 RTP/AVP 0\r\n");
  ASSERT_TRUE(agreed && agreed->send) << "only where the sound goes may say that the call is on hold";
  EXPECT_EQ(AddressText(agreed->peer), "127.0.0.1:4002") << "no way to the one that was told: the sender's";
  EXPECT_FALSE(read("m=audio 0 RTP/AVP 0\r\nm=audio 4002 RTP/AVP 18\r\n"));
  EXPECT_FALSE(read("m=audio 0 RTP/AVP 0\r\nm=audio 4002 RTP/SAVP 0\r\n", false))
      << "the answer demands what was not offered";
  EXPECT_NE(offer().find("m=audio 0 RTP/AVP 0\r\nm=audio 4000 RTP/AVP 0"), std::string::npos) << offer();
}

TEST(DigitMergerTest, AKeyHeldForSecondsIsOnePress) {
  DigitMerger merger;
  const DigitMerger::Time start{};
  EXPECT_TRUE(merger.Report(DigitSource::kTelephoneEvent, '5', start));
  for (int at = 50; at <= 3000; at += 50) {
    merger.Held(DigitSource::kTelephoneEvent, start + milliseconds(at));
    if (at == 150 || at == 2000) {  // the tone broke off once and was heard anew
      EXPECT_FALSE(merger.Report(DigitSource::kInBand, '5', start + milliseconds(at)));
    }
  }
  EXPECT_FALSE(merger.Report(DigitSource::kInfo, '5', start + milliseconds(3400)));
  EXPECT_TRUE(merger.Report(DigitSource::kTelephoneEvent, '5', start + milliseconds(3600)));
}

TEST(KeyPaceTest, LetsAPersonThroughAndSlowsAMachine) {
  KeyPace pace;
  auto now = KeyPace::Time() + std::chrono::hours(1);
  for (int key = 0; key < 20; ++key, now += milliseconds(80)) EXPECT_TRUE(pace.Allows(now));
  for (int key = 0; key < 8; ++key)
    EXPECT_TRUE(pace.Allows(now)) << "a stalled network brings several at once";
  int allowed = 0;
  for (int key = 0; key < 6000; ++key, now += milliseconds(1)) allowed += pace.Allows(now) ? 1 : 0;
  EXPECT_LE(allowed, 110) << "of 6000 in six seconds";
}

TEST(CallerIdentityTest, ReadsWhatNetworksSend) {
  struct Case {
    std::vector<std::string_view> asserted;
    std::string_view from;
    std::string_view privacy;
    std::string_view caller;
  };
  const std::string_view other = "\"From\" <sip:1@h>;tag=x";
  for (const Case& one : std::vector<Case>{
           {{},
            R"("Ann \"A\" O'Neil, <x>" <sip:%2B49301;phone-context=d@h:5060>)",
            "",
            "Ann \"A\" O'Neil, <x>|+49301"},
           {{}, "Ann Smith <sip:ann:secret@h>", "", "Ann Smith|ann"},
           {{}, "sip:100@h;tag=abc", "", "|100"},
           {{"\"Office\" <sip:777@h>"}, other, "", "Office|777"},
           {{"<tel:+1-201-555-0123;x=y>", "\"Office\" <sip:777@h>"}, other, "", "Office|+12015550123"},
           {{"garbage"}, other, "", "From|1"},
           {{"\"Ann\" <sip:1@h>"}, "<sip:anonymous@anonymous.invalid>", "none", "Ann|1"},
           {{"\"Ann\" <sip:1@h>"}, "<sip:1@h>", "critical; id", "|"},
           {{}, "\"Anonymous\" <sip:anonymous@anonymous.invalid>", "", "|"},
           {{}, "<sip:x@anonymous.invalid:5060>", "", "|"},
           {{}, "Anonymous <sip:123@h>", "", "|"},
           {{}, "", "", "|"},
           {{}, "\"", "", "|"},
           {{}, "\"unended\\", "", "unended\\|"},
           {{}, "\"J\xC3\xBCrgen\" <sip:%C3%BC@h>", "", "J\xC3\xBCrgen|\xC3\xBC"},
           {{}, "\"J\xFCrgen\" <sip:%FC@h>", "", "J\xC3\xBCrgen|\xC3\xBC"},
           {{}, "\"\xED\xA0\x80\" <sip:%G1%4@h>", "", "\xC3\xAD\xC2\xA0\xC2\x80|%G1%4"}}) {
    const CallerIdentity caller = Identify({one.asserted, one.from, one.privacy});
    EXPECT_EQ(caller.name + "|" + caller.number, one.caller) << one.from;
  }
}

}  // namespace
}  // namespace orven::test

// SPDX-License-Identifier: GPL-3.0-or-later
// The parts of the line that need no network: order of packets, key presses, caller names.
#include <gtest/gtest.h>

#include <numeric>

#include "adapters/line/sip/caller_identity.h"
#include "adapters/line/sip/digit_merger.h"
#include "adapters/line/sip/info_digit.h"
#include "adapters/line/sip/playout.h"
#include "adapters/line/sip/rtp_packet.h"
#include "adapters/line/sip/telephone_events.h"
#include "integration/line/sip/test_audio.h"

namespace orven::test {
namespace {

using std::chrono::milliseconds;
using Samples = std::vector<std::int16_t>;

constexpr DigitMerger::Time kStart{};

/// Block number n of a sound in which no two samples near each other are alike.
Samples Block(int n) {
  Samples block(kBlockSamples);
  std::iota(block.begin(), block.end(), static_cast<std::int16_t>(1000 + n * kBlockSamples));
  return block;
}

/// A stream played out block by block; packets are pushed just before the pull they arrive for.
class Stream {
 public:
  void Arrive(int n, std::uint32_t ssrc = 1, std::uint32_t offset = 0) {
    playout_.Push(ssrc, offset + static_cast<std::uint32_t>(n * kBlockSamples), Block(n));
  }
  void Pull(int blocks = 1) {
    for (int i = 0; i < blocks; ++i) {
      Samples block(kBlockSamples);
      playout_.Pull(block);
      heard_.insert(heard_.end(), block.begin(), block.end());
    }
  }
  void Drain() {
    while (!playout_.Empty()) Pull();
  }
  /// Numbers of the blocks heard unchanged, in order.
  std::vector<int> Heard() const {
    std::vector<int> numbers;
    for (std::size_t i = 0; i + kBlockSamples <= heard_.size(); i += kBlockSamples) {
      const int n = (heard_[i] - 1000) / kBlockSamples;
      if (heard_[i] >= 1000 &&
          Samples(heard_.begin() + static_cast<std::ptrdiff_t>(i),
                  heard_.begin() + static_cast<std::ptrdiff_t>(i) + kBlockSamples) == Block(n)) {
        numbers.push_back(n);
      }
    }
    return numbers;
  }
  std::size_t Blocks() const { return heard_.size() / kBlockSamples; }

 private:
  Playout playout_;
  Samples heard_;
};

std::vector<int> Numbers(int first, int last) {
  std::vector<int> numbers(static_cast<std::size_t>(last - first + 1));
  std::iota(numbers.begin(), numbers.end(), first);
  return numbers;
}

TEST(PlayoutTest, PutsPacketsThatOvertookEachOtherInOrderAndDropsDoubles) {
  Stream stream;
  for (const int n : {0, 2, 1, 1, 4, 3, 5, 5}) {
    stream.Arrive(n);
    stream.Pull();
  }
  stream.Drain();
  EXPECT_EQ(stream.Heard(), Numbers(0, 5));
}

TEST(PlayoutTest, ConcealsLossForExactlyItsLength) {
  Stream stream;
  for (int n = 0; n < 20; ++n) {
    if (n != 8 && n != 9) stream.Arrive(n);
    stream.Pull();
  }
  stream.Drain();
  // The block after a loss is blended with what was made up, so it is not quite itself.
  std::vector<int> expected = Numbers(0, 7);
  const std::vector<int> rest = Numbers(11, 19);
  expected.insert(expected.end(), rest.begin(), rest.end());
  EXPECT_EQ(stream.Heard(), expected);
  EXPECT_EQ(stream.Blocks(), 22U) << "20 blocks after the two of the wait at the beginning";
}

TEST(PlayoutTest, PlaysSoundThatCameLateInsteadOfLosingIt) {
  Stream stream;
  for (int n = 0; n < 10; ++n) {
    stream.Arrive(n);
    stream.Pull();
  }
  stream.Pull(6);  // the network stalls, then brings everything at once
  for (int n = 10; n < 16; ++n) stream.Arrive(n);
  for (int n = 16; n < 30; ++n) {
    stream.Arrive(n);
    stream.Pull();
  }
  stream.Drain();
  const std::vector<int> heard = stream.Heard();
  EXPECT_EQ(heard.front(), 0);
  EXPECT_EQ(heard.back(), 29);
  EXPECT_GE(heard.size(), 29U) << "only the block after the stall may be blended";
}

TEST(PlayoutTest, ContinuesWhenTheSenderStartsOver) {
  Stream stream;
  for (int n = 0; n < 10; ++n) {
    stream.Arrive(n, 1, 0xFFFFFD00);  // the timestamps wrap on the way
    stream.Pull();
  }
  for (int n = 10; n < 20; ++n) {
    stream.Arrive(n, 2, 77'000'000);
    stream.Pull();
  }
  stream.Drain();
  EXPECT_EQ(stream.Heard(), Numbers(0, 19));
}

TEST(PlayoutTest, SilenceCostsNoTimeAndIsSilent) {
  Stream stream;
  stream.Pull(10);
  for (int n = 0; n < 4; ++n) stream.Arrive(n);
  stream.Pull(50);  // a second of nothing: the sender saves packets while nobody speaks
  for (int n = 50; n < 54; ++n) {
    stream.Arrive(n);
    stream.Pull();
  }
  stream.Drain();
  EXPECT_EQ(stream.Heard(), (std::vector<int>{0, 1, 2, 3, 50, 51, 52, 53}));
  EXPECT_LE(stream.Blocks(), 68U);
}

TEST(PlayoutTest, LimitsTheDelayThatAFasterSenderBuildsUp) {
  Stream stream;
  int next = 0;
  for (int i = 0; i < 150; ++i) {  // one block in ten too many
    stream.Arrive(next++);
    if (i % 10 == 0) stream.Arrive(next++);
    stream.Pull();
  }
  for (int i = 0; i < 3000; ++i) {
    stream.Arrive(next++ % 190);
    stream.Pull();
  }
  const std::size_t before = stream.Blocks();
  stream.Drain();
  EXPECT_LE(stream.Blocks() - before, 10U);
}

TEST(DigitMergerTest, TellsEachPressOnceWhicheverWaysItComes) {
  DigitMerger merger;
  std::string told;
  const auto report = [&](DigitSource source, char digit, int at) {
    if (merger.Report(source, digit, kStart + milliseconds(at))) told += digit;
  };
  report(DigitSource::kTelephoneEvent, '1', 0);
  report(DigitSource::kInBand, '1', 120);
  report(DigitSource::kTelephoneEvent, '1', 200);  // the same key again, quickly
  report(DigitSource::kInfo, '1', 250);
  report(DigitSource::kInBand, '1', 320);
  report(DigitSource::kInfo, '1', 420);
  EXPECT_EQ(told, "11");
  report(DigitSource::kInBand, '2', 600);
  report(DigitSource::kInBand, '2', 800);
  report(DigitSource::kInfo, '#', 5000);
  EXPECT_EQ(told, "1122#");
}

TEST(DigitMergerTest, AKeyHeldForSecondsIsOnePress) {
  DigitMerger merger;
  EXPECT_TRUE(merger.Report(DigitSource::kTelephoneEvent, '5', kStart));
  for (int at = 50; at <= 3000; at += 50) {
    merger.Held(DigitSource::kTelephoneEvent, kStart + milliseconds(at));
    if (at == 150 || at == 2000) {  // the tone broke off once and was heard anew
      EXPECT_FALSE(merger.Report(DigitSource::kInBand, '5', kStart + milliseconds(at)));
    }
  }
  EXPECT_FALSE(merger.Report(DigitSource::kInfo, '5', kStart + milliseconds(3400)));
  EXPECT_TRUE(merger.Report(DigitSource::kTelephoneEvent, '5', kStart + milliseconds(3600)));
}

/// Feeds event packets and gives the keys pressed.
class EventReader {
 public:
  void Take(std::uint32_t timestamp, bool marker, std::uint8_t code, bool end, std::uint16_t duration,
            std::uint32_t ssrc = 1) {
    now_ += milliseconds(20);
    const std::vector<std::uint8_t> payload{code, static_cast<std::uint8_t>(end ? 0x8A : 0x0A),
                                            static_cast<std::uint8_t>(duration >> 8),
                                            static_cast<std::uint8_t>(duration)};
    RtpPacket packet;
    packet.header.marker = marker;
    packet.header.timestamp = timestamp;
    packet.header.ssrc = ssrc;
    packet.payload = payload;
    const auto result = events_.Take(packet, now_);
    if (result.kind == TelephoneEvents::Kind::kPressed) keys += result.digit;
  }
  void Pause() { now_ += milliseconds(200); }

  std::string keys;

 private:
  TelephoneEvents events_;
  TelephoneEvents::Time now_{};
};

TEST(TelephoneEventsTest, ReadsPressesThroughLossRepetitionAndReordering) {
  EventReader reader;
  reader.Take(1000, true, 1, false, 160);
  reader.Take(1000, false, 1, false, 320);
  for (int i = 0; i < 3; ++i) reader.Take(1000, false, 1, true, 480);
  reader.Pause();
  for (int i = 0; i < 2; ++i) reader.Take(3000, false, 1, true, 480);  // everything but the end was lost
  reader.Take(1000, false, 1, true, 480);                              // a straggler
  reader.Take(5000, true, 11, false, 160);
  reader.Take(7000, true, 16, false, 160);     // no key
  reader.Take(4000, true, 11, false, 160, 2);  // another sender
  EXPECT_EQ(reader.keys, "11##");
}

TEST(TelephoneEventsTest, LongPressesAndSendersThatMoveTheTimestampAreOnePress) {
  EventReader reader;
  reader.Take(1000, true, 2, false, 0xFFFF);
  reader.Take(1000 + 0xFFFF, false, 2, false, 160);  // the next segment of a long press
  reader.Take(1000 + 0xFFFF, false, 2, true, 320);
  reader.Pause();
  for (std::uint32_t i = 0; i < 5; ++i) reader.Take(200'000 + 160 * i, i == 0, 3, i == 4, 160);
  EXPECT_EQ(reader.keys, "23");
}

TEST(InfoDigitTest, ReadsTheUsualBodies) {
  EXPECT_EQ(DigitOfInfo("Signal=5\r\nDuration=160\r\n"), '5');
  EXPECT_EQ(DigitOfInfo("signal= *\nduration=100"), '*');
  EXPECT_EQ(DigitOfInfo("Signal=11\r\n"), '#');
  EXPECT_EQ(DigitOfInfo("d"), 'D');
  for (const char* body : {"", "Signal=", "Signal=99", "Duration=5", "55", "Signal"}) {
    EXPECT_EQ(DigitOfInfo(body), std::nullopt) << body;
  }
}

TEST(RtpPacketTest, TakesPayloadOutOfPaddingAndExtensionsAndRefusesWhatIsBroken) {
  std::vector<std::uint8_t> packet{0xB1, 0x80, 0,    9,    0, 0, 0, 7, 0, 0, 0,   5,   1, 1,
                                   1,    1,    0xBE, 0xDE, 0, 1, 2, 2, 2, 2, 'a', 'b', 0, 2};
  const auto read = ReadRtpPacket(packet);
  ASSERT_TRUE(read);
  EXPECT_EQ(std::string(read->payload.begin(), read->payload.end()), "ab");
  EXPECT_EQ(read->header.sequence, 9);
  for (std::size_t size = 0; size < 24; ++size) {
    EXPECT_FALSE(ReadRtpPacket({packet.data(), size})) << size;
  }
  packet.back() = 200;
  EXPECT_FALSE(ReadRtpPacket(packet)) << "more padding than there is";
  packet.back() = 0;
  EXPECT_FALSE(ReadRtpPacket(packet));
}

std::string Caller(const std::vector<std::string_view>& asserted, std::string_view from,
                   std::string_view privacy = "") {
  const CallerIdentity caller = Identify({asserted, from, privacy});
  return caller.name + "|" + caller.number;
}

TEST(CallerIdentityTest, PrefersTheAssertedIdentityAndDecodesBoth) {
  const std::string_view from = "\"From\" <sip:1@h>;tag=x";
  EXPECT_EQ(Caller({}, R"("Ann \"Annie\" O'Neil, <x>" <sip:%2B49301234;phone-context=d@h:5060;user=phone>)"),
            "Ann \"Annie\" O'Neil, <x>|+49301234");
  EXPECT_EQ(Caller({}, "Ann Smith <sip:ann:secret@h>"), "Ann Smith|ann");
  EXPECT_EQ(Caller({}, "sip:100@h;tag=abc"), "|100");
  EXPECT_EQ(Caller({"\"Office\" <sip:777@h>"}, from), "Office|777");
  EXPECT_EQ(Caller({"<tel:+1-201-555-0123;x=y>", "\"Office\" <sip:777@h>"}, from), "Office|+12015550123");
  EXPECT_EQ(Caller({"garbage"}, from), "From|1");
}

TEST(CallerIdentityTest, AnonymousCallersHaveNeitherNameNorNumber) {
  for (const std::string_view from :
       {"\"Anonymous\" <sip:anonymous@anonymous.invalid>", "<sip:Anonymous@h>",
        "<sip:x@anonymous.invalid:5060>", "Anonymous <sip:123@h>", "", "<sip:h>", "\"", "<", "\"unended\\"}) {
    const std::string caller = Caller({}, from);
    EXPECT_TRUE(caller == "|" || caller == "unended\\|") << from << " gave " << caller;
  }
  EXPECT_EQ(Caller({"\"Ann\" <sip:1@h>"}, "<sip:anonymous@anonymous.invalid>"), "Ann|1");
  EXPECT_EQ(Caller({"\"Ann\" <sip:1@h>"}, "<sip:1@h>", "critical; id"), "|");
  EXPECT_EQ(Caller({"\"Ann\" <sip:1@h>"}, "<sip:1@h>", "none"), "Ann|1");
}

TEST(CallerIdentityTest, TextsAreAlwaysUtf8) {
  EXPECT_EQ(Caller({}, "\"J\xC3\xBCrgen\" <sip:%C3%BC@h>"), "J\xC3\xBCrgen|\xC3\xBC");
  EXPECT_EQ(Caller({}, "\"J\xFCrgen\" <sip:%FC@h>"), "J\xC3\xBCrgen|\xC3\xBC");
  EXPECT_EQ(Caller({}, "\"\xED\xA0\x80\" <sip:%G1%4@h>"), "\xC3\xAD\xC2\xA0\xC2\x80|%G1%4");
}

}  // namespace
}  // namespace orven::test

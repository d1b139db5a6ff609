// SPDX-License-Identifier: GPL-3.0-or-later
#include <algorithm>
#include <cmath>
#include <set>

#include "helper_fixture.h"

namespace orven::test {
namespace {

std::vector<std::string> Descriptions(const std::string& reply) {
  std::vector<std::string> pieces;
  for (std::size_t at = 5;;) {
    const auto end = reply.find("\r\n", at);
    pieces.push_back(reply.substr(at, end - at));
    if (end == std::string::npos) return pieces;
    at = end + 2;
  }
}

TEST_F(SpeechTest, VoicesOfTheUsersLanguageComeFirst) {
  const std::pair<const char*, std::vector<std::string>> cases[] = {
      {"C", {"English (America)", "English (America, New York City)"}},
      {"en_GB.UTF-8", {"English (Great Britain)"}},
      {"de_AT.UTF-8", {"German", "Afrikaans"}},
      {"pt_BR.UTF-8", {"Portuguese (Brazil)", "Portuguese (Portugal)", "Afrikaans"}}};
  for (const auto& [locale, first] : cases) {
    arrived_.clear();
    Helper helper(exchange_, locale);
    WaitForAnswer();
    Send("ULD:");
    ASSERT_TRUE(arrived_.at(0).starts_with("GVCS:"));
    const auto voices = Descriptions(arrived_.at(0));
    EXPECT_GT(voices.size(), 50U);
    for (std::size_t i = 0; i < first.size(); ++i) EXPECT_EQ(voices[i], first[i]) << locale;
    EXPECT_EQ(std::set(voices.begin(), voices.end()).size(), voices.size());
    EXPECT_FALSE(std::set(voices.begin(), voices.end()).contains(""));
    EXPECT_TRUE(helper.EndedWell()) << helper.Complaints();
  }
}

TEST_F(SpeechTest, ThousandMessagesAreObeyedInOrder) {
  Helper helper(exchange_);
  constexpr int kRounds = 250;
  for (int i = 0; i < kRounds; ++i) {
    Send(i % 2 == 0 ? "SRT:-10" : "SRT:10");
    Write(std::to_string(i) + ".wav", "Hello");
    Send("GVC:");
  }
  Send("ULD:");
  ASSERT_TRUE(helper.EndedWell()) << helper.Complaints();
  ASSERT_TRUE(Eventually([&] { return lost_ == 1; }));
  EXPECT_EQ(arrived_.size(), std::size_t{kRounds});
  for (int i = 0; i < kRounds; i += 2) {
    EXPECT_GT(Size(folder_ / (std::to_string(i) + ".wav")),
              2 * Size(folder_ / (std::to_string(i + 1) + ".wav")));
  }
}

TEST_F(SpeechTest, VoiceAndRateChangeWhatIsSpoken) {
  Helper helper(exchange_);
  WaitForAnswer();
  const auto voices = Descriptions(arrived_.at(0));
  const auto german = std::find(voices.begin(), voices.end(), "German") - voices.begin();
  const std::string text = "1999 2777";
  int number = 0;
  /// Seconds of the text after these commands.
  const auto seconds = [&](const std::vector<std::string>& commands) {
    for (const auto& command : commands) Send(command);
    const auto path = Write(std::to_string(number++), text);
    const auto bytes = Size(path);
    EXPECT_EQ(ContentOf(path).substr(0, 4), "RIFF");
    return static_cast<double>(bytes) / (22050.0 * 2);
  };
  // The engine's timing wavers with what it has spoken before.
  constexpr double kSame = 0.03;
  const auto normal = seconds({});
  EXPECT_NEAR(normal, 4, 1.5);
  const auto slow = seconds({"SRT:-5"});
  const auto slowest = seconds({"SRT:-10"});
  EXPECT_GT(slow, normal * 1.2);
  EXPECT_GT(slowest, slow * 1.1);
  EXPECT_NEAR(seconds({"SRT:-99999999999999999999"}), slowest, kSame);
  EXPECT_NEAR(seconds({"SRT:fast", "SRT:", "SVC:-1", "SVC:100000", "SVC:", "xyz", "STOP:all"}), slowest,
              kSame);
  EXPECT_LT(seconds({"SRT:7"}), normal / 1.5);
  EXPECT_NEAR(seconds({"SRT:0", "SVC:0"}), normal, kSame);
  EXPECT_GT(std::abs(seconds({"SVC:" + std::to_string(german)}) - normal), 3 * kSame);
  // Markup and phoneme notation are text.
  EXPECT_GT(Size(Write("markup", "<b>bold</b>")), Size(Write("bold", "bold")) * 3 / 2);
  EXPECT_EQ(helper.Complaints(), "");
}

TEST_F(SpeechTest, NoTextHarmsTheHelper) {
  Helper helper(exchange_);
  std::string controls;
  for (char code = 0; code < 32; ++code) controls += std::string("a") + code + "50P";
  const std::string texts[] = {controls,
                               "😀👨‍👩‍👧‍👦🏳️‍🌈 \u202e\ufeff\u0085 hello",
                               "[[h@l'oU]] &amp; </speak> %s%n\x7f one", std::string(20'000, 'a'),
                               "hello" + std::string(20'000, '\n') + "again"};
  int number = 0;
  for (const auto& text : texts) EXPECT_GT(Size(Write(std::to_string(number++), text)), 1000U);
  Send("Stp:");
  Send("ULD:");
  EXPECT_TRUE(helper.EndedWell()) << helper.Complaints();
}

TEST_F(SpeechTest, WhatCannotBeWrittenLeavesNothingBehind) {
  Helper helper(exchange_, "C", 100'000);
  Send("STW:Hello");
  for (const auto& name : {"nowhere/x.wav", "folder/", "folder"}) {
    std::filesystem::create_directory(folder_ / "folder");
    PutFile(folder_ / "folder/file", "");
    Write(name, "Hello");
  }
  Send("SFS:" + (folder_ / "x.wav"));
  for (const auto& text : {std::string(), std::string(" \r\n"), std::string("..."), LongText(1000)}) {
    Send("STW:" + text);
  }
  EXPECT_GT(Size(Write("good.wav", "Hello")), 1000U);
  EXPECT_EQ(folder_.Count("x.wav"), 0U);
  EXPECT_EQ(folder_.Count("."), 0U) << "a hidden file stayed";
  const auto complaints = helper.Complaints();
  for (const auto& part :
       {"no file is set", "nowhere/x.wav", "folder", "x.wav: no speech came", "too large"}) {
    EXPECT_NE(complaints.find(part), std::string::npos) << part << " in: " << complaints;
  }
}

}  // namespace
}  // namespace orven::test

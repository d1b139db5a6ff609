// SPDX-License-Identifier: GPL-3.0-or-later
#include <gmock/gmock.h>

#include "base/conversions.h"
#include "base/runtime_error.h"
#include "core/mdlReg.h"
#include "support/world.h"

namespace orven::test {
namespace {

using testing::Each;
using testing::ElementsAre;

class SettingsTest : public testing::Test, public SystemLog {
 protected:
  SettingsTest() { shared.application_folder = "/app"; }
  void WriteSystem(const std::string& text) override { lines.push_back(text); }
  void GetAppOptions() {
    store.GetAppOptions([this](std::int16_t count) { ring_box = count; });
  }

  MemoryRegistry registry;
  std::vector<std::string> lines;
  VirtualTime time{Clock::WallTime()};
  MemoryFiles files{time};
  Settings settings;
  SharedOptions shared;
  SettingsStore store{registry, *this, files, settings, shared};
  std::int16_t ring_box = -1;
};

TEST_F(SettingsTest, AFreshKeyLogsEachNumberOnceAndReadsTextsAsNotFound) {
  store.GetMainAction();
  store.GetMainEvents();
  std::vector<std::string> expected(5, "ErrGetMainAction 13 Type mismatch");
  expected.insert(expected.end(), 9, "ErrGetMainEvents 13 Type mismatch");
  EXPECT_EQ(lines, expected);
  store.GetMainOptions();
  EXPECT_EQ(lines.back(), "ErrGetMainOptions 13 Type mismatch");
  EXPECT_THAT((std::array{settings.MailTo, settings.ModemName, settings.Pass}), Each("Not Found"));
  lines.clear();
  GetAppOptions();
  const std::string line = "ErrGetAppOption 13 Type mismatch";
  const std::string missing = "The setting MassagesPath is missing: messages are stored in /app/Messages/";
  EXPECT_THAT(lines, ElementsAre(line, missing, line, line));
  EXPECT_EQ(shared.messages_path, "/app/Messages/") << "not in the working directory";
  EXPECT_EQ(registry.Text("MassagesPath"), "Not Found") << "the default is not written back";
  EXPECT_NE(settings.cLogSys, 0) << "errors of a fresh installation are logged";
}

TEST_F(SettingsTest, AnEmptyMessagesPathIsReplacedAndAnUnusableOneIsKeptButNotUsed) {
  registry.Set("MassagesPath", "");
  GetAppOptions();
  EXPECT_EQ(registry.Text("MassagesPath"), "/app/Messages/");
  files.missing_folders = {"/gone/"};
  for (const char* stored : {"my/", "C:\\Messages\\", "./", "/x", "/gone/"}) {
    registry.Set("MassagesPath", stored);
    GetAppOptions();
    EXPECT_EQ(shared.messages_path, std::string(stored) == "/x" ? "/x" : "/app/Messages/");
    EXPECT_EQ(registry.Text("MassagesPath"), stored) << "the folder is used again when it is back";
  }
  EXPECT_THAT(shared.messages_note, testing::HasSubstr("/gone/"));
  registry.Set("MassagesPathNext", "/new/");
  GetAppOptions();
  EXPECT_EQ(shared.messages_path, "/gone/") << "messages are being moved from there";
}

TEST_F(SettingsTest, KeepsALimitThatDoesNotFitAndShowsTheRingCount) {
  for (const auto& [name, text] : {std::pair("NumOfRing", "3"), {"cLogSys", "0"}}) registry.Set(name, text);
  for (const char* longest : {"546", "547"}) {
    registry.Set("MaxRec", longest);
    store.GetMainOptions();
    GetAppOptions();
    EXPECT_EQ(settings.max_record_seconds, 32760);
  }
  EXPECT_THAT(lines, testing::Contains("ErrGetAppOption 6 Overflow").Times(1));
  EXPECT_EQ(ring_box, 3);
  EXPECT_EQ(settings.cLogSys, 0);
}

TEST_F(SettingsTest, RegistryValuesOfEveryType) {
  constexpr auto kRoot = RegistryRoot::LocalMachine;
  const NamedRegistryValue raw[] = {{"binary", {3, std::string("\x0A\xFF", 2)}},
                                    {"unterminated", {1, "abc"}},
                                    {"other", {7, "xyz"}},
                                    {"long", {1, std::string(2049, 'a')}}};
  registry.Write(kRoot, "K", raw);
  SetRegValue(registry, kRoot, "K", "number", 4, "258");
  SetRegValue(registry, kRoot, "K", "text", 1, "hello");
  const auto read = [&](const char* name) { return GetRegValue(registry, kRoot, "K", name); };
  EXPECT_THAT((std::array{read("binary"), read("unterminated"), read("other"), read("text")}),
              ElementsAre("0AFF", "ab", "xy", "hello"));
  EXPECT_EQ(registry.Query(kRoot, "K", "number")->data, std::string("\x02\x01\0\0", 4));
  DeleteRegValue(registry, kRoot, "K", "text");
  EXPECT_THAT((std::array{read("long"), read("none"), read("text")}), Each("Not Found"));
}

TEST_F(SettingsTest, TheWindowIsPlacedAndSavedOnlyWhenNormal) {
  RecordingViews window;
  const std::pair<const char*, const char*> stored[] = {
      {"MeTop", "300"}, {"MeLeft", "x"}, {"MeHeight", "4000"}, {"MeWinState", "2"}};
  for (const auto& [name, text] : stored) registry.Set(name, text);
  store.GetView(window);
  EXPECT_EQ(window.geometry.top, 300);
  EXPECT_EQ(window.geometry.left, 200) << "a damaged value leaves that edge alone";
  EXPECT_EQ(window.geometry.width, 9000) << "so does a missing value";
  EXPECT_EQ(window.geometry.state, 0) << "the stored state is read but not applied";
  EXPECT_EQ(settings.MeWinState, 2);
  store.SetView(window, false);
  window.geometry = {1, 555, 1, 1, 0};
  store.SetView(window, true);
  window.geometry.state = 2;
  store.SetView(window, false);
  EXPECT_EQ(registry.Text("MeLeft"), "200") << "not saved while hidden or maximised";
  store.GetView(window);
  EXPECT_EQ(window.geometry.top, 1) << "a maximised window is not moved";
}

TEST(Conversions, AcceptNumbersAsPeopleWriteThemAndNameWhatIsWrong) {
  for (const auto& [text, number] :
       {std::pair(" +12 ", 12), {"-1", -1}, {"2.5", 2}, {"3.5", 4}, {"32767", 32767}})
    EXPECT_EQ(ToInt16(text), number) << "halves are rounded to even";
  const auto error_of = [](const std::string& text) {
    try {
      return ToInt16(text), 0;
    } catch (const RuntimeError& error) {
      return error.Number();
    }
  };
  for (const char* text : {"", " ", "1x", "0x10", "--1", "+-1", "inf", "nan", "1 2"})
    EXPECT_EQ(error_of(text), 13) << text;
  for (const char* text : {"32768", "-32769", "1e99999"}) EXPECT_EQ(error_of(text), 6) << text;
  EXPECT_EQ(ToText(3.02), "3.02");
}

}  // namespace
}  // namespace orven::test

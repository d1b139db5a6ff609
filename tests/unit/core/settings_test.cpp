// SPDX-License-Identifier: GPL-3.0-or-later
#include <gmock/gmock.h>

#include "adapters/line/sim/virtual_time.h"
#include "base/conversions.h"
#include "base/runtime_error.h"
#include "core/settings_store.h"
#include "support/memory_files.h"
#include "support/memory_registry.h"
#include "support/recording_views.h"

namespace orven::test {
namespace {

using testing::Each;
using testing::ElementsAre;
using testing::StartsWith;

class ListLog : public SystemLog {
 public:
  std::vector<std::string> lines;
  void WriteSystem(const std::string& text) override { lines.push_back(text); }
};

class SettingsTest : public testing::Test {
 protected:
  SettingsTest() { shared.application_folder = "/app"; }
  void GetAppOptions() {
    store.GetAppOptions([this](std::int16_t count) { ring_box = count; });
  }

  MemoryRegistry registry;
  ListLog log;
  VirtualTime time{Clock::WallTime()};
  MemoryFiles files{time};
  Settings settings;
  SharedOptions shared;
  SettingsStore store{registry, log, files, settings, shared};
  std::int16_t ring_box = -1;
};

TEST_F(SettingsTest, AFreshKeyLogsEachNumberOnceAndReadsTextsAsNotFound) {
  store.GetMainAction();
  EXPECT_EQ(log.lines.size(), 5U);
  EXPECT_THAT(log.lines, Each("ErrGetMainAction 13 Type mismatch"));
  EXPECT_EQ(settings.MailTo, "Not Found");
  log.lines.clear();

  store.GetMainEvents();
  EXPECT_THAT(log.lines, Each("ErrGetMainEvents 13 Type mismatch"));
  EXPECT_EQ(log.lines.size(), 9U);
  log.lines.clear();

  store.GetMainOptions();
  EXPECT_THAT(log.lines, Each("ErrGetMainOptions 13 Type mismatch"));
  EXPECT_EQ(settings.ModemName, "Not Found");
  EXPECT_EQ(settings.Pass, "Not Found");
  log.lines.clear();

  GetAppOptions();
  EXPECT_THAT(log.lines,
              ElementsAre(StartsWith("ErrGetAppOption 13"),
                          "The setting MassagesPath is missing: messages are stored in /app/Messages/",
                          StartsWith("ErrGetAppOption 13"), StartsWith("ErrGetAppOption 13")));
  EXPECT_EQ(settings.MassagesPath, "Not Found");
  EXPECT_EQ(shared.messages_path, "/app/Messages/") << "not where the program was started";
  EXPECT_EQ(registry.Text("MassagesPath"), "Not Found") << "is not written back";
  EXPECT_NE(settings.cLogSys, 0) << "errors of a fresh installation are logged";
}

TEST_F(SettingsTest, AnEmptyMessagesPathIsReplacedAndWrittenBackAndOneThatIsNoFullPathNotUsed) {
  registry.Set("MassagesPath", "");
  GetAppOptions();
  EXPECT_EQ(shared.messages_path, "/app/Messages/");
  EXPECT_EQ(registry.Text("MassagesPath"), "/app/Messages/");
  files.missing_folders = {"/gone/"};
  for (const char* stored : {"my/", "C:\\Messages\\", "./", "/x", "/gone/"}) {
    registry.Set("MassagesPath", stored);
    GetAppOptions();
    EXPECT_EQ(shared.messages_path, std::string(stored) == "/x" ? "/x" : "/app/Messages/");
    EXPECT_EQ(registry.Text("MassagesPath"), stored) << "it serves again when it is back";
  }
  EXPECT_THAT(shared.messages_note, testing::HasSubstr("/gone/"));
  registry.Set("MassagesPathNext", "/new/");
  GetAppOptions();
  EXPECT_EQ(shared.messages_path, "/gone/") << "messages are moving from there";
}

TEST_F(SettingsTest, PublishesWhatAllPartsShare) {
  for (const auto& [name, text] : std::vector<std::pair<std::string, std::string>>{{"RecordMessage", "-1"},
                                                                                   {"Greeting", "Hello"},
                                                                                   {"NumOfRing", "3"},
                                                                                   {"MaxRec", "546"},
                                                                                   {"cLogSys", "0"}}) {
    registry.Set(name, text);
  }
  store.GetMainOptions();
  GetAppOptions();
  EXPECT_TRUE(shared.record_messages);
  EXPECT_EQ(shared.greeting_file, "Hello.wav");
  EXPECT_EQ(shared.num_of_ring, 3);
  EXPECT_EQ(shared.max_record_seconds, 32760);
  EXPECT_EQ(ring_box, 3);
  EXPECT_EQ(settings.cLogSys, 0);

  registry.Set("MaxRec", "547");
  log.lines.clear();
  store.GetMainOptions();
  log.lines.clear();
  GetAppOptions();
  EXPECT_THAT(log.lines, testing::Contains("ErrGetAppOption 6 Overflow"));
  EXPECT_EQ(shared.max_record_seconds, 32760) << "the previous limit stays";
}

TEST_F(SettingsTest, RegistryValuesOfEveryType) {
  constexpr auto kRoot = RegistryRoot::LocalMachine;
  const NamedRegistryValue raw[] = {{"binary", {3, std::string("\x0A\xFF", 2)}},
                                    {"unterminated", {1, "abc"}},
                                    {"other", {7, "xyz"}},
                                    {"long", {1, std::string(5000, 'a')}}};
  registry.Write(kRoot, "K", raw);
  EXPECT_EQ(GetRegValue(registry, kRoot, "K", "binary"), "0AFF");
  EXPECT_EQ(GetRegValue(registry, kRoot, "K", "unterminated"), "ab");
  EXPECT_EQ(GetRegValue(registry, kRoot, "K", "other"), "xy");
  EXPECT_EQ(GetRegValue(registry, kRoot, "K", "long"), "Not Found") << "longer than the reader's buffer";
  EXPECT_EQ(GetRegValue(registry, kRoot, "K", "none"), "Not Found");
  SetRegValue(registry, kRoot, "K", "number", 4, "258");
  EXPECT_EQ(registry.Query(kRoot, "K", "number")->data, std::string("\x02\x01\0\0", 4));
  SetRegValue(registry, kRoot, "K", "text", 1, "hello");
  EXPECT_EQ(GetRegValue(registry, kRoot, "K", "text"), "hello");
  DeleteRegValue(registry, kRoot, "K", "text");
  EXPECT_EQ(GetRegValue(registry, kRoot, "K", "text"), "Not Found");
}

TEST_F(SettingsTest, TheWindowIsPlacedAndSavedOnlyWhenNormal) {
  RecordingViews window;
  registry.Set("MeTop", "300");
  registry.Set("MeLeft", "x");
  registry.Set("MeWidth", "1e9");
  registry.Set("MeHeight", "4000");
  registry.Set("MeWinState", "2");
  store.GetView(window);
  EXPECT_EQ(window.geometry.top, 300);
  EXPECT_EQ(window.geometry.left, 200) << "a damaged value leaves that edge alone";
  EXPECT_EQ(window.geometry.state, 0) << "the stored state is kept in a field, not applied";
  EXPECT_EQ(settings.MeWinState, 2);

  store.SetView(window, false);
  EXPECT_EQ(registry.Text("MeLeft"), "200");
  window.geometry.left = 555;
  store.SetView(window, true);
  window.geometry.state = 2;
  store.SetView(window, false);
  EXPECT_EQ(registry.Text("MeLeft"), "200") << "hidden or maximised";
  window.geometry.top = 1;
  store.GetView(window);
  EXPECT_EQ(window.geometry.top, 1) << "a maximised window is not moved";
}

TEST(Conversions, AcceptNumbersAsPeopleWriteThemAndNameWhatIsWrong) {
  EXPECT_EQ(ToInt16(" +12 "), 12);
  EXPECT_EQ(ToInt32("-1"), -1);
  EXPECT_EQ(ToInt16("2.5"), 2) << "halves go to the even number";
  EXPECT_EQ(ToInt16("3.5"), 4);
  EXPECT_EQ(ToInt32("1e3"), 1000);
  const auto number_of = [](const std::string& text) {
    try {
      ToInt16(text);
    } catch (const RuntimeError& error) {
      return error.Number();
    }
    return 0;
  };
  for (const char* text : {"", " ", "x", "1x", "0x10", "--1", "+-1", "inf", "nan", "Not Found", "1 2"}) {
    EXPECT_EQ(number_of(text), 13) << '"' << text << '"';
  }
  for (const char* text : {"32768", "-32769", "1e99999", "99999999999999999999"}) {
    EXPECT_EQ(number_of(text), 6) << text;
  }
  EXPECT_EQ(ToText(3.02), "3.02");
}

}  // namespace
}  // namespace orven::test

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
using testing::HasSubstr;

class SettingsTest : public testing::Test, public World {};

TEST_F(SettingsTest, AFreshKeyLogsEachNumberOnceAndReadsTextsAsNotFound) {
  registry = MemoryRegistry();
  Start();
  const auto lines = SystemLog();
  const std::string wrong = "ErrGetAppOption 13 Type mismatch";
  const std::string missing = "The setting MassagesPath is missing: messages are stored in " + messages;
  const auto first = std::ranges::find(lines, wrong);
  ASSERT_EQ(first - lines.begin(), 34) << "a line for each number of the other readers";
  EXPECT_THAT(std::vector(first, first + 4), ElementsAre(wrong, missing, wrong, wrong));
  const auto& settings = Machine().settings;
  EXPECT_THAT((std::array{settings.MailTo, settings.Pass, settings.LogFor}),
              ElementsAre(kNotFound, kNotFound, ""));
  EXPECT_EQ(Machine().folders.Serving(), messages) << "not in the working directory";
  EXPECT_EQ(registry.Text("MassagesPath"), kNotFound) << "the default is not written back";
}

TEST_F(SettingsTest, AnEmptyMessagesPathIsReplacedAndAnUnusableOneIsKeptButNotUsed) {
  registry.Set("MassagesPath", "");
  Start();
  EXPECT_EQ(registry.Text("MassagesPath"), messages);
  files.missing_folders = {"/gone/"};
  for (const char* stored : {"my/", "C:\\Messages\\", "./", "/x", "/gone/"}) {
    registry.Set("MassagesPath", stored);
    Crash();
    Start();
    EXPECT_EQ(Machine().folders.Serving(), std::string(stored) == "/x" ? "/x" : messages);
    EXPECT_EQ(registry.Text("MassagesPath"), stored) << "the folder is used again when it is back";
  }
  EXPECT_THAT(views.Status(), HasSubstr("/gone/"));
  registry.Set("MassagesPathNext", "/new/");
  Crash();
  Start();
  EXPECT_EQ(Machine().folders.Serving(), "/gone/") << "messages are being moved from there";
}

TEST_F(SettingsTest, ALimitThatDoesNotFitIsLoggedEvenWithTheLogOffAndThePreviousOneStays) {
  for (const auto& [name, text] : {std::pair("MaxRec", "547"), {"MassagesPath", "my/"}, {"cLogSys", "0"}})
    registry.Set(name, text);
  Start();
  EXPECT_THAT(SystemLog(), ElementsAre("ErrGetAppOption 6 Overflow", HasSubstr("(\"my/\")")));
  for (const char* longest : {"546", "547"}) {
    registry.Set("MaxRec", longest);
    Machine().store.GetMainOptions();
    Machine().store.GetAppOptions([] {});
    EXPECT_EQ(Machine().settings.max_record_seconds, 32760);
  }
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
  registry = MemoryRegistry();
  auto& store = Machine().store;
  const std::pair<const char*, const char*> stored[] = {
      {"MeTop", "300"}, {"MeLeft", "x"}, {"MeHeight", "4000"}, {"MeWinState", "2"}};
  for (const auto& [name, text] : stored) registry.Set(name, text);
  store.GetView(views);
  EXPECT_EQ(views.geometry, (WindowGeometry{300, 200, 9000, 4000, 0}))
      << "a damaged or missing value leaves that edge alone; the stored state is not applied";
  EXPECT_EQ(Machine().settings.MeWinState, 2);
  store.SetView(views, false);
  views.geometry = {1, 555, 1, 1, 0};
  store.SetView(views, true);
  views.geometry.state = 2;
  store.SetView(views, false);
  EXPECT_EQ(registry.Text("MeLeft"), "200") << "not saved while hidden or maximised";
  store.GetView(views);
  EXPECT_EQ(views.geometry.top, 1) << "a maximised window is not moved";
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

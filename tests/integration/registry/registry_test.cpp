// SPDX-License-Identifier: GPL-3.0-or-later
#include <gmock/gmock.h>
#include <unistd.h>

#include "adapters/registry/registry_file.h"
#include "base/unicode.h"
#include "support/scratch_folder.h"

namespace orven::test {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

constexpr auto kRoot = RegistryRoot::LocalMachine;
const std::string kKey = "SOFTWARE\\ORVEN";
const std::string kStart = "Windows Registry Editor Version 5.00\n\n[HKEY_LOCAL_MACHINE\\SOFTWARE\\ORVEN]\n";

/// Returns a value of type 1 as the program writes it.
RegistryValue Text(const std::string& text) {
  return {1, text + '\0'};
}

/// A settings file in a scratch folder, and its reports.
class RegistryFileTest : public ::testing::Test {
 protected:
  std::optional<RegistryValue> Query(const std::string& name) { return registry_.Query(kRoot, kKey, name); }
  static bool Write(RegistryFile& file, const std::string& name, const std::string& text) {
    return file.Write(kRoot, kKey, std::array{NamedRegistryValue{name, Text(text)}});
  }
  bool Write(const std::string& name, const std::string& text) { return Write(registry_, name, text); }
  std::string Stored() const { return ContentOf(path_); }

  ScratchFolder folder_;
  std::string path_ = folder_ / "registry.reg";
  std::vector<std::string> reports_;
  RegistryReport report_ = [this](const std::string& line) { reports_.push_back(line); };
  RegistryFile registry_{path_, report_};
};

TEST_F(RegistryFileTest, ReadsEveryNotationOfAnExport) {
  PutFile(path_,
          "\xEF\xBB\xBFWindows Registry Editor Version 5.00\r\n\r\n; a comment\r\n"
          "[HKEY_LOCAL_MACHINE\\Software\\Orven] ; see [there]\r\n"
          "\"Pass\"=\"say \\\"a\\\\b\\\"\" ; quoted\r\n"
          "  \"Number\" = dword:0000000A\r\n"
          "\"Bytes\"=hex:0a,ff,\\\r\n  00,\\\r\n  7F\r\n"
          "\"Path\"=hex(2):25,00,e9,00,00,00\r\n"
          "\"Gone\"=\"x\"\r\n\"gone\"=-\r\n"
          "[HKEY_CURRENT_USER\\SOFTWARE\\ORVEN]\r\n\"Pass\"=\"of the user\"\r\n"
          "[HKEY_LOCAL_MACHINE\\Removed]\r\n\"A\"=\"1\"\r\n[-HKEY_LOCAL_MACHINE\\Removed]\r\n\"A\"=\"2\"");
  EXPECT_EQ(Query("pASS"), Text("say \"a\\b\""));
  EXPECT_EQ(Query("Number"), (RegistryValue{4, std::string("\x0A\0\0\0", 4)}));
  EXPECT_EQ(Query("Bytes"), (RegistryValue{3, std::string("\x0A\xFF\0\x7F", 4)}));
  EXPECT_EQ(Query("Path"), (RegistryValue{2, std::string("%\xC3\xA9\0", 4)}));
  EXPECT_EQ(Query("Gone"), std::nullopt);
  EXPECT_FALSE(registry_.KeyExists(kRoot, "Removed"));
  EXPECT_FALSE(registry_.KeyExists(RegistryRoot::CurrentUser, "software\\orv"));
  EXPECT_THAT(reports_, IsEmpty());
}

TEST_F(RegistryFileTest, AChangeTouchesOnlyItsLineAndWritesUtf8) {
  const std::string before =
      "\xEF\xBB\xBFWindows Registry Editor Version 5.00\r\n\r\n; "
      "kept\r\n[HKEY_LOCAL_MACHINE\\SOFTWARE\\ORVEN]\r\n";
  const std::string after =
      "\"Unknown\"=hex(b):01,\\\r\n    02\r\n\r\n; tail\r\n[HKEY_CLASSES_ROOT\\x]\r\n\"A\"=\"other\"\r\n";
  PutFile(path_, before + "  \"a\" = \"1\"  ; why\r\n" + after);
  EXPECT_TRUE(Write("A", "longer") && Write("A", "2"));
  EXPECT_EQ(Stored(), before + "  \"a\" = \"2\"  ; why\r\n" + after);
  EXPECT_EQ(registry_.Query(RegistryRoot::ClassesRoot, "x", "A"), Text("other"));
  EXPECT_TRUE(registry_.Delete(kRoot, kKey, "A"));
  EXPECT_EQ(Stored(), before + after);
  ::unlink((path_ + ".bak").c_str());
  const std::string text = kStart + "\"Name\"=\"\xC3\xA9 \xF0\x9F\x93\x9E\"\n";
  PutFile(path_, "\xFF\xFE" + Utf16FromUtf8(text));
  EXPECT_TRUE(Write("New", "1"));
  EXPECT_EQ(Stored(), text + "\"New\"=\"1\"\n");
}

TEST_F(RegistryFileTest, DamageIsReportedWithItsLineAndTheRestIsUsed) {
  for (const auto& [line, expected] : std::map<std::string, std::string>{
           {"\"A\"=\"C:\\Temp\"", "6: a backslash in the text is not followed by \\ or \""},
           {"\"A\"=hex:01,\\\n  0g,\\\n  03",
            "7: expected bytes of two hexadecimal digits with commas between them"},
           {"\"A\"=hex:01,\\", "6: the line with the rest of the bytes is missing"},
           {std::string(4096, '\0'), "6: expected \"name\"=value, [key] or ; comment"}}) {
    reports_.clear();
    PutFile(path_, kStart + "\"First\"=\"1\"\n;\n" + line + "\n\"Also\"=\"2\"\n");
    EXPECT_TRUE(Query("First") && Query("Also") && !Query("A")) << line;
    EXPECT_THAT(reports_, ElementsAre("registry.reg:" + expected));
  }
  PutFile(path_, kStart + "\"A\"=\"1\"\n[HKEY_LOCAL_MACHINE\\OTHER\n\"A\"=\"2\"\n");
  EXPECT_EQ(Query("A"), Text("1")) << "values after a damaged key belong to no key";
}

TEST_F(RegistryFileTest, OnlyTheOwnerHasAccessAndChangesByOtherProcessesAreSeenAtOnce) {
  EXPECT_FALSE(registry_.KeyExists(kRoot, kKey));
  EXPECT_TRUE(Write("Pass", "123456"));
  EXPECT_EQ(Stored(), kStart + "\"Pass\"=\"123456\"\n");
  using std::filesystem::perms;
  for (const auto& path : {path_, path_ + ".bak"})
    EXPECT_EQ(std::filesystem::status(path).permissions(), perms::owner_read | perms::owner_write);
  EXPECT_EQ(folder_.Count(""), 2U);
  for (int number = 1000; number < 1020; ++number) {
    // Same size, same inode, within one tick of the file system's clock.
    PutFile(path_, kStart + "\"A\"=\"" + std::to_string(number) + "\"\n");
    ASSERT_EQ(Query("A"), Text(std::to_string(number)));
  }
  RegistryFile another(path_, report_);
  EXPECT_TRUE(Write(another, "B", "other"));
  EXPECT_TRUE(Write("C", "mine"));
  ::unlink(path_.c_str());
  EXPECT_EQ(Query("B"), Text("other"));
}

TEST_F(RegistryFileTest, ADamagedFileIsReportedOnceAndKept) {
  const std::string damaged = kStart + "\"A\"=\"1\"\n\"B\"=\"open\n";
  PutFile(path_, damaged);
  for (int times = 0; times < 3; ++times) EXPECT_EQ(Query("A"), Text("1"));
  EXPECT_THAT(reports_, ElementsAre("registry.reg:5: the text has no closing quote"));
  EXPECT_EQ(folder_.Count(""), 1U) << "reading sets nothing aside";
  EXPECT_TRUE(Write("C", "3"));
  EXPECT_EQ(Stored(), kStart + "\"A\"=\"1\"\n\"C\"=\"3\"\n");
  PutFile(path_, damaged + "again\n");  // within the same second: the earlier copy stays
  EXPECT_TRUE(Write("C", "5"));
  EXPECT_EQ(folder_.Count("registry.reg.damaged-2"), 2U);
}

TEST_F(RegistryFileTest, LostValuesAreRestoredFromTheLastGoodVersion) {
  const std::string good = kStart + "\"Pass\"=\"123456\"\n\"A\"=\"1\"\n";
  for (const auto& damaged :
       {std::string(), std::string(good.size(), '\0'), good.substr(0, 38), good.substr(0, 60),
        good.substr(0, 74), good.substr(0, 85), good.substr(0, 90), good.substr(0, 72) + good.substr(73),
        good.substr(0, 68) + "S" + good.substr(69), kStart + "\"A\"=\"1\"\n", std::string("missing")}) {
    SCOPED_TRACE(damaged);
    PutFile(path_, good);
    EXPECT_EQ(Query("A"), Text("1"));
    PutFile(path_, damaged);
    if (damaged == "missing") ::unlink(path_.c_str());
    RegistryFile again(path_, report_);
    EXPECT_TRUE(again.KeyExists(kRoot, kKey));
    EXPECT_TRUE(Write(again, "A", "1")) << "this also stores the restored values";
    EXPECT_EQ(Query("Pass"), Text("123456"));
    EXPECT_TRUE(again.Delete(kRoot, kKey, "A"));
    EXPECT_EQ(RegistryFile(path_, report_).Query(kRoot, kKey, "A"), std::nullopt);
  }
  EXPECT_EQ(folder_.Count("registry.reg.damaged-2"), 5U) << "the other cases leave nothing to examine";
}

TEST_F(RegistryFileTest, AnUnreadableFileIsReportedOnceAndNeverWritten) {
  std::filesystem::create_symlink(path_, path_);
  for (int times = 0; times < 2; ++times) EXPECT_FALSE(Query("A") || Write("A", "1"));
  EXPECT_THAT(reports_, ElementsAre(HasSubstr(path_)));
  EXPECT_TRUE(std::filesystem::is_symlink(path_));
  RegistryFile folder(folder_ / "", report_);
  EXPECT_FALSE(folder.Query(kRoot, kKey, "A") || Write(folder, "A", "1"));
}

TEST_F(RegistryFileTest, AFullDiskKeepsEveryOldValue) {
  EXPECT_TRUE(Write("A", "old"));
  const std::string before = Stored();
  const std::string damaged = kStart + "\"A\"=\"open\n; " + std::string(3000, 'x') + "\n";
  {
    FileSizeLimit limit(1000);
    for (int times = 0; times < 2; ++times) EXPECT_FALSE(Write("B", std::string(5000, 'x')));
    EXPECT_EQ(Query("A"), Text("old"));
  }
  EXPECT_EQ(Stored(), before);
  EXPECT_EQ(folder_.Count(""), 2U);
  EXPECT_THAT(reports_, ElementsAre(HasSubstr("Disk full")));
  PutFile(path_, damaged);
  FileSizeLimit limit(1000);
  EXPECT_FALSE(Write("A", "1"));
  EXPECT_EQ(Stored(), damaged) << "a file that cannot be set aside is not replaced";
}

}  // namespace
}  // namespace orven::test

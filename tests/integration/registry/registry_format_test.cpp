// SPDX-License-Identifier: GPL-3.0-or-later
#include <random>

#include "base/unicode.h"
#include "integration/registry/registry_fixture.h"

namespace orven::test {
namespace {

using RegistryFormatTest = RegistryFileTest;

TEST_F(RegistryFormatTest, ReadsEveryNotationOfAnExport) {
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
  EXPECT_FALSE(registry_.KeyExists(RegistryRoot::LocalMachine, "Removed"));
  EXPECT_FALSE(registry_.KeyExists(RegistryRoot::CurrentUser, "software\\orv"));
  EXPECT_TRUE(reports_.empty()) << reports_.front();
}

TEST_F(RegistryFormatTest, ReadsWhatWindowsExportsAndWritesItAsUtf8) {
  const std::string text = std::string(kStart) + "\"Name\"=\"\xC3\xA9 \xF0\x9F\x93\x9E\"\n";
  PutFile(path_, "\xFF\xFE" + Utf16FromUtf8(text));
  EXPECT_TRUE(Write("New", Text("1")));
  EXPECT_EQ(Stored(), text + "\"New\"=\"1\"\n");
}

TEST_F(RegistryFormatTest, AnyValueSurvivesTheRoundTrip) {
  std::vector<NamedRegistryValue> values{
      {"unterminated", {1, "abc"}},
      {"lines", Text("a\r\nb\n[HKEY_LOCAL_MACHINE\\X]\n")},
      {"zero inside", {1, std::string("a\0b\0", 4)}},
      {"not UTF-8", Text("/home/\xE9/\xED\xA0\x80\xFF")},
      {"quote\"back\\slash;=[x]", Text("\\\" ; [x] =\t")},
      {"own type", {0x80000001, "\x01\x02"}},
      {"", Text("default")},
  };
  std::mt19937 random(7);
  for (std::uint32_t number = 0; number < 60; ++number) {
    std::string data(number * 3U, '\0');
    for (char& byte : data) byte = static_cast<char>(random() & 0xFFU);
    values.push_back({"random" + std::to_string(number), {number % 9, data}});
  }
  ASSERT_TRUE(registry_.Write(RegistryRoot::CurrentUser, "K", values));
  RegistryFile fresh(path_, report_);
  for (const NamedRegistryValue& value : values) {
    EXPECT_EQ(fresh.Query(RegistryRoot::CurrentUser, "K", value.name), value.value) << value.name;
  }
  EXPECT_TRUE(reports_.empty()) << reports_.front();
  const std::string before = Stored();
  EXPECT_FALSE(Write("line\nend", Text("2"))) << "a name that the format cannot hold";
  EXPECT_FALSE(registry_.Write(RegistryRoot::LocalMachine, "K]\n[X", {}));
  EXPECT_EQ(Stored(), before);
}

TEST_F(RegistryFormatTest, AChangeTouchesOnlyItsLine) {
  const std::string before =
      "Windows Registry Editor Version 5.00\r\n\r\n; kept\r\n[HKEY_LOCAL_MACHINE\\SOFTWARE\\ORVEN]\r\n";
  const std::string after =
      "\"Unknown\"=hex(b):01,\\\r\n    02\r\n\r\n; tail\r\n[HKEY_CLASSES_ROOT\\x]\r\n\"A\"=\"other\"\r\n";
  PutFile(path_, before + "  \"a\" = \"1\"  ; why\r\n" + after);
  EXPECT_TRUE(Write("A", Text("2")));
  EXPECT_EQ(Stored(), before + "  \"a\" = \"2\"  ; why\r\n" + after);
  EXPECT_TRUE(registry_.Delete(RegistryRoot::LocalMachine, kKey, "A"));
  EXPECT_EQ(Stored(), before + after);
}

TEST_F(RegistryFormatTest, DamageIsNamedWithItsLineAndTheRestIsUsedInItsOrder) {
  const std::vector<std::pair<std::string, std::string>> cases{
      {"\"A\"=\"C:\\Temp\"\n", "6: a backslash in the text is not followed by \\ or \""},
      {"\"A\"=hex:01,\\\n  0g,\\\n  03\n",
       "7: expected bytes of two hexadecimal digits with commas between them"},
      {"\"A\"=hex:01,\\\n", "6: the line with the rest of the bytes is missing"},
      {std::string(4096, '\0') + "\n", "6: expected \"name\"=value, [key] or ; comment"},
  };
  for (const auto& [line, expected] : cases) {
    reports_.clear();
    PutFile(path_, std::string(kStart) + "\"First\"=\"1\"\n;\n" + line + "\"Also\"=\"2\"\n");
    const auto values = ReadRegistryExport(path_, RegistryRoot::LocalMachine, kKey, report_);
    ASSERT_EQ(values.size(), 2U) << line;
    EXPECT_EQ(values[0].name + values[1].name, "FirstAlso");
    EXPECT_EQ(reports_, std::vector<std::string>{"registry.reg:" + expected});
  }
  PutFile(path_, std::string(kStart) + "\"A\"=\"1\"\n[HKEY_LOCAL_MACHINE\\OTHER\n\"A\"=\"2\"\n");
  EXPECT_EQ(Query("A"), Text("1")) << "values below a damaged key belong to no key";
}

}  // namespace
}  // namespace orven::test

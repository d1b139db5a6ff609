// SPDX-License-Identifier: GPL-3.0-or-later
#include <random>

#include "adapters/registry/utf16.h"
#include "integration/registry/registry_fixture.h"

namespace orven::test {
namespace {

using RegistryFormatTest = RegistryFileTest;

TEST_F(RegistryFormatTest, ReadsEveryNotationOfAnExport) {
  PutFile(path_,
          "\xEF\xBB\xBFWindows Registry Editor Version 5.00\r\n\r\n; a comment\r\n"
          "[HKEY_LOCAL_MACHINE\\Software\\Orven] ; see [there]\r\n"
          "@=\"default\"\r\n"
          "\"Pass\"=\"say \\\"a\\\\b\\\"\" ; quoted\r\n"
          "  \"Number\" = dword:0000000A\r\n"
          "\"Bytes\"=hex:0a,ff,\\\r\n  00,\\\r\n  7F\r\n"
          "\"Odd\"=hex(1):41,00,42,00\r\n"
          "\"Path\"=hex(2):25,00,e9,00,00,00\r\n"
          "\"Wide\"=hex(4):01,02\r\n"
          "\"Empty\"=hex:\r\n"
          "\"Gone\"=\"x\"\r\n\"gone\"=-\r\n"
          "[HKEY_CURRENT_USER\\SOFTWARE\\ORVEN\\Below]\r\n"
          "\"Pass\"=\"of the user\"\r\n"
          "[HKEY_USERS\\SOFTWARE\\ORVEN]\r\n\"Pass\"=\"of others\"");
  EXPECT_EQ(Query(""), Text("default"));
  EXPECT_EQ(Query("pASS"), Text("say \"a\\b\""));
  EXPECT_EQ(Query("Number"), (RegistryValue{4, std::string("\x0A\0\0\0", 4)}));
  EXPECT_EQ(Query("Bytes"), (RegistryValue{3, std::string("\x0A\xFF\0\x7F", 4)}));
  EXPECT_EQ(Query("Odd"), (RegistryValue{1, "AB"}));
  EXPECT_EQ(Query("Path"), (RegistryValue{2, std::string("%\xC3\xA9\0", 4)}));
  EXPECT_EQ(Query("Wide"), (RegistryValue{4, "\x01\x02"}));
  EXPECT_EQ(Query("Empty"), (RegistryValue{3, ""}));
  EXPECT_EQ(Query("Gone"), std::nullopt);
  EXPECT_TRUE(registry_.KeyExists(RegistryRoot::CurrentUser, "software\\orven"));
  EXPECT_FALSE(registry_.KeyExists(RegistryRoot::CurrentUser, "software\\orv"));
  EXPECT_EQ(registry_.Query(RegistryRoot::CurrentUser, "SOFTWARE\\ORVEN\\Below", "Pass"),
            Text("of the user"));
  EXPECT_TRUE(reports_.empty()) << reports_.front();
}

TEST_F(RegistryFormatTest, ReadsWhatWindowsExportsAndWritesItAsUtf8) {
  const std::string text = std::string(kStart) + "\"Name\"=\"\xC3\xA9 \xF0\x9F\x93\x9E\"\n; end\n";
  PutFile(path_, "\xFF\xFE" + Utf16FromUtf8(text));
  EXPECT_EQ(Query("Name"), Text("\xC3\xA9 \xF0\x9F\x93\x9E"));
  EXPECT_TRUE(Write("New", Text("1")));
  EXPECT_EQ(Stored(), std::string(kStart) + "\"Name\"=\"\xC3\xA9 \xF0\x9F\x93\x9E\"\n\"New\"=\"1\"\n; end\n");
  EXPECT_TRUE(reports_.empty());
}

TEST_F(RegistryFormatTest, AnyValueSurvivesTheRoundTrip) {
  std::vector<NamedRegistryValue> values{
      {"plain", Text("text")},
      {"empty", Text("")},
      {"unterminated", {1, "abc"}},
      {"nothing", {1, ""}},
      {"twice terminated", {1, std::string("a\0\0", 3)}},
      {"lines", Text("a\r\nb\n[HKEY_LOCAL_MACHINE\\X]\n")},
      {"zero inside", {1, std::string("a\0b\0", 4)}},
      {"not UTF-8", Text("/home/\xE9/\xED\xA0\x80\xFF")},
      {"quote\"back\\slash;=[x]", Text("\\\" ; [x] =\t")},
      {"short dword", {4, "\x01"}},
      {"dword", {4, "\xFF\xFE\xFD\xFC"}},
      {"list", {7, std::string("a\0b\0\0", 5)}},
      {"own type", {0x80000001, "\x01\x02"}},
      {"", Text("default")},
  };
  std::mt19937 random(7);
  for (int number = 0; number < 60; ++number) {
    std::string data(static_cast<std::size_t>(number) * 3, '\0');
    for (char& byte : data) byte = static_cast<char>(random() & 0xFFU);
    values.push_back({"random" + std::to_string(number), {static_cast<std::uint32_t>(number % 9), data}});
  }
  ASSERT_TRUE(registry_.Write(RegistryRoot::CurrentUser, "K", values));
  RegistryFile fresh(path_, report_);
  for (const NamedRegistryValue& value : values) {
    EXPECT_EQ(fresh.Query(RegistryRoot::CurrentUser, "K", value.name), value.value) << value.name;
  }
  EXPECT_TRUE(reports_.empty()) << reports_.front();
}

TEST_F(RegistryFormatTest, AChangeTouchesOnlyItsLine) {
  const std::string before =
      "Windows Registry Editor Version 5.00\r\n\r\n; kept\r\n[HKEY_LOCAL_MACHINE\\SOFTWARE\\ORVEN]\r\n";
  const std::string after =
      "\"Unknown\"=hex(b):01,\\\r\n    02\r\n\r\n; tail\r\n[HKEY_CLASSES_ROOT\\x]\r\n\"A\"=\"other "
      "root\"\r\n";
  PutFile(path_, before + "  \"a\" = \"1\"  ; why\r\n" + after);
  EXPECT_TRUE(Write("A", Text("2")));
  EXPECT_EQ(Stored(), before + "  \"a\" = \"2\"  ; why\r\n" + after);
  EXPECT_TRUE(registry_.Delete(RegistryRoot::LocalMachine, kKey, "A"));
  EXPECT_FALSE(registry_.Delete(RegistryRoot::LocalMachine, kKey, "A"));
  EXPECT_EQ(Stored(), before + after);
}

TEST_F(RegistryFormatTest, LaterLinesWinAsInAnImport) {
  PutFile(path_, std::string(kStart) +
                     "\"A\"=\"1\"\n\"B\"=\"1\"\n[-HKEY_LOCAL_MACHINE\\SOFTWARE]\n\"C\"=\"ignored\"\n"
                     "[HKEY_LOCAL_MACHINE\\SOFTWARE\\ORVEN]\n\"B\"=\"2\"\n\"B\"=\"3\"");
  EXPECT_EQ(Query("A"), std::nullopt);
  EXPECT_EQ(Query("B"), Text("3"));
  EXPECT_EQ(Query("C"), std::nullopt);
  EXPECT_TRUE(Write("A", Text("4")));
  EXPECT_EQ(Query("A"), Text("4"));
  EXPECT_TRUE(registry_.Delete(RegistryRoot::LocalMachine, kKey, "B"));
  EXPECT_EQ(Query("B"), std::nullopt);
  EXPECT_TRUE(reports_.empty());
}

TEST_F(RegistryFormatTest, AnExportIsReadInItsOrder) {
  PutFile(path_, std::string(kStart) + "\"Z\"=\"1\"\n\"M\"=dword:0000000a\n\"Bad\"=\n\"A\"=\"2\"\n");
  const auto values = ReadRegistryExport(path_, RegistryRoot::LocalMachine, kKey, report_);
  ASSERT_EQ(values.size(), 3U);
  EXPECT_EQ(values[0].name + values[1].name + values[2].name, "ZMA");
  EXPECT_EQ(values[1].value.data, std::string("\x0A\0\0\0", 4));
  EXPECT_TRUE(ReadRegistryExport(folder_ / "none.reg", RegistryRoot::LocalMachine, kKey, report_).empty());
  ASSERT_EQ(reports_.size(), 2U);
  EXPECT_TRUE(reports_[0].starts_with("registry.reg:6: expected")) << reports_[0];
  EXPECT_TRUE(reports_[1].starts_with("none.reg: cannot be read")) << reports_[1];
}

TEST_F(RegistryFormatTest, EachKindOfDamageIsNamedAndTheRestIsUsed) {
  const std::vector<std::pair<std::string, std::string>> cases{
      {"\"A\"=\"open\n", "6: the text has no closing quote"},
      {"\"A\"=\"C:\\Temp\"\n", "6: a backslash in the text is not followed by \\ or \""},
      {"\"A\n", "6: the name has no closing quote"},
      {"\"A\" \"x\"\n", "6: expected = after the value's name"},
      {"\"A\"=12\n", "6: expected \"text\", dword:, hex: or - after the ="},
      {"\"A\"=dword:xyz\n", "6: expected one to eight hexadecimal digits after dword:"},
      {"\"A\"=dword:123456789\n", "6: unexpected text at the end of the line"},
      {"\"A\"=\"x\"y\"\n", "6: unexpected text at the end of the line"},
      {"\"A\"=hex:01,\\\n  0g,\\\n  03\n",
       "7: expected bytes of two hexadecimal digits with commas between them"},
      {"\"A\"=hex:0g,\\\n  02,\\\n  03\n",
       "6: expected bytes of two hexadecimal digits with commas between them"},
      {"\"A\"=hex:01,\n", "6: expected bytes of two hexadecimal digits with commas between them"},
      {"\"A\"=hex:01 02\n", "6: expected bytes of two hexadecimal digits with commas between them"},
      {"\"A\"=hex:01,\\\n", "6: the line with the rest of the bytes is missing"},
      {"\"A\"=hex(1):41\n", "6: a text has an odd number of bytes"},
      {"\"A\"=hex(g):41\n", "6: expected hex(type): with a hexadecimal type"},
      {"\"A\"=\"\xE9\"\n", "6: the text is not UTF-8 text"},
      {"junk\n", "6: expected \"name\"=value, [key] or ; comment"},
      {std::string(4096, '\0') + "\n", "6: expected \"name\"=value, [key] or ; comment"},
      {std::string("\"A\"=\"a\0b\"\n", 10), "6: the text is not UTF-8 text"},
  };
  for (const auto& [line, expected] : cases) {
    reports_.clear();
    PutFile(path_, std::string(kStart) + "\"First\"=\"1\"\n;\n" + line + "\"Last\"=\"2\"\n");
    // The line of the damage is the sixth.
    EXPECT_EQ(Query("First"), Text("1"));
    EXPECT_EQ(Query("Last"), Text("2")) << line;
    EXPECT_EQ(Query("A"), std::nullopt) << line;
    ASSERT_EQ(reports_.size(), 1U) << line;
    EXPECT_EQ(reports_[0], "registry.reg:" + expected);
  }
}

TEST_F(RegistryFormatTest, ValuesBelowADamagedKeyBelongToNoKey) {
  PutFile(path_, std::string(kStart) + "\"A\"=\"1\"\n[HKEY_LOCAL_MACHINE\\OTHER\n\"A\"=\"2\"\n");
  EXPECT_EQ(Query("A"), Text("1"));
  EXPECT_TRUE(Write("B", Text("3")));
  EXPECT_EQ(Stored(), std::string(kStart) + "\"A\"=\"1\"\n\"B\"=\"3\"\n");
  ASSERT_EQ(reports_.size(), 2U);
  EXPECT_EQ(reports_[0], "registry.reg:5: the key's name has no closing ]");
}

TEST_F(RegistryFormatTest, AMissingHeaderIsDamageToo) {
  for (const std::string& content : {std::string(), std::string("; only\n"), std::string("REGEDIT4\n"),
                                     std::string("\"A\"=\"1\"\n"), std::string("\xFF\xFE\x41", 3)}) {
    reports_.clear();
    PutFile(path_, content);
    EXPECT_EQ(Query("A"), std::nullopt);
    ASSERT_FALSE(reports_.empty());
    EXPECT_EQ(reports_[0],
              "registry.reg:1: expected \"Windows Registry Editor Version 5.00\" as the first line");
  }
}

TEST_F(RegistryFormatTest, NoContentBreaksTheReader) {
  using std::string_literals::operator""s;
  const std::string alphabet = "\"@[]=-\\;,:\r\n\t hex(1)dword09af\0\xC3\xA9\xFF"s;
  std::mt19937 random(7);
  for (int round = 0; round < 5000; ++round) {
    std::string content = round % 2 == 0 ? kStart : "";
    for (auto length = random() % 120; length > 0; --length) content += alphabet[random() % alphabet.size()];
    RegistryDocument document(content);
    const std::vector<NamedRegistryValue> values{{"A", Text("1")}};
    ASSERT_TRUE(document.Set("HKEY_LOCAL_MACHINE\\SOFTWARE\\ORVEN", values));
    const RegistryDocument again(document.Text());
    EXPECT_TRUE(again.Faults().empty()) << content << "\n---\n" << again.Faults().front().text;
    const RegistryValue* stored = again.Find("HKEY_LOCAL_MACHINE\\SOFTWARE\\ORVEN", "A");
    ASSERT_NE(stored, nullptr) << content;
    EXPECT_EQ(*stored, Text("1"));
  }
}

}  // namespace
}  // namespace orven::test

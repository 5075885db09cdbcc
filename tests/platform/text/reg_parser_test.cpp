// What registry editors read, line by line. Most cases are known behaviour of real editors.
#include "platform/text/reg_parser.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace korvex::platform {
namespace {

using Events = std::vector<std::string>;

std::string printable(std::string_view bytes) {
  std::string text;
  for (const char c : bytes) {
    if (c >= ' ' || static_cast<unsigned char>(c) >= 0x80) {
      text += c;
    } else {
      text += fmt::format("<{:x}>", static_cast<unsigned char>(c));
    }
  }
  return text;
}

class Recorder : public RegTextSink {
 public:
  RegStep beginKey(std::size_t line, const KeyPath& key) override {
    events.push_back(fmt::format("{} [{}]", line, fullKeyName(key.root, key.path)));
    return RegStep::Done;
  }
  RegStep deleteKey(std::size_t line, const KeyPath& key) override {
    events.push_back(fmt::format("{} [-{}]", line, fullKeyName(key.root, key.path)));
    return RegStep::Done;
  }
  RegStep setValue(std::size_t line, std::string_view name, RegType type,
                   std::string_view data) override {
    events.push_back(fmt::format("{} {}={:x}:{}", line, printable(name), type, printable(data)));
    return RegStep::Done;
  }
  RegStep deleteValue(std::size_t line, std::string_view name) override {
    events.push_back(fmt::format("{} {}=-", line, printable(name)));
    return RegStep::Done;
  }
  void problem(std::size_t line, std::string_view) override {
    events.push_back(fmt::format("{} refused", line));
  }
  void note(std::size_t line, std::string_view) override {
    events.push_back(fmt::format("{} note", line));
  }
  Events events;
};

Events parseCut(std::string_view file, std::size_t cut, ShortRoots roots) {
  Recorder recorder;
  RegTextParser parser(recorder, *CodePage::find(1252), roots);
  bool wanted = true;
  for (std::size_t at = 0; wanted && at < file.size(); at += cut) {
    wanted = parser.feed(file.substr(at, cut));
  }
  if (wanted) parser.finish();
  if (!parser.headerAccepted()) recorder.events.push_back("foreign");
  return recorder.events;
}

// The events of a file, which must not depend on where its blocks end.
Events parse(std::string_view file, ShortRoots roots = ShortRoots::No) {
  const Events whole = parseCut(file, file.size() + 1, roots);
  for (const std::size_t cut : {1, 2, 3, 7}) EXPECT_EQ(parseCut(file, cut, roots), whole) << cut;
  return whole;
}

// The events of lines in key HKEY_CURRENT_USER\k, which itself is line 2; 8-bit text.
Events parseValues(std::string_view lines, std::string_view header = "REGEDIT4") {
  Events events = parse(fmt::format("{}\n[HKEY_CURRENT_USER\\k]\n{}", header, lines));
  EXPECT_FALSE(events.empty());
  EXPECT_EQ(events.front(), "2 [HKEY_CURRENT_USER\\k]");
  if (!events.empty()) events.erase(events.begin());
  return events;
}

constexpr std::string_view kV5 = "Windows Registry Editor Version 5.00";

std::string utf16File(std::string_view text) { return "\xFF\xFE" + utf8ToUtf16le(text); }

TEST(RegParser, HeaderIsExact) {
  const Events none;
  for (const char* good :
       {"REGEDIT4", " \tREGEDIT4\r\n", "REGEDIT\n", "Windows Registry Editor Version 5.00\r\n"}) {
    EXPECT_EQ(parse(good), none) << good;
  }
  const Events foreign{"foreign"};
  for (const char* bad :
       {"", "\n", "\nREGEDIT4\n", "regedit4\n", "REGEDIT 4\n", "REGEDIT4FOO\n", "REGEDIT4 FOO\n",
        "REGEDIT5\n", "REGEDIT4 \n", "Windows Registry Editor Version 4.00\n",
        "Windows Registry Editor Version 5\n", "windows registry editor version 5.00\n",
        "\xFE\xFF\0R\0E", "; comment\nREGEDIT4\n"}) {
    EXPECT_EQ(parse(fmt::format("{}[HKEY_CURRENT_USER\\k]\n", bad)), foreign) << bad;
  }
}

TEST(RegParser, EncodingFollowsTheByteOrderMark) {
  const std::string text = fmt::format("{}\r\n[HKEY_CURRENT_USER\\é😀]\r\n\"€\"=\"ä\"\r\n", kV5);
  const Events expected{"2 [HKEY_CURRENT_USER\\é😀]", "3 €=1:ä<0>"};
  EXPECT_EQ(parse(utf16File(text)), expected);
  Events noted = expected;
  noted.insert(noted.begin(), "1 note");
  EXPECT_EQ(parse("\xEF\xBB\xBF" + text), noted);
  // Without a mark it is the code page, whatever the header says and the bytes look like.
  EXPECT_EQ(parseValues("\"\xE9\"=\"\x80\"", kV5), Events{"3 é=1:€<0>"});
  EXPECT_EQ(parseValues("\"\xC3\xA9\"=\"\"", kV5), Events{"3 Ã©=1:<0>"});
  EXPECT_EQ(parse(utf16File("REGEDIT4\n[HKEY_USERS\\é]\n")),
            (Events{"1 note", "2 [HKEY_USERS\\é]"}));
}

TEST(RegParser, BrokenCharactersCostTheirLine) {
  EXPECT_EQ(parse("\xEF\xBB\xBFREGEDIT4\n[HKEY_USERS\\a]\n\"a\"=\"\xE4\"\n[HKEY_USERS\\\xFF]\n"
                  "\"b\"=\"\"\n"),
            (Events{"1 note", "2 [HKEY_USERS\\a]", "3 refused", "4 refused", "5 refused"}));
  const std::string cut = utf16File(fmt::format("{}\n[HKEY_USERS\\a]\n", kV5)) + "x";
  EXPECT_EQ(parse(cut), (Events{"2 [HKEY_USERS\\a]", "2 refused"}));
  // A lone surrogate is a character like any other.
  EXPECT_EQ(parse(utf16File(fmt::format("{}\n[HKEY_USERS\\\xED\xA0\x80]", kV5))),
            Events{"2 [HKEY_USERS\\\xED\xA0\x80]"});
}

TEST(RegParser, KeysRunToTheLastBracket) {
  EXPECT_EQ(
      parse("REGEDIT4\n"
            "[HKEY_LOCAL_MACHINE\\a]b;c=d/\"e\"] ; comment\n"
            " \t[hkey_classes_root\\.txt\\]\n"
            "[HKEY_CURRENT_CONFIG]\n"
            "[HKEY_USERS\\a][b]\r\n"
            "[-HKEY_CURRENT_USER\\a\\b] gone"),
      (Events{"2 [HKEY_LOCAL_MACHINE\\a]b;c=d/\"e\"]", "3 [HKEY_CLASSES_ROOT\\.txt]",
              "4 [HKEY_CURRENT_CONFIG]", "5 [HKEY_USERS\\a][b]", "6 [-HKEY_CURRENT_USER\\a\\b]"}));
}

TEST(RegParser, BadKeyClosesTheOneBefore) {
  const std::string longName(256, 'n');
  for (const std::string& bad :
       {std::string("[ HKEY_USERS\\b]"), std::string("[HKEY_CURRENT_ROOT\\b]"),
        std::string("[HKCU\\b]"), std::string("[HKEY_USERS\\b"),
        std::string("[HKEY_USERS\\b\\\\c]"), std::string("[\\HKEY_USERS\\b]"),
        "[HKEY_USERS\\" + longName + "]", std::string("[-HKEY_BAD\\b]"),
        std::string("[HKEY_USERS\\a\0b]", 16)}) {
    EXPECT_EQ(
        parse("REGEDIT4\n[HKEY_USERS\\a]\n" + bad + "\n\"v\"=\"\"\n\"w\"=-\n[HKEY_USERS\\c]"),
        (Events{"2 [HKEY_USERS\\a]", "3 refused", "4 refused", "5 refused", "6 [HKEY_USERS\\c]"}))
        << bad;
  }
  EXPECT_EQ(parse("REGEDIT4\n\"v\"=\"\"\n[-HKEY_USERS\\a\\b]\n@=\"\"\n"),
            (Events{"2 refused", "3 [-HKEY_USERS\\a\\b]", "4 refused"}));
  EXPECT_EQ(parse("REGEDIT4\n[HKCU\\b]\n\"v\"=-", ShortRoots::Yes),
            (Events{"2 [HKEY_CURRENT_USER\\b]", "3 v=-"}));
}

TEST(RegParser, RootsAndHivesCannotBeDeleted) {
  for (const char* key :
       {"HKEY_LOCAL_MACHINE", "HKEY_CURRENT_USER\\", "HKEY_LOCAL_MACHINE\\Software",
        "HKEY_LOCAL_MACHINE\\SYSTEM\\", "HKEY_USERS\\.DEFAULT"}) {
    EXPECT_EQ(parse(fmt::format("REGEDIT4\n[-{}]\n", key)), Events{"2 refused"}) << key;
  }
  EXPECT_EQ(parse("REGEDIT4\n[-HKEY_CURRENT_USER\\Software]"),
            Events{"2 [-HKEY_CURRENT_USER\\Software]"});
}

TEST(RegParser, DynamicDataIsPassedOver) {
  EXPECT_EQ(
      parse("REGEDIT4\n[HKEY_DYN_DATA\\Config]\n\"a\"=dword:1\n\"b\"=-\n[HKEY_USERS\\a]\n@=-"),
      (Events{"2 note", "5 [HKEY_USERS\\a]", "6 =-"}));
}

TEST(RegParser, CommentsAndBlanksMeanNothing) {
  EXPECT_EQ(
      parseValues("; one \\\n \t; two\n# three\n\n \t\n"
                  "  \"a\" \t= \"x\" ; c\n@ =\t\"y\";c\n\"b\"=dword: 1 ;c\n\"c\"=- ;c\n@=-\t\n"
                  "\"d;\"=\"a;b#\"\n"),
      (Events{"8 a=1:x<0>", "9 =1:y<0>", "10 b=4:<1><0><0><0>", "11 c=-", "12 =-",
              "13 d;=1:a;b#<0>"}));
  EXPECT_EQ(parseValues("\"a\"=\"x\"#c\n\"b\"=dword:1 #c\n\"c\"=-#\n\"d\"=hex:1#\n"),
            (Events{"3 refused", "4 refused", "5 refused", "6 refused"}));
}

TEST(RegParser, EscapesInNamesAndStrings) {
  EXPECT_EQ(parseValues(R"("a\\b\"c"="C:\\x\\\"y\"")"), Events{R"(3 a\b"c=1:C:\x\"y"<0>)"});
  EXPECT_EQ(parseValues(R"("n"="a\nb\rc\0d")"), Events{"3 n=1:a<a>b<d>c<0>d<0>"});
  EXPECT_EQ(parseValues(R"("n"="a\qb")"), (Events{"3 note", "3 n=1:aqb<0>"}));
  for (const char* open :
       {R"("n"="a)", R"("n"="a\")", R"("n"="a\)", R"("n)", R"("n\"=1)", "\"n\"=\""}) {
    EXPECT_EQ(parseValues(open), Events{"3 refused"}) << open;
  }
  // A line break inside a string ends its line: the value is lost, what follows is not.
  EXPECT_EQ(parseValues("\"n\"=\"a\r\nb\"\r\n\"m\"=\"\"\r\n"),
            (Events{"3 refused", "4 refused", "5 m=1:<0>"}));
}

TEST(RegParser, LinesThatSayNothingValid) {
  for (const char* bad : {"x=1", "n\"=\"\"", "\"n\"", "\"n\":1", "\"n\"=", "\"n\"=x", "@x=\"\"",
                          "\"n\"=\"a\"b", "\"n\"=str:\"a\"", "\"n\"=-1", "\"n\\0\"=-", "@@=\"\""}) {
    EXPECT_EQ(parseValues(fmt::format("{}\n\"z\"=-", bad)), (Events{"3 refused", "4 z=-"})) << bad;
  }
}

TEST(RegParser, DwordsHaveOneToEightDigits) {
  EXPECT_EQ(parseValues("\"a\"=dword:aBcDeF01\n\"b\"=dword:  7\n"),
            (Events{"3 a=4:<1>\xEF\xCD\xAB", "4 b=4:<7><0><0><0>"}));
  EXPECT_EQ(parseValues("\"a\"=DWORD:1\n"), (Events{"3 note", "3 a=4:<1><0><0><0>"}));
  for (const char* bad : {"", " ", "000000001", "123456789", "0x1", "1 2", "-1", "g", "1,"}) {
    EXPECT_EQ(parseValues(fmt::format("\"a\"=dword:{}\n", bad)), Events{"3 refused"}) << bad;
  }
}

TEST(RegParser, HexTypes) {
  EXPECT_EQ(parseValues("\"a\"=hex:61,62\n\"b\"=hex(0):\n\"c\"=hex(B):1,2 , 3,\n\"d\"=hex(7):\n"
                        "\"e\"=hex(ffff0012):61;c\n\"f\"=hex(00000000004):61\n\"g\"=hex:  61\n"),
            (Events{"3 a=3:ab", "4 b=0:", "5 c=b:<1><2><3>", "6 d=7:", "7 e=ffff0012:a", "8 f=4:a",
                    "9 g=3:a"}));
  EXPECT_EQ(parseValues("\"a\"=HEX(2):61,0\n"), (Events{"3 note", "3 a=2:a<0>"}));
  for (const char* bad :
       {"hex(100000000):1", "hex(0x2):1", "hex():1", "hex(2:1", "hex(2)1", "hex1", "hex", "hex:,1",
        "hex:1,,2", "hex:1 2", "hex:100", "hex:0x1", "hex:g", "hex(2 ):1", "hex:1\\"}) {
    EXPECT_EQ(parseValues(fmt::format("\"a\"={}\n", bad)), Events{"3 refused"}) << bad;
  }
}

TEST(RegParser, TextBytesAreOfTheDialect) {
  EXPECT_EQ(
      parseValues("\"a\"=hex(2):25,41,25,00\n\"b\"=hex(1):e9\n\"c\"=hex(7):80,0,0\n"
                  "\"d\"=hex(6):e9\n\"e\"=hex(2):25\n\"f\"=hex(2):\n"),
      (Events{"3 a=2:%A%<0>", "4 b=1:é", "5 c=7:€<0><0>", "6 d=6:\xE9", "7 e=2:%<0>", "8 f=2:"}));
  EXPECT_EQ(parseValues("\"a\"=hex(2):25,00,ac,20\n\"b\"=hex(1):e9,00\n\"c\"=hex(7):61,0,0,0,0,0\n"
                        "\"d\"=hex(6):e9,0\n\"e\"=hex(1):61,00,62\n",
                        kV5),
            (Events{"3 a=2:%€<0>", "4 b=1:é", "5 c=7:a<0><0>", "6 d=6:\xE9<0>", "7 note",
                    "7 e=1:a\xFF\x62"}));
}

TEST(RegParser, HexGoesOnAfterACommaAndABackslash) {
  EXPECT_EQ(parseValues("\"a\"=hex:61,\\\n  62,\\ ;c\n\n ; comment\n\t63\n\"b\"=hex:\\\r\n61\r\n"),
            (Events{"3 a=3:abc", "8 b=3:a"}));
  // What was due bytes is consumed, whatever it is; then lines are lines again.
  EXPECT_EQ(parseValues("\"a\"=hex:61,\\\n\"b\"=\"\"\n\"c\"=-\n"), (Events{"4 refused", "5 c=-"}));
  EXPECT_EQ(parseValues("\"a\"=hex:61,\\\n,62\n\"c\"=-\n"), (Events{"4 refused", "5 c=-"}));
  EXPECT_EQ(parseValues("\"a\"=hex:61,\\#c\n\"c\"=-\n"), (Events{"3 refused", "4 c=-"}));
  EXPECT_EQ(parseValues("\"a\"=hex:61\\\n  62\n"), (Events{"3 refused", "4 refused"}));
  EXPECT_EQ(parseValues("\"a\"=hex:61,\\\n"), Events{"3 refused"});
  // A key that is consumed so leaves its values to nobody.
  EXPECT_EQ(parseValues("\"a\"=hex:61,\\\n[HKEY_USERS\\b]\n\"c\"=-\n"),
            (Events{"4 refused", "5 refused"}));
}

TEST(RegParser, ValuesOfOneEndlessLineAndOfManyLines) {
  std::string bytes;
  std::string lines;
  for (int i = 0; i < 100000; ++i) {
    bytes += "41,";
    lines += i % 20 == 19 ? "41,\\\r\n  " : "41,";
  }
  const std::string data(100000, 'A');
  const Events events =
      parseCut("REGEDIT4\n[HKEY_USERS\\a]\n\"a\"=hex:" + bytes + "42\n\"b\"=hex:" + lines + "42",
               4096, ShortRoots::No);
  EXPECT_EQ(events, (Events{"2 [HKEY_USERS\\a]", "3 a=3:" + data + "B", "4 b=3:" + data + "B"}));
}

TEST(RegParser, LineBeyondAllLimitsIsRefusedAndLeft) {
  Recorder recorder;
  RegTextParser parser(recorder, *CodePage::find(1252), ShortRoots::No);
  parser.feed("REGEDIT4\n[HKEY_USERS\\a]\n\"a\"=\"");
  const std::string block(1 << 20, 'x');
  for (int i = 0; i < 40; ++i) ASSERT_TRUE(parser.feed(block));
  parser.feed("\"\n\"b\"=-\n");
  parser.finish();
  EXPECT_EQ(recorder.events, (Events{"2 [HKEY_USERS\\a]", "3 refused", "4 b=-"}));
}

TEST(RegParser, OldFilesSetDefaultsOfClasses) {
  EXPECT_EQ(parse("REGEDIT\r\nHKEY_CLASSES_ROOT\\.txt = txtfile\r\n"
                  "HKEY_CLASSES_ROOT\\a\\b =  two \r\nHKEY_CLASSES_ROOT\\c three\r\n"
                  "HKEY_CLASSES_ROOT\\d\r\nHKEY_CLASSES_ROOT\\e=f\r\n\r\n"
                  "HKEY_LOCAL_MACHINE\\x = y\r\nhello\r\nHKEY_CLASSES_ROOT\\\\g = h\r\n"),
            (Events{"2 [HKEY_CLASSES_ROOT\\.txt]", "2 =1:txtfile<0>", "3 [HKEY_CLASSES_ROOT\\a\\b]",
                    "3 =1: two <0>", "4 [HKEY_CLASSES_ROOT\\c]", "4 =1:three<0>",
                    "5 [HKEY_CLASSES_ROOT\\d]", "5 =1:<0>", "6 [HKEY_CLASSES_ROOT\\e=f]",
                    "6 =1:<0>", "8 note", "9 note", "10 refused"}));
}

}  // namespace
}  // namespace korvex::platform

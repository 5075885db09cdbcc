// What Windows paths mean and which are refused.
#include "platform/common/windows_path.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

namespace korvex::platform {
namespace {

using Names = std::vector<std::string>;

TEST(WindowsPath, MeansWhatWindowsReads) {
  const std::vector<std::pair<std::string, std::string>> cases = {
      {"c:/WINNT\\system32", "C:\\WINNT\\system32"},
      {"C:\\", "C:\\"},
      {"C:\\\\a//b", "C:\\a\\b"},
      {"C:\\a\\.\\b\\..\\c", "C:\\a\\c"},
      {"C:\\a\\..", "C:\\"},
      {"C:\\dir. \\file.txt. .", "C:\\dir\\file.txt"},
      {"C:\\ leading", "C:\\ leading"},
      {"C:\\WINNT\\", "C:\\WINNT\\"},
      {"C:\\conduct\\nullify.com10", "C:\\conduct\\nullify.com10"},
      {"C:\\Übung\\日本", "C:\\Übung\\日本"},
  };
  for (const auto& [text, meaning] : cases) {
    WindowsPath path;
    EXPECT_EQ(parseWindowsPath(text, path), ERROR_SUCCESS) << text;
    EXPECT_EQ(formatWindowsPath(path), meaning) << text;
  }
}

void expectRefused(const Names& paths, Status status) {
  for (const std::string& text : paths) {
    WindowsPath path;
    EXPECT_EQ(parseWindowsPath(text, path), status) << text;
  }
}

TEST(WindowsPath, RefusesWhatIsNoPlaceOnADrive) {
  expectRefused({"", "C:", "x.txt", "C:x.txt", "\\x.txt", "..\\x", "\\\\server\\share\\x",
                 "//server/share", "\\\\?\\C:\\x", "\\\\.\\C:\\x", "1:\\x", "\xC3\xA4:\\x"},
                ERROR_BAD_PATHNAME);
  expectRefused({"C:\\..", "C:\\..\\..\\etc\\passwd", "C:\\foo.\\..\\..\\x", "C:/a/../../b"},
                ERROR_BAD_PATHNAME);
}

TEST(WindowsPath, RefusesNamesThatWindowsForbids) {
  expectRefused({"C:\\CON", "C:\\dir\\NUL.txt", "C:\\com1:", "C:\\LPT9 .x", "C:\\aux.\\x",
                 "C:\\clock$", "C:\\CON\\..\\x", "C:\\COM\xC2\xB9"},
                ERROR_INVALID_NAME);
  expectRefused(
      {"C:\\a<b", "C:\\a>b", "C:\\x.txt:stream", "C:\\\"x\"", "C:\\a|b", "C:\\*.txt", "C:\\a?",
       "C:\\tab\there", std::string("C:\\nul\0byte", 11), "C:\\...", "C:\\a\\.. \\b", "C:\\ \\b"},
      ERROR_INVALID_NAME);
  // No UTF-8: a bare byte, an overlong '/', an encoded surrogate, a sequence cut short.
  expectRefused({"C:\\\xFF", "C:\\\xC0\xAF", "C:\\\xED\xA0\x80", "C:\\\xE2\x82"},
                ERROR_INVALID_NAME);
}

TEST(WindowsPath, HoldsTwoHundredFiftyNineCharacters) {
  WindowsPath path;
  std::string umlauts;
  for (int i = 0; i < 256; ++i) umlauts += "ä";
  EXPECT_EQ(parseWindowsPath("C:\\" + umlauts, path), ERROR_SUCCESS);
  EXPECT_EQ(parseWindowsPath("C:\\" + umlauts + "x", path), ERROR_FILENAME_EXCED_RANGE);
  EXPECT_EQ(parseWindowsPath("C:\\" + std::string(200'000, 'x'), path), ERROR_FILENAME_EXCED_RANGE);
  std::string pattern;
  EXPECT_EQ(parseWindowsPattern("C:\\" + umlauts + "\\*", path, pattern),
            ERROR_FILENAME_EXCED_RANGE);
}

TEST(WindowsPath, TakesWildcardsInTheLastPartOnly) {
  WindowsPath folder;
  std::string pattern;
  EXPECT_EQ(parseWindowsPattern("C:\\WINNT\\*.hlp", folder, pattern), ERROR_SUCCESS);
  EXPECT_EQ(formatWindowsPath(folder), "C:\\WINNT");
  EXPECT_EQ(pattern, "*.hlp");
  EXPECT_EQ(parseWindowsPattern("C:\\W*\\x", folder, pattern), ERROR_INVALID_NAME);
  EXPECT_EQ(parseWindowsPattern("C:\\a\\..", folder, pattern), ERROR_INVALID_NAME);
  EXPECT_EQ(parseWindowsPattern("C:\\a\\*|x", folder, pattern), ERROR_INVALID_NAME);
  EXPECT_EQ(parseWindowsPattern("*.txt", folder, pattern), ERROR_BAD_PATHNAME);
}

TEST(WindowsPath, MatchesWildcardsAsWindowsDoes) {
  const std::vector<std::pair<std::string, Names>> matching = {
      {"*", {"a", "a.b", ".x"}},
      {"*.*", {"readme", "a.b"}},
      {"*.HTM", {"x.htm"}},
      {"*.", {"readme"}},
      {"a.*", {"a", "a.b", "A.b.c"}},
      {"????.txt", {"a.txt"}},
      {"a?", {"a", "ab"}},
      {"*.?", {"a.b", "a"}},
      {"Ä*", {"ärger"}},
      {"?", {"ä", "日"}},
      {"a*.*", {"abc"}},
      {"*a*b*", {"xaxbx"}},
  };
  const std::vector<std::pair<std::string, Names>> notMatching = {
      {"*.htm", {"x.html", "htm"}},
      {"*.", {"a.txt"}},
      {"????.txt", {"abcde.txt"}},
      {"a?", {"abc", "a.b"}},
      {"*.?", {"a.txt"}},
      {"a.*", {"ab", "ab.c"}},
      {"x.", {"x.y"}},
      {"*a*b*", {"bxa"}},
  };
  for (const auto& [pattern, names] : matching) {
    for (const auto& name : names) EXPECT_TRUE(matchesWildcards(pattern, name)) << pattern << name;
  }
  for (const auto& [pattern, names] : notMatching) {
    for (const auto& name : names) EXPECT_FALSE(matchesWildcards(pattern, name)) << pattern << name;
  }
  // Many stars end at once all the same.
  std::string stars;
  for (int i = 0; i < 60; ++i) stars += "*a";
  EXPECT_FALSE(matchesWildcards(stars + "b", std::string(250, 'a')));
}

}  // namespace
}  // namespace korvex::platform

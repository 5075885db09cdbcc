// Editing initialisation files: one line changes, every other byte stays.
#include "platform/common/ini_document.h"

#include <gtest/gtest.h>

namespace korvex::platform {
namespace {

using Names = std::vector<std::string>;

IniDocument document(std::string bytes, SectionGap gap = SectionGap::None) {
  return {std::move(bytes), CodePage::find(1252), gap};
}

std::string afterSet(std::string bytes, std::string_view section, std::string_view key,
                     std::string_view value, SectionGap gap = SectionGap::None) {
  IniDocument edited = document(std::move(bytes), gap);
  EXPECT_EQ(edited.set(section, key, value), ERROR_SUCCESS);
  EXPECT_EQ(edited.value(section, key), value);
  return edited.bytes();
}

TEST(IniDocument, ReadsWhatWindowsReads) {
  const IniDocument ini = document(
      "early=1\r\n"
      "  [ Windows ] ; remark\r\n"
      ";load=comment\r\n"
      "  ; run=comment\r\n"
      " Load = a.exe b.exe \r\n"
      "load=second\r\n"
      "c:\\x (1),*=a=b\r\n"
      "bare\r\n"
      "quoted=\" x \"\r\n"
      "=nothing\r\n"
      "[broken\r\n"
      "empty=\r\n"
      "[WINDOWS]\r\n"
      "run=hidden\r\n");
  EXPECT_EQ(ini.sections(), Names{"Windows"});
  EXPECT_EQ(ini.value("windows", "LOAD"), "a.exe b.exe");
  EXPECT_EQ(ini.value("windows", "C:\\X (1),*"), "a=b");
  EXPECT_EQ(ini.value("windows", "quoted"), "\" x \"");
  EXPECT_EQ(ini.value("windows", "empty"), "");
  for (const char* missing : {"run", ";load", "bare", "early", "", "[broken"}) {
    EXPECT_EQ(ini.value("windows", missing), std::nullopt) << missing;
  }
  EXPECT_EQ(ini.lines("Windows"),
            (Names{"Load=a.exe b.exe", "load=second", "c:\\x (1),*=a=b", "bare", "quoted=\" x \"",
                   "=nothing", "[broken", "empty="}));
}

TEST(IniDocument, AChangeTouchesOneLine) {
  const std::string head = "; head\r\n\r\n[A]  \r\n Key =  ";
  const std::string tail = "\r\n\r\n[a]\r\nkey=3\n\n;tail";
  EXPECT_EQ(afterSet(head + "old  " + tail, "a", "KEY", "new"), head + "new" + tail);
  EXPECT_EQ(afterSet(head + tail, "a", "KEY", "new"), head + "new" + tail);
  EXPECT_EQ(afterSet("[a]\r\nk=1", "a", "k", "2"), "[a]\r\nk=2");
  EXPECT_EQ(afterSet("[a]\nk=1\n", "a", "k", "2"), "[a]\nk=2\n");
}

TEST(IniDocument, ANewKeyEndsItsSection) {
  EXPECT_EQ(afterSet("[a]\r\nx=1\r\n\r\n[b]\r\n", "A", "y", "2"),
            "[a]\r\nx=1\r\ny=2\r\n\r\n[b]\r\n");
  EXPECT_EQ(afterSet("[a]", "a", "y", "2"), "[a]\r\ny=2\r\n");
  EXPECT_EQ(afterSet("[a]\nx=1", "a", "y", "2"), "[a]\nx=1\ny=2\n");
  EXPECT_EQ(afterSet("[a]\r\nx=1\r\n\x1A\r\n", "a", "y", "2"), "[a]\r\nx=1\r\ny=2\r\n\x1A\r\n");
  EXPECT_EQ(afterSet("[a]\r\nx=1\x1A", "a", "y", "2"), "[a]\r\nx=1\r\ny=2\r\n\x1A");
}

TEST(IniDocument, ANewSectionEndsTheFile) {
  EXPECT_EQ(afterSet("", "a", "k", "v"), "[a]\r\nk=v\r\n");
  EXPECT_EQ(afterSet("[b]\r\nx=1", "a", "k", "v"), "[b]\r\nx=1\r\n[a]\r\nk=v\r\n");
  const auto gap = SectionGap::BlankLine;
  EXPECT_EQ(afterSet("", "a", "k", "v", gap), "[a]\r\nk=v\r\n");
  EXPECT_EQ(afterSet("[b]\n\x1A", "a", "k", "v", gap), "[b]\n\n[a]\nk=v\n\x1A");
  EXPECT_EQ(afterSet("[b]\r\n\r\n", "a", "k", "v", gap), "[b]\r\n\r\n[a]\r\nk=v\r\n");
}

TEST(IniDocument, RemovesOneKeyOrAWholeSection) {
  const std::string bytes = "[a]\r\nx=1\r\nX=2\r\n[b]\r\ny=1\r\n\r\n[A]\r\nz=1";
  IniDocument ini = document(bytes);
  EXPECT_EQ(ini.remove("a", "none"), ERROR_SUCCESS);
  EXPECT_EQ(ini.remove("none", "x"), ERROR_SUCCESS);
  EXPECT_EQ(ini.removeSection("none"), ERROR_SUCCESS);
  EXPECT_EQ(ini.bytes(), bytes);
  EXPECT_EQ(ini.remove("A", "x"), ERROR_SUCCESS);
  EXPECT_EQ(ini.bytes(), "[a]\r\nX=2\r\n[b]\r\ny=1\r\n\r\n[A]\r\nz=1");
  EXPECT_EQ(ini.removeSection("B"), ERROR_SUCCESS);
  EXPECT_EQ(ini.bytes(), "[a]\r\nX=2\r\n[A]\r\nz=1");
}

TEST(IniDocument, DevicesAreEditedByOccurrence) {
  IniDocument ini =
      document("[386Enh]\r\ndevice=*vmd\r\nDevice=a.386\r\nx=1\r\n[b]\r\ndevice=no\r\n");
  EXPECT_EQ(ini.values("386enh", "DEVICE"), (Names{"*vmd", "a.386"}));
  EXPECT_EQ(ini.setAt("386Enh", "device", 1, "b.386"), ERROR_SUCCESS);
  EXPECT_EQ(ini.add("386Enh", "device", "c.386"), ERROR_SUCCESS);
  EXPECT_EQ(ini.removeAt("386Enh", "device", 0), ERROR_SUCCESS);
  EXPECT_EQ(ini.bytes(), "[386Enh]\r\nDevice=b.386\r\ndevice=c.386\r\nx=1\r\n[b]\r\ndevice=no\r\n");
  EXPECT_EQ(ini.setAt("386Enh", "device", 2, "x"), ERROR_FILE_NOT_FOUND);
  EXPECT_EQ(ini.removeAt("386Enh", "device", 2), ERROR_FILE_NOT_FOUND);
}

TEST(IniDocument, RefusesWhatWouldNotBeReadBack) {
  const std::string bytes = "[a]\r\nx=1\r\n";
  IniDocument ini = document(bytes);
  for (const char* key : {"", " ", ";x", "[x", "x=y", "x\ny"}) {
    EXPECT_EQ(ini.set("a", key, "v"), ERROR_INVALID_PARAMETER) << key;
  }
  for (const char* section : {"", "a]b", "a\r\nb"}) {
    EXPECT_EQ(ini.set(section, "k", "v"), ERROR_INVALID_PARAMETER) << section;
  }
  for (const std::string& value : {std::string("v\r\nrun=evil.exe"), std::string("v\0w", 3)}) {
    EXPECT_EQ(ini.set("a", "x", value), ERROR_INVALID_PARAMETER);
    EXPECT_EQ(ini.set("a", "new", value), ERROR_INVALID_PARAMETER);
  }
  EXPECT_EQ(ini.bytes(), bytes);
}

TEST(IniDocument, KeepsTheCodePage) {
  IniDocument ini = document(
      "[Gr\xF6\xDF"
      "e]\r\n\x81=\x80\r\n");
  EXPECT_EQ(ini.set("GRÖßE", "Länge", "5 €"), ERROR_SUCCESS);
  EXPECT_EQ(ini.bytes(),
            "[Gr\xF6\xDF"
            "e]\r\n\x81=\x80\r\nL\xE4nge=5 \x80\r\n");
  const std::string before = ini.bytes();
  EXPECT_EQ(ini.set("größe", "länge", "日本"), ERROR_NO_UNICODE_TRANSLATION);
  EXPECT_EQ(ini.set("größe", "日本", "x"), ERROR_NO_UNICODE_TRANSLATION);
  EXPECT_EQ(ini.set("日本", "x", "y"), ERROR_NO_UNICODE_TRANSLATION);
  EXPECT_EQ(ini.bytes(), before);
}

}  // namespace
}  // namespace korvex::platform

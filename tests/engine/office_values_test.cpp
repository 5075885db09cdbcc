// The values behind the fields and switches of frmOffice: what is written for a text, and what is
// read of what others wrote.
#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <tuple>
#include <utility>

#include "engine_fixture.h"

namespace korvex::engine {
namespace {

using Kind = TweakState::Kind;

const std::string kExcel = "Software\\Microsoft\\Office\\9.0\\Excel\\Options";
const std::string kWord = "Software\\Microsoft\\Office\\9.0\\Word\\Options";
const std::string kEngines = "Software\\Microsoft\\Jet\\4.0\\Engines\\";

class OfficeValuesTest : public EngineTest {
 public:
  OfficeValuesTest() {
    createKey(HKCU, kExcel);
    for (const char* engine : {"Jet 4.0", "ODBC", "Text", "Xbase"}) {
      createKey(HKLM, kEngines + engine);
    }
    foundation::detectSystem(session);
  }
  // As Apply does it, with that text in the row's field.
  bool write(std::string_view property, const std::string& text) {
    const forms::Form& form = book.load("frmOffice");
    const Tweak& row = *findTweak(property);
    if (auto* box = form.find<forms::TextBox>(row.control)) box->Text = text;
    if (auto* list = form.find<forms::ComboBox>(row.control)) list->Text = text;
    return worker.call(property);
  }
  std::string read(std::string_view property) { return readText(*findTweak(property), session); }
  Kind stateOf(std::string_view property) { return readState(*findTweak(property), session).kind; }
};

TEST_F(OfficeValuesTest, AutoCalculateIsTheNumberOfAFunction) {
  for (const auto& [text, code] : {std::pair{"Count Nums", "dword:0"},
                                   {"SUM", "dword:4"},
                                   {"average", "dword:5"},
                                   {"Min", "dword:6"},
                                   {"mAX", "dword:7"},
                                   {"count", "dword:169"},
                                   {"", "dword:4"},
                                   {"Median", "dword:4"},
                                   {"Count ", "dword:4"}}) {
    setDword(HKCU, kExcel, "AutoCalculate", 99);
    EXPECT_TRUE(write("P_WriteAutoCalculate", text));
    EXPECT_EQ(code, value(HKCU, kExcel, "AutoCalculate")) << text;
  }
  for (const auto& [code, text] : {std::pair{0, "Count Nums"},
                                   {4, "Sum"},
                                   {5, "Average"},
                                   {6, "Min"},
                                   {7, "Max"},
                                   {361, "Count"},
                                   {12, "12"}}) {
    setDword(HKCU, kExcel, "AutoCalculate", code);
    EXPECT_EQ(text, read("P_WriteAutoCalculate"));
  }
}

TEST_F(OfficeValuesTest, ATextStaysThePlainTextThatWasTyped) {
  for (const auto& [property, key, name] :
       {std::tuple{"P_User", std::pair{HKCU, kExcel}, "User"},
        {"P_Date", {HKLM, kEngines + "XBASE"}, "Date"},
        {"P_CharacterSet", {HKLM, kEngines + "TEXT"}, "CharacterSet"}}) {
    EXPECT_TRUE(write(property, "%a%b%"));
    EXPECT_EQ("\"%a%b%\"", value(key.first, key.second, name)) << property;
    EXPECT_EQ("%a%b%", read(property));
  }
}

TEST_F(OfficeValuesTest, ANumberTakesAllOfADwordAndNoMore) {
  EXPECT_TRUE(write("P_BitmapMemory", "4294967295"));
  EXPECT_EQ("dword:ffffffff", value(HKCU, kWord, "BitmapMemory"));
  EXPECT_EQ("4294967295", read("P_BitmapMemory"));
  EXPECT_TRUE(write("P_BitmapMemory", "007"));
  const Dump before = dump(registry());
  EXPECT_FALSE(write("P_BitmapMemory", "4294967296"));
  EXPECT_EQ(before, dump(registry()));
  ASSERT_EQ(1U, prompts.messages.size());
  EXPECT_NE(std::string::npos, prompts.messages[0].text.find("4294967295"));
  EXPECT_EQ("7", read("P_BitmapMemory"));
}

TEST_F(OfficeValuesTest, WhatOthersWroteIsReadAndReplacedByTheOwnType) {
  setText(HKCU, kWord, "CacheSize", "256");
  EXPECT_EQ("256", read("P_CacheSize")) << "Word 97 keeps numbers as text";
  EXPECT_TRUE(write("P_CacheSize", "512"));
  EXPECT_EQ("dword:200", value(HKCU, kWord, "CacheSize"));

  EXPECT_EQ("1024", read("P_BitmapMemory")) << "nothing there: the default";
  EXPECT_EQ("3", read("P_DefSheets"));
  EXPECT_EQ("", read("P_User"));
  EXPECT_EQ("Sum", read("P_WriteAutoCalculate"));
  EXPECT_EQ("9500", read("P_MaxLocksPerFile"));
  EXPECT_EQ("yes", read("P_UserCommitSync"));
  EXPECT_EQ("CSVDELIMITED", read("P_Format"));
}

TEST_F(OfficeValuesTest, AnyNumberButZeroSwitchesOnAndNoValueIsTheDefault) {
  for (const char* name : {"FatBlastRows", "DisableAsync", "TryJetAuth"}) {
    EXPECT_EQ(Kind::On, stateOf(std::string("P_rw") + name)) << name << " without a value";
  }
  EXPECT_EQ(Kind::Off, stateOf("P_rwSnapshotOnly")) << "without a value";
  for (const std::uint32_t number : {0xFFFFFFFFU, 1U, 256U}) {
    setDword(HKLM, kEngines + "ODBC", "FatBlastRows", number);
    setDword(HKLM, kEngines + "ODBC", "SnapshotOnly", number);
    EXPECT_EQ(Kind::On, stateOf("P_rwFatBlastRows")) << number;
    EXPECT_EQ(Kind::On, stateOf("P_rwSnapshotOnly")) << number;
  }
  setDword(HKLM, kEngines + "ODBC", "FatBlastRows", 0);
  EXPECT_EQ(Kind::Off, stateOf("P_rwFatBlastRows"));

  EXPECT_EQ(Kind::On, stateOf("P_rwDeleted")) << "without a value";
  EXPECT_EQ(Kind::Off, stateOf("P_rwCentury")) << "without a value";
  for (const auto& [bytes, kind] : {std::pair{std::string("\xFF", 1), Kind::On},
                                    {std::string("\1", 1), Kind::On},
                                    {std::string("\0", 1), Kind::Off}}) {
    setRaw(HKLM, kEngines + "Xbase", "Century", platform::REG_BINARY, bytes);
    setRaw(HKLM, kEngines + "Xbase", "Deleted", platform::REG_BINARY, bytes);
    EXPECT_EQ(kind, stateOf("P_rwCentury"));
    EXPECT_EQ(kind, stateOf("P_rwDeleted"));
  }
}

TEST_F(OfficeValuesTest, AnOdbcSwitchAlwaysAsksForARestart) {
  session.g_bRebootNeeded = false;
  put(*findTweak("P_rwFastRequery"), 1);
  EXPECT_TRUE(worker.call("P_rwFastRequery"));
  EXPECT_TRUE(session.g_bRebootNeeded);
  // A field written after it does not take that back.
  EXPECT_TRUE(write("P_User", "Ann"));
  EXPECT_TRUE(write("P_Threads", "4"));
  EXPECT_TRUE(session.g_bRebootNeeded);
}

}  // namespace
}  // namespace korvex::engine

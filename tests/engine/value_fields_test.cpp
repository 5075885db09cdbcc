// Fields of rows as a person types: what is refused and when, what is written, and what the field
// shows then.
#include "engine/value_fields.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "engine_fixture.h"

namespace korvex::engine {
namespace {

const std::string kExcel = "Software\\Microsoft\\Office\\9.0\\Excel\\Options";
const std::string kWord = "Software\\Microsoft\\Office\\9.0\\Word\\Options";
const std::string kEngine = "Software\\Microsoft\\Jet\\4.0\\Engines\\Jet 4.0";

// Fails everything from a moment on.
class MortalRegistry : public platform::ForwardingRegistry {
 public:
  using ForwardingRegistry::ForwardingRegistry;
  bool dead = false;

 protected:
  platform::Status admit() override { return dead ? platform::ERROR_ACCESS_DENIED : 0; }
};

// Office 2000 with some values, in a window that was just opened.
class ValueFieldsTest : public EngineTest {
 public:
  ValueFieldsTest() {
    setDword(HKCU, kExcel, "DefSheets", 8);
    setText(HKCU, kWord, "CacheSize", "256");
    setText(HKCU, kExcel, "User", "Karen");
    createKey(HKLM, kEngine);
    createKey(HKLM, "Software\\Microsoft\\Jet\\4.0\\Engines\\Text");
    foundation::detectSystem(ofWindow_);
    read();
  }

  void read() {
    ofWindow_.g_bNoRecord = true;
    readIntoForm(form_, ofWindow_);
    ofWindow_.g_bNoRecord = false;
    fields_.load();
  }

  void type(std::string_view control, const std::string& text) {
    forms::Control* found = form_.find(control);
    if (auto* box = dynamic_cast<forms::TextBox*>(found)) {
      box->Text = text;
    } else {
      dynamic_cast<forms::ComboBox&>(*found).Text = text;
    }
  }
  void leave(std::string_view control) { form_.find<forms::TextBox>(control)->LostFocus.raise(); }
  std::string shownIn(std::string_view control) {
    if (auto* list = form_.find<forms::ComboBox>(control)) return list->Text;
    return form_.find<forms::TextBox>(control)->Text;
  }
  // What was told since the last time.
  std::string told() {
    std::string all;
    for (const auto& message : prompts.messages) all += message.text;
    prompts.messages.clear();
    return all;
  }
  std::vector<std::string> failing(ValueFields::Order order) {
    std::vector<std::string> routines;
    for (const auto& failure : fields_.write({}, order)) routines.push_back(failure.property);
    return routines;
  }
  // Nothing waits, and nothing is written.
  void expectNothingToWrite() {
    EXPECT_EQ(0, fields_.changesWaiting());
    const Dump before = dump(registry());
    EXPECT_TRUE(fields_.write({}).empty());
    EXPECT_EQ(before, dump(registry()));
  }
  std::string excel(std::string_view name) { return value(HKCU, kExcel, name); }

 protected:
  RowForm& form_ = dynamic_cast<RowForm&>(book.load("frmOffice"));
  MortalRegistry registry_{machine.registry()};
  platform::ComposedMachine composed_{machine.get(), {.registry = &registry_}};
  foundation::Session ofWindow_{composed_, prompts};
  RegWorker worker_{ofWindow_, book};
  int edits_ = 0;
  ValueFields fields_{ofWindow_, worker_, form_.controls.all(), [this] { ++edits_; }};
};

struct Refusal {
  const char* control;
  const char* typed;
  const char* told;
};
constexpr const char* kNumerals = "This field accepts numerical characters only.";
constexpr const char* kLetters = "This field accepts alpha characters only.";
constexpr const char* kSheets = "Valid range for this setting is 1 - 100.";
constexpr const char* kFiles = "The value of this field must be a number between 1 and 9.";
constexpr const char* kCache = "The valid range for this setting is 64 - 2047.";
constexpr const char* kBuffer = "The valid range for this setting is 9 - 4096.";

TEST_F(ValueFieldsTest, WhatCannotBecomeAValueIsToldAndTakenBackAtOnce) {
  for (const Refusal& refusal :
       {Refusal{"txtExcelDefaultWorksheets", "8x", kNumerals},
        {"txtExcelMRUList", "-1", kNumerals},
        {"txtMaxUndo", "1.5", kNumerals},
        {"txtWordMaxBitCache", "all", kNumerals},
        {"txtWordDocMaxCache", "64 ", kNumerals},
        {"txtExcelDefaultWorksheets", "0", kSheets},
        {"txtExcelDefaultWorksheets", "101", kSheets},
        {"txtExcelMRUList", "0", kFiles},
        {"txtExcelMRUList", "10", kFiles},
        {"txtWordDocMaxCache", "0", kCache},
        {"txtWordDocMaxCache", "2048", kCache},
        {"txtWordDocMaxCache", "99999999999", kCache},
        {"txtMaxBufferSize", "4097", kBuffer},
        {"txtThreads", "x", kNumerals},
        {"txtUserCommitSync", "ye5", kLetters},
        {"txtDate", "D-M", kLetters},
        {"txtWordMaxBitCache", "4294967296", "4294967296 is too large: at most 4294967295."}}) {
    SCOPED_TRACE(std::string(refusal.control) + " " + refusal.typed);
    const std::string before = shownIn(refusal.control);
    type(refusal.control, refusal.typed);
    EXPECT_EQ(refusal.told, told());
    EXPECT_EQ(before, shownIn(refusal.control));
  }
  EXPECT_EQ(0, edits_) << "Apply has nothing to do";
  expectNothingToWrite();
}

TEST_F(ValueFieldsTest, BothEndsOfARangeAreTaken) {
  for (const auto& [control, numbers] :
       {std::pair{"txtExcelDefaultWorksheets", std::pair{"1", "100"}},
        {"txtExcelMRUList", {"1", "9"}},
        {"txtWordDocMaxCache", {"64", "2047"}},
        {"txtMaxBufferSize", {"9", "4096"}}}) {
    for (const char* number : {numbers.first, numbers.second}) {
      type(control, number);
      leave(control);
      EXPECT_TRUE(fields_.write({}).empty());
      EXPECT_EQ("", told()) << control << ' ' << number;
      EXPECT_EQ(number, shownIn(control));
    }
  }
  EXPECT_EQ("dword:64", excel("DefSheets"));
  EXPECT_EQ("dword:7ff", value(HKCU, kWord, "CacheSize")) << "where a text stood";
  EXPECT_EQ("dword:1000", value(HKLM, kEngine, "MaxBufferSize"));
}

TEST_F(ValueFieldsTest, ANumberThatCanStillBecomeOneIsRefusedWhenTheFieldIsLeft) {
  type("txtWordDocMaxCache", "6");
  EXPECT_EQ("", told());
  leave("txtWordDocMaxCache");
  EXPECT_EQ(kCache, told());
  EXPECT_EQ("256", shownIn("txtWordDocMaxCache")) << "what was read";
  expectNothingToWrite();

  type("txtWordDocMaxCache", "6");
  type("txtWordDocMaxCache", "64");
  leave("txtWordDocMaxCache");
  EXPECT_EQ("", told());
  EXPECT_EQ(1, fields_.changesWaiting());
}

TEST_F(ValueFieldsTest, ApplyLooksAtTheRangeOnceMoreAndWritesTheOthers) {
  type("txtWordDocMaxCache", "63");
  type("txtMaxBufferSize", "8");
  type("txtThreads", "4");
  EXPECT_EQ("", told());
  EXPECT_TRUE(fields_.write({}).empty()) << "what was told is no failure";
  EXPECT_EQ(
      std::string(kCache) +
          "The valid range for MaxBufferSize is 9 - 4096.\r\n\r\nThis change will be skipped.",
      told());
  EXPECT_EQ("256", shownIn("txtWordDocMaxCache"));
  EXPECT_EQ("\"256\"", value(HKCU, kWord, "CacheSize"));
  EXPECT_EQ("512", shownIn("txtMaxBufferSize"));
  EXPECT_EQ("", value(HKLM, kEngine, "MaxBufferSize"));
  EXPECT_EQ("dword:4", value(HKLM, kEngine, "Threads"));
  EXPECT_EQ(0, fields_.changesWaiting());
}

TEST_F(ValueFieldsTest, ARefusedNumberGivesWayToTheLastOneReadOrWritten) {
  type("txtExcelDefaultWorksheets", "5");
  type("txtExcelDefaultWorksheets", "500");
  EXPECT_EQ("8", shownIn("txtExcelDefaultWorksheets"));
  EXPECT_EQ(kSheets, told());
  expectNothingToWrite();

  type("txtExcelDefaultWorksheets", "5");
  EXPECT_TRUE(fields_.write({}).empty());
  type("txtExcelDefaultWorksheets", "500");
  EXPECT_EQ("5", shownIn("txtExcelDefaultWorksheets"));
  EXPECT_EQ(0, fields_.changesWaiting());
  EXPECT_EQ("dword:5", excel("DefSheets"));
}

// Setup programs write 0 where Jet is to choose, and code pages by their numbers.
TEST_F(ValueFieldsTest, WhatTheMachineHoldsIsNeverThePersonsFault) {
  setDword(HKLM, kEngine, "MaxBufferSize", 0);
  setText(HKLM, "Software\\Microsoft\\Jet\\4.0\\Engines\\Text", "CharacterSet", "1252");
  createKey(HKLM, "Software\\Microsoft\\Jet\\4.0\\Engines\\Xbase");
  setText(HKLM, "Software\\Microsoft\\Jet\\4.0\\Engines\\Xbase", "DataCodePage", "850");
  read();
  leave("txtMaxBufferSize");
  EXPECT_EQ("", told());
  for (const Refusal& refusal :
       {Refusal{"txtMaxBufferSize", "5000", kBuffer}, {"txtDataCodePage", "8501", kLetters}}) {
    const std::string there = shownIn(refusal.control);
    type(refusal.control, refusal.typed);
    EXPECT_EQ(refusal.told, told()) << "once";
    EXPECT_EQ(there, shownIn(refusal.control));
    type(refusal.control, "");
    type(refusal.control, there);
    leave(refusal.control);
    EXPECT_EQ("", told()) << "typed back by hand";
  }
  expectNothingToWrite();
}

TEST_F(ValueFieldsTest, AFieldShowsAfterwardsWhatItWrote) {
  for (const char* control :
       {"txtExcelDefaultWorksheets", "txtExcelUserName", "txtUserCommitSync", "cboCharacterSet"}) {
    type(control, "");
  }
  type("cboAutoCalculate", "Median");
  EXPECT_TRUE(fields_.write({}).empty());
  EXPECT_EQ("3", shownIn("txtExcelDefaultWorksheets"));
  EXPECT_EQ("dword:3", excel("DefSheets"));
  EXPECT_EQ("", shownIn("txtExcelUserName"));
  EXPECT_EQ("", excel("User"));
  EXPECT_EQ("yes", shownIn("txtUserCommitSync"));
  EXPECT_EQ("OEM", shownIn("cboCharacterSet"));
  EXPECT_EQ("Sum", shownIn("cboAutoCalculate")) << "no function that Excel knows";
  EXPECT_EQ("dword:4", excel("AutoCalculate"));
  EXPECT_EQ(0, fields_.changesWaiting());
  EXPECT_EQ("", told());
}

TEST_F(ValueFieldsTest, FieldsAreWrittenInTheOrderAskedForAndWaitUntilTheyAre) {
  type("txtThreads", "4");
  type("txtWordDocMaxCache", "128");
  type("txtExcelDefaultWorksheets", "5");
  type("txtExcelUserName", "Ann");
  type("txtThreads", "6");
  const Dump before = dump(registry());
  registry_.dead = true;
  EXPECT_EQ((std::vector<std::string>{"P_User", "P_DefSheets", "P_CacheSize", "P_Threads"}),
            failing(ValueFields::Order::OfRows));
  EXPECT_EQ((std::vector<std::string>{"P_Threads", "P_CacheSize", "P_DefSheets", "P_User"}),
            failing(ValueFields::Order::OfEdits));
  EXPECT_EQ(before, dump(registry()));
  EXPECT_EQ(4, fields_.changesWaiting());
  EXPECT_EQ("5", shownIn("txtExcelDefaultWorksheets"));

  registry_.dead = false;
  EXPECT_TRUE(failing(ValueFields::Order::OfRows).empty());
  EXPECT_EQ("\"Ann\"", excel("User"));
  EXPECT_EQ("dword:6", value(HKLM, kEngine, "Threads"));
  EXPECT_EQ(0, fields_.changesWaiting());
}

}  // namespace
}  // namespace korvex::engine

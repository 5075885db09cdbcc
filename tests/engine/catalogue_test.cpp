// What every row must keep to. Each message says which row, and what to change.
#include "engine/catalogue.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <array>
#include <cctype>
#include <map>
#include <set>
#include <string>
#include <tuple>
#include <utility>

#include "engine/modes.h"
#include "engine/readers.h"
#include "engine/reg_worker.h"
#include "forms/control.h"

namespace korvex::engine {
namespace {

std::string lower(std::string_view text) {
  std::string result(text);
  for (char& c : result) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  return result;
}

bool onAndOffDiffer(const Tweak& tweak) { return !(decide(tweak, 1, {}) == decide(tweak, 0, {})); }

// Whether restore-defaults does what a checked box does; the integer's width does not matter.
bool checkedIsDefault(const Tweak& tweak) {
  const Decision checked = decide(tweak, 1, {});
  const Decision byDefault = decideDefault(tweak);
  return checked.act == byDefault.act && checked.value.isEmpty() == byDefault.value.isEmpty() &&
         foundation::looselyEqual(checked.value, byDefault.value);
}

struct GivenEnding {
  std::string_view form;
  std::string_view control;  // "" for all others of the form
  std::string_view ending;
};
constexpr std::array kGivenEndings{
    GivenEnding{"frmNT4_Win2KCont", "chkPaintVersionNT5",
                "...default is checked...reboot required"},
    GivenEnding{"frmNT4_Win2KCont", "", "...default is unchecked...reboot required"},
    GivenEnding{"frmNTServer", "chkShutDownOption",
                "...default is unchecked for WK, checked for SVR...reboot required"},
    GivenEnding{"frmNTServer", "cboBrowseElections", "...default is 'Auto'...reboot required"},
    GivenEnding{"frmNTServer", "txtMaxServerUsers",
                "...default is dependent on licenses purchased...reboot required"},
    GivenEnding{"frmNTServer", "", "...default is unchecked...reboot required"},
    GivenEnding{"frmOffice", "txtExcelUserName", "...default is that of Office"},
};

// What a field shows where the machine has no value.
std::string defaultOf(const Tweak& tweak) {
  return tweak.byDefault.kind == RowValue::Kind::Number ? std::to_string(tweak.byDefault.number)
                                                        : std::string(tweak.byDefault.text);
}

// How its tool tip has to end.
std::string toolTipEnding(const Tweak& tweak) {
  // These texts are given, and do not always promise what restore-defaults writes.
  for (const GivenEnding& given : kGivenEndings) {
    if (tweak.form == given.form && (given.control.empty() || given.control == tweak.control)) {
      return std::string(given.ending);
    }
  }
  std::string ending = "...default ";
  if (tweak.special == &RegWorker::P_rwRestrictRegAccess) {
    ending += "depends on the Windows";
  } else if (tweak.shape == ControlShape::OptionPair) {
    ending += "is to append";  // the one that there is
  } else if (isField(tweak)) {
    ending += fmt::format("is {}", defaultOf(tweak));
  } else {
    // Its routine restores the browser's own pictures.
    bool on = tweak.special == &RegWorker::p_rwToolbarBitmaps || checkedIsDefault(tweak);
    // The database engine takes any number but 0 for a yes.
    if (tweak.reader == p_DetermineJetVals) on = tweak.byDefault.number != 0;
    ending += on ? "is checked" : "is unchecked";
  }
  if (tweak.reboot) ending += "...restart required";
  return ending;
}

std::string_view prefixOf(ControlShape shape) {
  if (shape == ControlShape::TextBox) return "txt";
  if (shape == ControlShape::ComboBox) return "cbo";
  return shape == ControlShape::OptionPair ? "opt" : "chk";
}

// The mnemonic in lower case; 0 for none.
char mnemonicOf(std::string_view caption) {
  for (std::size_t i = 0; i + 1 < caption.size(); ++i) {
    if (caption[i] != '&') continue;
    if (caption[i + 1] != '&') return lower(caption.substr(i + 1, 1))[0];
    ++i;
  }
  return 0;
}

// Adds to the names seen; a message where it was there already.
class Unique {
 public:
  std::string add(const std::string& name, const Tweak& tweak) {
    const auto [there, isNew] = seen_.try_emplace(lower(name), &tweak);
    return isNew ? ""
                 : fmt::format("{} is also that of {}: choose another one", name,
                               there->second->property);
  }
  // Rows that no Windows has both of may share a name.
  std::string addForFamilies(const std::string& name, const Tweak& tweak) {
    std::string message;
    for (int family = 1; family < kEvery; family *= 2) {
      if ((tweak.families & family) == 0) continue;
      const std::string clash = add(fmt::format("{} ({})", name, family), tweak);
      if (message.empty()) message = clash;
    }
    return message;
  }

 private:
  std::map<std::string, const Tweak*> seen_;
};

TEST(Catalogue, NamesAreUnique) {
  Unique properties, controls, states, values;
  for (const Tweak* tweak : allTweaks()) {
    SCOPED_TRACE(tweak->property);
    EXPECT_EQ("", properties.add(std::string(tweak->property), *tweak));
    EXPECT_EQ("", values.addForFamilies(
                      fmt::format("{:x}\\{}\\{}", tweak->root, tweak->key, tweak->value), *tweak))
        << "two rows write one value";
    if (tweak->shape == ControlShape::None) continue;
    EXPECT_EQ("", controls.add(fmt::format("{}.{}", tweak->form, tweak->control), *tweak));
    if (isField(*tweak)) continue;  // nothing is recorded for a text
    EXPECT_EQ("", states.addForFamilies(
                      fmt::format("{}\\{}", stateKey(tweak->bank), tweak->stateName), *tweak));
  }
}

TEST(Catalogue, EveryRowSaysWhereItStandsAndWhatItWrites) {
  for (const Tweak* tweak : allTweaks()) {
    SCOPED_TRACE(tweak->property);
    EXPECT_TRUE(tweak->property.starts_with(isField(*tweak) ? "P_" : "P_rw"))
        << "a routine's name begins with P_rw, that of a field at least with P_";
    EXPECT_TRUE(tweak->root == HKCR || tweak->root == HKCU || tweak->root == HKLM);
    EXPECT_FALSE(tweak->key.empty()) << "name the key";
    EXPECT_FALSE(tweak->key.starts_with('\\') || tweak->key.ends_with('\\') ||
                 tweak->key.find("\\\\") != std::string_view::npos ||
                 tweak->key.find('/') != std::string_view::npos)
        << "a key's path is relative: no backslash at its ends, none doubled";
    EXPECT_EQ(bankForm(tweak->bank), tweak->form) << "the bank belongs to another window";
    EXPECT_NE(0, tweak->families) << "name the Windows that have it";
    EXPECT_EQ(0, tweak->needsDesktopUpdate & ~tweak->families)
        << "only a Windows that has the setting can need the desktop update for it";
    if (tweak->shape == ControlShape::None) {
      EXPECT_TRUE(tweak->control.empty() && tweak->stateName.empty())
          << "a row without a control has no state";
      EXPECT_NE(nullptr, tweak->special) << "without a box only a routine of its own can run";
      continue;
    }
    EXPECT_FALSE(tweak->group.empty()) << "name the frame it stands in";
    const bool isText = isField(*tweak);
    EXPECT_TRUE(tweak->control.starts_with(prefixOf(tweak->shape)));
    EXPECT_EQ(isText, !tweak->buddy.empty()) << "a field, and only that, has a label";
    EXPECT_EQ(isText, tweak->stateName.empty()) << "a box, and only that, has a state value";
    EXPECT_EQ(tweak->shape == ControlShape::OptionPair, !tweak->otherCaption.empty());
    EXPECT_EQ(tweak->shape == ControlShape::ComboBox, !tweak->choices.empty());
    EXPECT_TRUE(isText || tweak->special != nullptr || onAndOffDiffer(*tweak))
        << "checked and unchecked write the same";
  }
}

// "The valid range for this setting is 64 - 2047."
TEST(Catalogue, AFieldWithARangeTellsItAndHasItsDefaultInIt) {
  int ranges = 0;
  for (const Tweak* tweak : allTweaks()) {
    SCOPED_TRACE(tweak->property);
    if (tweak->rangeText.empty()) {
      EXPECT_TRUE(tweak->lowest == 0 && tweak->highest == 0 && tweak->skipText.empty())
          << "a range that nobody is told of is not kept to";
      continue;
    }
    ++ranges;
    EXPECT_TRUE(tweak->digitsOnly) << "only a number has a range";
    EXPECT_LT(tweak->lowest, tweak->highest);
    const auto byDefault = static_cast<std::uint32_t>(tweak->byDefault.number);
    EXPECT_TRUE(tweak->byDefault.kind == RowValue::Kind::Number && byDefault >= tweak->lowest &&
                byDefault <= tweak->highest)
        << "an empty field writes the default";
    for (const std::string_view told : {tweak->rangeText, tweak->skipText}) {
      if (told.empty()) continue;
      for (const std::uint32_t end : {tweak->lowest, tweak->highest}) {
        EXPECT_NE(std::string_view::npos, told.find(std::to_string(end))) << told;
      }
    }
  }
  EXPECT_GE(ranges, 5);
}

// "Removes Run from the Start menu...default is unchecked...restart required"
TEST(Catalogue, CaptionsAndToolTipsKeepToTheirForm) {
  for (const Tweak* tweak : allTweaks()) {
    if (tweak->shape == ControlShape::None) continue;
    SCOPED_TRACE(tweak->property);
    const std::string caption = forms::plainCaption(tweak->caption);
    // A tab page is narrow; the dialogs' widest captions were there first.
    const std::size_t most = tweak->form == "frmMain" ? 60 : 80;
    EXPECT_TRUE(caption.size() >= 5 && caption.size() <= most)
        << "5 to " << most << " characters: " << caption;
    EXPECT_TRUE(std::isupper(static_cast<unsigned char>(caption[0])) || caption == "3-D dialogs");
    EXPECT_LE(tweak->toolTip.size(), 160U) << "a tool tip is read at a glance";
    const std::string ending = toolTipEnding(*tweak);
    EXPECT_TRUE(tweak->toolTip.ends_with(ending)) << "end the tool tip with " << ending;
    EXPECT_FALSE(tweak->reboot && !tweak->toolTip.ends_with(" required"));
    EXPECT_GT(tweak->toolTip.size(), ending.size() + 10) << "say what the setting does";
  }
}

// The letters of a window's own tabs and buttons.
std::string_view lettersOfWindow(std::string_view form) {
  if (form == "frmOffice") return "wxpsjcrad";
  return form == "frmMain" ? "abders" : "ad";
}

TEST(Catalogue, MnemonicsAreUniqueOnAPage) {
  // The captions of these dialogs are given, and share some letters.
  std::map<std::string_view, int> shared{{"frmMoreSecurity", 11}, {"frmWinTweaksII", 1}};
  // Of frmOffice one group is shown at a time; the captions of Jet's are given, without letters.
  using Shown = std::tuple<std::string_view, Page, std::string_view>;
  std::map<Shown, std::map<char, std::string_view>> used;
  for (const Tweak* tweak : allTweaks()) {
    for (const std::string_view caption : {tweak->caption, tweak->otherCaption}) {
      const char mnemonic = mnemonicOf(caption);
      if (mnemonic == 0) continue;
      const std::string_view group = tweak->form == "frmOffice" ? tweak->group : "";
      const auto [there, isNew] =
          used[{tweak->form, tweak->page, group}].try_emplace(mnemonic, tweak->property);
      EXPECT_TRUE(isNew || shared[tweak->form]-- > 0)
          << tweak->property << " and " << there->second << " share '" << mnemonic
          << "': move or drop the &";
      EXPECT_EQ(std::string_view::npos, lettersOfWindow(tweak->form).find(mnemonic))
          << tweak->property << ": '" << mnemonic << "' belongs to the window's buttons";
    }
  }
  for (const auto& [form, left] : shared) EXPECT_EQ(0, left) << form << " shares fewer letters";
}

TEST(Catalogue, RowsAreFoundByAnyOfTheirNames) {
  const Tweak* run = findTweak("P_rwRun");
  ASSERT_NE(nullptr, run);
  EXPECT_EQ(run, findTweak("p_RWrun"));
  EXPECT_EQ(run, findTweak("run"));
  EXPECT_EQ(run, findTweakOf("FRMMAIN", "chkhiderun"));
  EXPECT_EQ(nullptr, findTweak("P_rw"));
  ASSERT_NE(nullptr, findTweak("P_ServerMaxUsers"));
  EXPECT_EQ(findTweak("P_ServerMaxUsers"), findTweak("servermaxusers"));
  EXPECT_EQ(nullptr, findTweak(""));
  EXPECT_EQ(nullptr, findTweakOf("frmMain", "cmdApply"));
}

TEST(Catalogue, BanksNameTheirKeysAndWindows) {
  EXPECT_EQ("SOFTWARE\\Korvex\\Configuration", bankKey(Bank::Configuration));
  EXPECT_EQ("SOFTWARE\\Korvex\\CurrentSettingsVIII", bankKey(Bank::DrWat));
  EXPECT_EQ("frmMain", bankForm(Bank::Configuration));
  EXPECT_EQ("frmMoreSecurity", bankForm(Bank::MoreSecurity));
  EXPECT_EQ("SOFTWARE\\Korvex\\Configuration", stateKey(Bank::Configuration));
  EXPECT_EQ("SOFTWARE\\Korvex\\CurrentSettings", stateKey(Bank::Office));
  EXPECT_EQ("", bankKey(static_cast<Bank>(10)));
}

}  // namespace
}  // namespace korvex::engine

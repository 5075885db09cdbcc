// What every row must keep to. Each message says which row, and what to change.
#include "engine/catalogue.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <cctype>
#include <map>
#include <set>
#include <string>

#include "engine/modes.h"
#include "forms/control.h"

namespace korvex::engine {
namespace {

std::string lower(std::string_view text) {
  std::string result(text);
  for (char& c : result) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  return result;
}

bool onAndOffDiffer(const Tweak& tweak) { return !(decide(tweak, 1, {}) == decide(tweak, 0, {})); }

// Whether restore-defaults writes what a checked box writes; the integer's width does not matter.
bool checkedIsDefault(const Tweak& tweak) {
  const foundation::Variant on = decide(tweak, 1, {}).value;
  const foundation::Variant byDefault = decideDefault(tweak).value;
  return on.isEmpty() == byDefault.isEmpty() && foundation::looselyEqual(on, byDefault);
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
    const auto [there, isNew] = seen_.try_emplace(lower(name), tweak.property);
    return isNew ? ""
                 : fmt::format("{} is also that of {}: choose another one", name, there->second);
  }

 private:
  std::map<std::string, std::string_view> seen_;
};

TEST(Catalogue, NamesAreUnique) {
  Unique properties, controls, states, values;
  for (const Tweak* tweak : allTweaks()) {
    SCOPED_TRACE(tweak->property);
    EXPECT_EQ("", properties.add(std::string(tweak->property), *tweak));
    EXPECT_EQ("", controls.add(fmt::format("{}.{}", tweak->form, tweak->control), *tweak));
    EXPECT_EQ(
        "", values.add(fmt::format("{:x}\\{}\\{}", tweak->root, tweak->key, tweak->value), *tweak))
        << "two rows write one value";
    if (tweak->shape == ControlShape::TextBox) continue;  // nothing is recorded for a text
    EXPECT_EQ("",
              states.add(fmt::format("{}\\{}", stateKey(tweak->bank), tweak->stateName), *tweak));
  }
}

TEST(Catalogue, EveryRowSaysWhereItStandsAndWhatItWrites) {
  for (const Tweak* tweak : allTweaks()) {
    SCOPED_TRACE(tweak->property);
    EXPECT_TRUE(tweak->property.starts_with("P_rw")) << "a routine's name begins with P_rw";
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
    EXPECT_FALSE(tweak->group.empty()) << "name the frame it stands in";
    const bool isText = tweak->shape == ControlShape::TextBox;
    EXPECT_TRUE(tweak->control.starts_with(isText ? "txt" : "chk"));
    EXPECT_EQ(isText, !tweak->buddy.empty()) << "a text box, and only that, has a label";
    EXPECT_EQ(isText, tweak->stateName.empty()) << "a check box, and only that, has a state value";
    EXPECT_TRUE(isText || onAndOffDiffer(*tweak)) << "checked and unchecked write the same";
  }
}

// "Removes Run from the Start menu...default is unchecked...restart required"
TEST(Catalogue, CaptionsAndToolTipsKeepToTheirForm) {
  for (const Tweak* tweak : allTweaks()) {
    SCOPED_TRACE(tweak->property);
    const std::string caption = forms::plainCaption(tweak->caption);
    EXPECT_TRUE(caption.size() >= 5 && caption.size() <= 60) << "5 to 60 characters: " << caption;
    EXPECT_TRUE(std::isupper(static_cast<unsigned char>(caption[0])));
    EXPECT_LE(tweak->toolTip.size(), 160U) << "a tool tip is read at a glance";

    std::string ending = "...default is ";
    if (tweak->shape == ControlShape::TextBox) {
      ending += tweak->byDefault.text;
    } else {
      ending += checkedIsDefault(*tweak) ? "checked" : "unchecked";
    }
    if (tweak->reboot) ending += "...restart required";
    EXPECT_TRUE(tweak->toolTip.ends_with(ending)) << "end the tool tip with " << ending;
    EXPECT_GT(tweak->toolTip.size(), ending.size() + 10) << "say what the setting does";
  }
}

TEST(Catalogue, MnemonicsAreUniqueOnAPage) {
  std::map<Page, std::map<char, std::string_view>> used;
  for (const Tweak* tweak : allTweaks()) {
    if (tweak->form != "frmMain") continue;
    const char mnemonic = mnemonicOf(tweak->caption);
    if (mnemonic == 0) continue;
    const auto [there, isNew] = used[tweak->page].try_emplace(mnemonic, tweak->property);
    EXPECT_TRUE(isNew) << tweak->property << " and " << there->second << " share '" << mnemonic
                       << "': move or drop the &";
    EXPECT_EQ(std::string_view::npos, std::string_view("abders").find(mnemonic))
        << tweak->property << ": '" << mnemonic << "' belongs to the window's buttons";
  }
}

TEST(Catalogue, RowsAreFoundByAnyOfTheirNames) {
  const Tweak* run = findTweak("P_rwRun");
  ASSERT_NE(nullptr, run);
  EXPECT_EQ(run, findTweak("p_RWrun"));
  EXPECT_EQ(run, findTweak("run"));
  EXPECT_EQ(run, findTweakOf("FRMMAIN", "chkhiderun"));
  EXPECT_EQ(nullptr, findTweak("P_rw"));
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

// The tables of all areas as one, and ways to find a row.
#include "engine/catalogue.h"

#include <algorithm>
#include <array>

#include "engine/catalogue/rows.h"

namespace korvex::engine {
namespace {

struct BankRow {
  Bank bank;
  std::string_view key;
  std::string_view form;
};

constexpr std::array kBanks{
    BankRow{Bank::Configuration, kConfigurationKey, "frmMain"},
    BankRow{Bank::MainWindow, "SOFTWARE\\Korvex\\CurrentSettings", "frmMain"},
    BankRow{Bank::WinTweaksII, "SOFTWARE\\Korvex\\CurrentSettingsII", "frmWinTweaksII"},
    BankRow{Bank::NT4_Win2KCont, "SOFTWARE\\Korvex\\CurrentSettingsIII", "frmNT4_Win2KCont"},
    BankRow{Bank::NTServer, "SOFTWARE\\Korvex\\CurrentSettingsIV", "frmNTServer"},
    BankRow{Bank::NTDebug, "SOFTWARE\\Korvex\\CurrentSettingsV", "frmNTDebug"},
    BankRow{Bank::Office, "SOFTWARE\\Korvex\\CurrentSettingsVI", "frmOffice"},
    BankRow{Bank::MoreSecurity, "SOFTWARE\\Korvex\\CurrentSettingsVII", "frmMoreSecurity"},
    BankRow{Bank::DrWat, "SOFTWARE\\Korvex\\CurrentSettingsVIII", "frmDrWat"},
};

constexpr std::array<std::string_view, 7> kPageNames{
    "Security", "Win Tweaks", "Windows 9x", "NT4/Win2K", "MS Office", "Registry", "Options"};

const BankRow* rowOf(Bank bank) {
  const auto found = std::ranges::find(kBanks, bank, &BankRow::bank);
  return found == kBanks.end() ? nullptr : &*found;
}

// "P_rwRun" is "Run", and "P_ServerMaxUsers" is "ServerMaxUsers".
std::string_view shortName(std::string_view property) {
  return property.substr(property.starts_with("P_rw") ? 4 : 2);
}

}  // namespace

const std::vector<const Tweak*>& allTweaks() {
  static const std::vector<const Tweak*> rows = [] {
    std::vector<const Tweak*> result;
    for (const auto table :
         {optionRows(), desktopRows(), shellRows(), securityRows(), moreSecurityRows(),
          windows9xRows(), ntRows(), winTweaksIIRows(), nt4Win2KContRows(), ntServerRows(),
          drWatRows(), officeRows(), jetFormatRows(), jetEngineRows()}) {
      for (const Tweak& row : table) result.push_back(&row);
    }
    return result;
  }();
  return rows;
}

const Tweak* findTweak(std::string_view property) {
  for (const Tweak* row : allTweaks()) {
    if (sameName(row->property, property) || sameName(shortName(row->property), property)) {
      return row;
    }
  }
  return nullptr;
}

Tweak onMachine(const Tweak& row, foundation::Session& session) {
  Tweak result = row;
  if (row.adapt != nullptr) row.adapt(result, session);
  return result;
}

const Tweak* findTweakOf(std::string_view form, std::string_view control) {
  for (const Tweak* row : allTweaks()) {
    if (sameName(row->form, form) && sameName(row->control, control)) return row;
  }
  return nullptr;
}

std::string_view pageName(Page page) {
  const auto index = static_cast<std::size_t>(page) - 1;
  return index < kPageNames.size() ? kPageNames[index] : std::string_view{};
}

std::string_view bankKey(Bank bank) {
  const BankRow* row = rowOf(bank);
  return row == nullptr ? std::string_view{} : row->key;
}

std::string_view stateKey(Bank bank) {
  return bankKey(bank == Bank::Configuration ? Bank::Configuration : Bank::MainWindow);
}

std::string_view bankForm(Bank bank) {
  const BankRow* row = rowOf(bank);
  return row == nullptr ? std::string_view{} : row->form;
}

}  // namespace korvex::engine

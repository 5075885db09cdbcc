// A restore for tests, which changes nothing.
#pragma once

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "backup/restore_offer.h"

namespace korvex::test {

// An offer that remembers what it was asked to do.
class TestOffer : public backup::RestoreOffer {
 public:
  explicit TestOffer(std::vector<backup::RestoreItem> items) : items_(std::move(items)) {}
  std::string question() const override { return "Restore the selected settings for R&D?"; }
  const std::vector<backup::RestoreItem>& items() const override { return items_; }
  backup::RestoreOutcome restore(const std::vector<bool>& chosen,
                                 const backup::Progress& progress) override {
    asked.push_back(chosen);
    wentOn = progress(50);
    if (during) during();
    if (!progress(50)) return {platform::ERROR_SUCCESS, "", "", true};
    return outcome;
  }

  std::vector<std::vector<bool>> asked;
  bool wentOn = false;
  backup::RestoreOutcome outcome;
  std::function<void()> during;

 private:
  std::vector<backup::RestoreItem> items_;
};

inline const std::string kDesktopKey = "HKEY_CURRENT_USER\\Control Panel\\Desktop";

// One whose files were damaged, one with nothing to do, two with changes.
inline std::vector<backup::RestoreItem> someItems() {
  using Kind = backup::RestoreChange::Kind;
  backup::RestoreItem desktop{"DesktopConfig", "Desktop configuration", true, {}, {}, 0};
  desktop.changes = {{Kind::ChangedValue, kDesktopKey, "Wallpaper", "REG_SZ \"a\"", "REG_SZ \"b\""},
                     {Kind::NewKey, kDesktopKey + "\\New", "", "", ""},
                     {Kind::NewValue, kDesktopKey + "\\New", "", "", "REG_DWORD 0x1"},
                     {Kind::DeletedValue, kDesktopKey, "Old", "REG_SZ \"o\"", ""}};
  desktop.changeCount = 4;
  backup::RestoreItem colors{
      "ColorConfig", "Color configuration", true, {"colors.reg is missing."}, {}, 1};
  colors.changes = {{Kind::DeletedFile, "C:\\WINNT\\old.cur", "", "", ""}};
  backup::RestoreItem keyboard{"KeyboardConfig", "Keyboard configuration", true, {}, {}, 0};
  backup::RestoreItem power{"PowerConfig", "Power", false, {"It is damaged."}, colors.changes, 1};
  return {desktop, colors, keyboard, power};
}

}  // namespace korvex::test

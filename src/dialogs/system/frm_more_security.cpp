// What this dialog has beyond its rows.
#include "dialogs/system/frm_more_security.h"

#include <algorithm>
#include <string_view>
#include <utility>
#include <vector>

namespace korvex::dialogs {

namespace {

constexpr std::string_view kMore = "More";
constexpr Opener kRestrictRun{"cmdRestrictRun", "&Run only allowed Windows applications",
                              "Opens a window with the only programs that may run",
                              "frmRestrictRun"};
constexpr Opener kHideDrives{"cmdHideDrives", "Choose...",
                             "Opens a window with the drives that Explorer hides", "frmDrives"};

}  // namespace

frmMoreSecurity::frmMoreSecurity(const DialogParts& parts)
    : TweakDialog(kName, "Korvex...for Power Users - Security Options", engine::Bank::MoreSecurity,
                  parts) {
  enclose(fraWin9x);
  enclose(fraExplorer);
  addOpener(kMore, kRestrictRun);
  forms::CommandButton* drives = makeOpener(*this, parts, kHideDrives);
  if (drives == nullptr) return;
  auto& label = own<forms::Label>("lblHideDrives", "Hide dri&ves in My Computer", drives);
  addTo(kMore, forms::Layout::row(
                   {forms::Layout::of(label), forms::Layout::of(*drives), forms::Layout::space()}));
  // In the shorter of the two columns.
  forms::Layout more = takeGroup(kMore);
  std::vector<forms::Layout>& groups = layout.parts.front().parts;
  const auto explorer = std::ranges::find(groups, fraExplorer.Caption.get(), &forms::Layout::title);
  groups.insert(explorer + 1, std::move(more));
}

bool frmMoreSecurity::accepts(const engine::Tweak& tweak, const forms::CheckBox& box) {
  if (tweak.property != "P_rwDisableHelp" || box.Value != forms::vbChecked) return true;
  if (session().files().exists(session().g_sAppPath + "\\zak.hlp")) return true;
  session().prompts().messageBox(
      "The required file, Zak.hlp, is missing.\r\n"
      "Contact Orvane Software for a replacement.",
      platform::kButtonsOk | platform::kIconExclamation, foundation::kAppTitle);
  return false;
}

}  // namespace korvex::dialogs

// What this dialog has beyond its rows.
#include "dialogs/system/frm_more_security.h"

namespace korvex::dialogs {

frmMoreSecurity::frmMoreSecurity(const DialogParts& parts)
    : TweakDialog(kName, "Korvex...for Power Users - Security Options", engine::Bank::MoreSecurity,
                  parts) {
  enclose(fraWin9x);
  enclose(fraExplorer);
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

// What this dialog has beyond its rows.
#include "dialogs/nt/frm_nt_server.h"

#include "engine/at_once.h"

namespace korvex::dialogs {

frmNTServer::frmNTServer(const DialogParts& parts)
    : TweakDialog(kName, "Korvex...for Power Users -  NT Server", engine::Bank::NTServer, parts) {
  enclose(fraServerTweaks);
}

bool frmNTServer::accepts(const engine::Tweak& tweak, const forms::CheckBox& box) {
  if (tweak.property != "P_rwUseNonRFCSourcePorts" || box.Value != forms::vbChecked) return true;
  session().trace.enter("[frmNTServer.chkLPR_IP_Printing_Click]");
  return engine::askYesNo(
      session(),
      "All LPR IP printer addresses will be set to use ports greater than 1024.\r\n"
      "Do you wish to continue?");
}

}  // namespace korvex::dialogs

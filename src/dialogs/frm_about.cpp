// Filling the labels.
#include "dialogs/frm_about.h"

#include <fmt/format.h>

namespace korvex::dialogs {

using forms::Layout;

frmAbout::frmAbout(foundation::Session& session) : Form(kName, "About Korvex"), session_(session) {
  lblVersion.Caption = "Version " KORVEX_VERSION;
  lblPurpose.Caption = "Tunes Windows 95, 98, Millennium, NT 4 and 2000.";
  cmdOK.Click += [this] { close(); };
  layout = Layout::column(
      {Layout::group("Program", {Layout::of(lblProgram), Layout::of(lblVersion),
                                 Layout::of(lblPurpose), Layout::of(lblLicence)}),
       Layout::group("Machine", {Layout::of(lblMachine), Layout::of(lblUser), Layout::of(lblFolder),
                                 Layout::of(lblSettings), Layout::of(lblLog)}),
       Layout::row({Layout::space(), Layout::of(cmdOK)})});
}

void frmAbout::Load() {
  const platform::MachineDescription machine = session_.machine().describe();
  lblMachine.Caption =
      forms::captionOf(fmt::format("{}, version {}", machine.windows, machine.version));
  lblUser.Caption = forms::captionOf(fmt::format("User {} on {}", machine.user, machine.computer));
  lblFolder.Caption = forms::captionOf(fmt::format("Folder: {}", machine.folder));
  lblLog.Caption = forms::captionOf(fmt::format("Log: {}\\kvxlog.log", session_.g_sAppPath));
}

}  // namespace korvex::dialogs

// Choosing two of sixteen colors.
#include "dialogs/nt/frm_dos_colors.h"

#include <fmt/format.h>

#include <algorithm>

namespace korvex::dialogs {

using forms::Layout;

frmDOSColors::frmDOSColors(const DialogParts& parts)
    : DirectDialog(kName, "Korvex...for Power Users - Command Prompt Colors", parts, engine::kNT) {
  for (const char* name : kColorNames) {
    cboText.AddItem(name);
    cboBackground.AddItem(name);
  }
  describe();
  const auto of = [](forms::Control& control) { return Layout::of(control); };
  layout = Layout::column(
      {Layout::grid(2, {of(lblText), of(cboText), of(lblBackground), of(cboBackground)}),
       of(lblSample), Layout::space(),
       Layout::row({of(cmdDefault), Layout::space(), of(cmdApply), of(cmdDone)})});
  cboText.Click += [this] { choose(); };
  cboBackground.Click += [this] { choose(); };
  onPress(cmdApply, [this] { cmdApply_Click(); });
  onPress(cmdDefault, [this] { cmdDefault_Click(); });
  cmdDone.Click += [this] { close(); };
}

void frmDOSColors::describe() {
  constexpr const char* kWhatsThis =
      "The value DefaultColor of the key HKEY_CURRENT_USER\\Software\\Microsoft\\Command "
      "Processor: "
      "a DWORD with sixteen times the number of the background's color and that of the text's, in "
      "the order of the list. cmd.exe reads it when it starts; with 0 it leaves the console's own "
      "colors.";
  cboText.ToolTipText = "The color of what is written";
  cboBackground.ToolTipText = "The color behind what is written";
  cboText.WhatsThis = kWhatsThis;
  cboBackground.WhatsThis = kWhatsThis;
  lblSample.AccessibleName = "How a command prompt will look";
  lblSample.ToolTipText = "How a command prompt will look, with the colors of the user's console";
  cmdDone.ToolTipText = "Close this window";
}

void frmDOSColors::p_DetermineDOSColors() {
  session().trace.enter("[p_DetermineDOSColors]");
  noteRead(readPromptColors(session(), shown_));
  const std::string folder = session().g_sRoot.empty() ? "C:\\" : session().g_sRoot;
  lblSample.Caption =
      fmt::format("{0}>ver\r\n\r\n{1}\r\n\r\n{0}>dir /w          ", folder, session().g_sOSName);
  cboText.ListIndex = static_cast<int>(shown_.colors.text);
  cboBackground.ListIndex = static_cast<int>(shown_.colors.background);
  showSample();
  showStatus();
}

ConsoleColors frmDOSColors::chosen() const {
  const auto index = [](const forms::ComboBox& box) {
    return static_cast<std::size_t>(std::max(box.ListIndex.get(), 0));
  };
  return {index(cboText), index(cboBackground)};
}

void frmDOSColors::showSample() {
  const ConsoleColors colors = chosen();
  lblSample.BackColor = shown_.palette[colors.background];
  lblSample.ForeColor = shown_.palette[colors.text];
  cmdApply.Enabled = colors != shown_.colors;
  cmdApply.ToolTipText = cmdApply.Enabled ? "Write these colors to the machine"
                                          : "These colors are what a command prompt has";
  cmdDefault.Enabled = shown_.chosen;
  cmdDefault.ToolTipText = shown_.chosen ? "Give command prompts the colors that every console has"
                                         : "Command prompts have the colors that every console has";
}

void frmDOSColors::showStatus() {
  if (shown_.byMachine) {
    StatusText = "These colors are set for all users; what is written here counts for this one.";
  } else {
    StatusText = shown_.chosen
                     ? fmt::format("DefaultColor is {:02X}", shown_.colors.attribute())
                     : "No colors of its own: a command prompt has those of every console";
  }
}

void frmDOSColors::choose() {
  if (!session().g_bNoRecord && cboText.Enabled) showSample();
}

void frmDOSColors::write(std::int32_t attribute) {
  engine::changeAtOnce(session(), "The colors of command prompts",
                       [&] { return writePromptColors(session(), attribute); });
  readAgain();
}

void frmDOSColors::cmdApply_Click() {
  session().trace.enter("[frmDOSColors_cmdApply]");
  const ConsoleColors colors = chosen();
  if (colors.text == colors.background) {
    return tell(
        "Text and background have the same color: nothing could be read.\r\n"
        "Windows does not take such colors. Please choose another one.");
  }
  write(colors.attribute());
  // Where it failed what was chosen stays chosen.
  cboText.ListIndex = static_cast<int>(colors.text);
  cboBackground.ListIndex = static_cast<int>(colors.background);
}

void frmDOSColors::cmdDefault_Click() {
  session().trace.enter("[frmDOSColors_cmdDefault]");
  write(0);
}

}  // namespace korvex::dialogs

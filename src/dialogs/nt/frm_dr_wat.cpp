// What this dialog has beyond its rows: the folders of its files.
#include "dialogs/nt/frm_dr_wat.h"

#include <fmt/format.h>

#include "engine/at_once.h"
#include "engine/folder_choice.h"
#include "engine/raw_value.h"
#include "engine/readers.h"

namespace korvex::dialogs {

using engine::TweakState;
using forms::Layout;

namespace {

constexpr std::string_view kDrWatsonKey = "SOFTWARE\\Microsoft\\DrWatson";
constexpr std::string_view kDumpFileValue = "CrashDumpFile";
constexpr std::string_view kLogPathValue = "LogFilePath";
constexpr std::string_view kDumpFileName = "user.dmp";
constexpr const char* kNotSet = "(not set)";

std::string fileIn(const std::string& folder, std::string_view file) {
  return fmt::format("{}{}{}", folder, folder.ends_with('\\') ? "" : "\\", file);
}

std::string whatsThisOf(std::string_view value) {
  return fmt::format("The value {} of the key HKEY_LOCAL_MACHINE\\{}.", value, kDrWatsonKey);
}

}  // namespace

frmDrWat::frmDrWat(const DialogParts& parts)
    : TweakDialog(kName, "Korvex...for Power Users - Dr. Watson", engine::Bank::DrWat, parts) {
  txtCrashDumpFile.WhatsThis = whatsThisOf(kDumpFileValue);
  txtLogFilePath.WhatsThis = whatsThisOf(kLogPathValue);
  cmdDrWatsonBSODSaveFile.WhatsThis = whatsThisOf(kDumpFileValue) + " Written at once.";
  cmdDrWatsonLogSaveFile.WhatsThis = whatsThisOf(kLogPathValue) + " Written at once.";
  addTo("Files", Layout::grid(3, {Layout::of(lblCrashDumpFile), Layout::of(txtCrashDumpFile),
                                  Layout::of(cmdDrWatsonBSODSaveFile), Layout::of(lblLogFilePath),
                                  Layout::of(txtLogFilePath), Layout::of(cmdDrWatsonLogSaveFile)}));
  const auto onPress = [this](forms::CommandButton& button, void (frmDrWat::*handler)()) {
    button.Click += [this, &button, handler] {
      trap(button.name() + "_Click", [this, handler] { (this->*handler)(); });
    };
  };
  onPress(cmdDrWatsonBSODSaveFile, &frmDrWat::cmdDrWatsonBSODSaveFile_Click);
  onPress(cmdDrWatsonLogSaveFile, &frmDrWat::cmdDrWatsonLogSaveFile_Click);
}

void frmDrWat::readMore() {
  const TweakState state =
      engine::availability({.property = {}, .families = engine::kNT}, session());
  const bool usable = state.kind != TweakState::Kind::Unavailable;
  struct Tip {
    forms::Control& control;
    const char* text;
  };
  for (const Tip& tip :
       {Tip{lblCrashDumpFile, "Where the memory of a failed program is written to"},
        Tip{txtCrashDumpFile, "Where the memory of a failed program is written to"},
        Tip{cmdDrWatsonBSODSaveFile, "Choose another folder for it; written at once"},
        Tip{lblLogFilePath, "Where the reports of failures are written to"},
        Tip{txtLogFilePath, "Where the reports of failures are written to"},
        Tip{cmdDrWatsonLogSaveFile, "Choose another folder for them; written at once"}}) {
    tip.control.Enabled = usable;
    tip.control.ToolTipText = usable ? tip.text : std::string(state.reason);
  }
  if (usable) showPaths();
}

void frmDrWat::showPaths() {
  struct Path {
    forms::TextBox& box;
    std::string_view value;
  };
  for (const Path& path :
       {Path{txtCrashDumpFile, kDumpFileValue}, Path{txtLogFilePath, kLogPathValue}}) {
    engine::RawValue raw;
    const platform::Status status = engine::readRawValue(
        session().registry(), platform::HKEY_LOCAL_MACHINE, kDrWatsonKey, path.value, raw);
    session().trace.dump("lRetVal&", status);
    // As it stands: "%windir%\\user.dmp" is what a person wants to see of it.
    if (engine::missingIsFine(status) != platform::ERROR_SUCCESS) {
      path.box.Text = fmt::format("({})", platform::describeStatus(status));
    } else {
      path.box.Text = raw.text().empty() ? kNotSet : raw.text();
    }
  }
}

void frmDrWat::cmdDrWatsonBSODSaveFile_Click() {
  const auto folder = engine::chooseFolder(
      session(), "Identify the folder where dump files should be written in the event of a BSOD.");
  if (folder) writePath("The dump file", kDumpFileValue, fileIn(*folder, kDumpFileName));
}

void frmDrWat::cmdDrWatsonLogSaveFile_Click() {
  const auto folder =
      engine::chooseFolder(session(),
                           "Identify the path where dump files should be written in the event of "
                           "unhandled exception errors.");
  if (folder) writePath("The log folder", kLogPathValue, *folder);
}

// The folder is a plain text (REG_SZ), also where a text with variables stood before: a '%' in its
// name is a '%'.
void frmDrWat::writePath(std::string_view what, std::string_view value, const std::string& path) {
  engine::changeAtOnce(session(), what, [this, value, &path] {
    return engine::putText(session(), platform::HKEY_LOCAL_MACHINE, kDrWatsonKey, value, path);
  });
  showPaths();
}

}  // namespace korvex::dialogs

// Choosing a program, and adding it.
#include "dialogs/system/frm_fast_file_access.h"

#include <fmt/format.h>

#include <algorithm>

#include "engine/raw_value.h"
#include "platform/text/text.h"
#include "platform/trimmed.h"

namespace korvex::dialogs {

using forms::Layout;
using namespace platform;

namespace {

constexpr std::string_view kAppPaths = "SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\App Paths\\";
constexpr std::string_view kExe = ".exe";

// As it would be typed: without quotes and blanks around it.
std::string tidied(const std::string& typed) {
  std::string path(trimmed(typed, " \t\""));
  std::ranges::replace(path, '/', '\\');
  return path;
}

std::string nameOf(const std::string& path) { return path.substr(path.rfind('\\') + 1); }

bool isExe(const std::string& name) {
  return name.size() > kExe.size() &&
         sameName(std::string_view(name).substr(name.size() - 4), kExe);
}

bool isFullPath(const std::string& path) {
  return path.size() > 3 && path[1] == ':' && path[2] == '\\';
}

}  // namespace

frmFastFileAccess::frmFastFileAccess(const DialogParts& parts)
    : DirectDialog(kName, "Korvex...for Power Users - Fast File Access", parts) {
  const std::string example =
      "With an application path for C:\\Tools\\EDITOR.EXE, the word EDITOR is enough in Run, "
      "wherever the program lies. It is the default value of the key HKEY_LOCAL_MACHINE\\SOFTWARE\\"
      "Microsoft\\Windows\\CurrentVersion\\App Paths\\EDITOR.EXE.";
  lblInfo.WhatsThis = example;
  txtApp.WhatsThis = example;
  txtApp.ToolTipText = "The full path of a program of this machine";
  cmdSelectApp.ToolTipText = "Looks for the program";
  cmdApply.ToolTipText = "Adds the program, so that its name starts it";
  cmdDone.ToolTipText = "Close this window";
  const auto of = [](forms::Control& control) { return Layout::of(control); };
  layout = Layout::column({of(lblInfo), of(lblNote), of(lblNoteText),
                           Layout::row({of(lblApp), of(txtApp), of(cmdSelectApp)}),
                           Layout::row({Layout::space(), of(cmdApply), of(cmdDone)})});
  onPress(cmdSelectApp, [this] { cmdSelectApp_Click(); });
  onPress(cmdApply, [this] { cmdApply_Click(); });
  cmdDone.Click += [this] { close(); };
}

void frmFastFileAccess::cmdSelectApp_Click() {
  const auto picked =
      session().prompts().pickFile({.title = "Indentify application to add to Fast File Access",
                                    .filter = "exe files (*.exe)|*.exe",
                                    .fileName = {},
                                    .folder = {}});
  if (picked) txtApp.Text = *picked;
}

// A network path cannot be looked at from here; it may be gone when the program is wanted, too.
std::optional<std::string> frmFastFileAccess::program() const {
  const std::string path = tidied(txtApp.Text.get());
  std::uint32_t attributes = 0;
  if (path.empty()) {
    tell("Select an application first.");
  } else if (!isFullPath(path)) {
    tell(fmt::format("{} is not the full path of a file on a drive of this machine.", path));
  } else if (!isExe(nameOf(path))) {
    tell(fmt::format("{} does not end in .exe: only programs can be added.", path));
  } else if (const Status status = session().files().attributes(path, attributes);
             status != ERROR_SUCCESS) {
    tell(fmt::format("{} cannot be found: {}.", path, describeStatus(status)));
  } else if ((attributes & FILE_ATTRIBUTE_DIRECTORY) != 0) {
    tell(fmt::format("{} is a folder.", path));
  } else {
    return path;
  }
  return std::nullopt;
}

// An entry that cannot be read is not overwritten unseen.
Status frmFastFileAccess::agreeOnEntry(const std::string& key, const std::string& path,
                                       bool& agreed) const {
  engine::RawValue present;
  const Status status = engine::readRawValue(registry(), HKEY_LOCAL_MACHINE, key, "", present);
  agreed = present.text().empty() || sameName(tidied(present.text()), path) ||
           askYesNo(fmt::format("The name {} starts this program by now:\r\n{}\r\nReplace it?",
                                nameOf(path), present.text()));
  return engine::missingIsFine(status);
}

void frmFastFileAccess::cmdApply_Click() {
  session().trace.enter("[frmFastFileAccess.cmdApply]");
  const auto path = program();
  if (!path) return;
  const std::string key = std::string(kAppPaths) + nameOf(*path);
  bool agreed = true;
  Status status = agreeOnEntry(key, *path, agreed);
  if (!agreed) return;
  if (status == ERROR_SUCCESS) status = add(key, *path);
  session().trace.dump("lRetVal&", status);
  if (status != ERROR_SUCCESS) {
    StatusText = fmt::format("{} cannot be added: {}.", nameOf(*path), describeStatus(status));
    return tell("An error occurred. This application has not been added.", kIconExclamation);
  }
  if (!engine::finishAtOnce(session(), "The application path", status)) return;
  readAgain();
  StatusText = fmt::format("{} has been added.", nameOf(*path));
}

Status frmFastFileAccess::add(const std::string& key, const std::string& path) const {
  RegistryChange change(registry());
  Status status = change.status();
  if (status == ERROR_SUCCESS) {
    status = engine::putValue(session(), HKEY_LOCAL_MACHINE, key, "", path);
  }
  return status == ERROR_SUCCESS ? change.commit() : status;
}

}  // namespace korvex::dialogs

// Showing, checking and writing the list.
#include "dialogs/nt/frm_ex_prof_dirs.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>

#include "foundation/detection.h"
#include "platform/text/text.h"
#include "platform/trimmed.h"

namespace korvex::dialogs {

using forms::Layout;
using namespace platform;

namespace {

constexpr std::string_view kWinlogon = "SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion\\Winlogon";
constexpr std::string_view kExcludeProfileDirs = "ExcludeProfileDirs";

bool holds(const std::vector<std::string>& names, const std::string& name) {
  return std::ranges::any_of(names,
                             [&name](const std::string& one) { return sameName(one, name); });
}

// Without blanks around them, empty ones and those that stand there already.
std::vector<std::string> namesIn(std::string_view text) {
  std::vector<std::string> names;
  for (std::size_t begin = 0; begin <= text.size();) {
    const std::size_t end = std::min(text.find(';', begin), text.size());
    std::string name(trimmed(text.substr(begin, end - begin), " \t\r\n"));
    if (!name.empty() && !holds(names, name)) names.push_back(std::move(name));
    begin = end + 1;
  }
  return names;
}

// Windows puts the name behind the profile's folder and a backslash: nothing may lead out of it.
bool isWellFormed(const std::string& name) {
  if (name.find_first_of("/:*?\"<>|") != std::string::npos) return false;
  for (std::size_t begin = 0; begin <= name.size();) {
    const std::size_t end = std::min(name.find('\\', begin), name.size());
    const std::string_view part = std::string_view(name).substr(begin, end - begin);
    if (trimmed(part, " .").empty()) return false;
    begin = end + 1;
  }
  return true;
}

}  // namespace

frmExProfDirs::frmExProfDirs(const DialogParts& parts)
    : DirectDialog(kName, "Korvex...for Power Users - Profile exclusions", parts, engine::kNT) {
  lstExcluded.WhatsThis = fmt::format(
      "When the user logs off, NT copies the profile to the server, but not these folders and what "
      "lies in them. They are the value {} of the key HKEY_CURRENT_USER\\{}.",
      kExcludeProfileDirs, kWinlogon);
  cmdDone.ToolTipText = "Close this window";
  const auto of = [](forms::Control& control) { return Layout::of(control); };
  layout =
      Layout::column({of(lblInfo), of(lblExcluded), of(lstExcluded),
                      Layout::row({of(cmdClear), Layout::space()}), of(lblHow), of(lblForExample),
                      of(lblExample), Layout::row({of(lblExclude), of(txtExclude), of(cmdExclude)}),
                      Layout::row({Layout::space(), of(cmdDone)})});
  onPress(cmdExclude, [this] { cmdExclude_Click(); });
  onPress(cmdClear, [this] { cmdClear_Click(); });
  cmdDone.Click += [this] { close(); };
}

Status frmExProfDirs::readNames(std::vector<std::string>& names, engine::RawValue& value) const {
  names.clear();
  value = {};
  const Status status = engine::missingIsFine(
      engine::readRawValue(registry(), HKEY_CURRENT_USER, kWinlogon, kExcludeProfileDirs, value));
  if (status != ERROR_SUCCESS) return status;
  // What is no text was not put there by Windows: it is not written over.
  const bool known = value.type == REG_NONE || value.type == REG_SZ || value.type == REG_EXPAND_SZ;
  if (!known) return ERROR_INVALID_DATA;
  names = namesIn(value.text());
  return ERROR_SUCCESS;
}

void frmExProfDirs::readMachine() {
  session().trace.enter("[frmExProfDirs.Form_Load]");
  for (forms::Control* control :
       std::initializer_list<forms::Control*>{&lstExcluded, &cmdClear, &txtExclude, &cmdExclude}) {
    control->Enabled = true;
  }
  lstExcluded.ToolTipText = "Folders of the profile that stay on this machine";
  cmdClear.ToolTipText = "Lets the selected folder roam again";
  txtExclude.ToolTipText = fmt::format("Folders in {}", foundation::userFolder(session()));
  cmdExclude.ToolTipText = "Leaves these folders out of the roaming profile";
  lstExcluded.Clear();
  engine::RawValue value;
  noteRead(readNames(shown_, value));
  for (const std::string& name : shown_) lstExcluded.AddItem(name);
  StatusText = fmt::format("{} {}", shown_.size(), shown_.size() == 1 ? "folder" : "folders");
}

bool frmExProfDirs::isFolderOfProfile(const std::string& name) const {
  std::uint32_t attributes = 0;
  return isWellFormed(name) &&
         session().files().attributes(foundation::userFolder(session()) + '\\' + name,
                                      attributes) == ERROR_SUCCESS &&
         (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

bool frmExProfDirs::write(const std::vector<std::string>& names, const engine::RawValue& present) {
  engine::RawValue value;
  value.type = present.type == REG_NONE ? REG_SZ : present.type;
  value.bytes = fmt::format("{}", fmt::join(names, ";")) + '\0';
  const bool done = engine::changeAtOnce(session(), "The list of excluded directories", [&] {
    return engine::putRaw(session(), HKEY_CURRENT_USER, kWinlogon, kExcludeProfileDirs, value);
  });
  readAgain();
  return done;
}

void frmExProfDirs::tellUnread(Status status) {
  session().trace.dump("lRetVal&", status);
  readAgain();
  tell(fmt::format("The list could not be read: {}.\r\nNothing was changed.",
                   describeStatus(status)),
       kIconExclamation);
}

void frmExProfDirs::cmdExclude_Click() {
  session().trace.enter("[frmExProfDirs.cmdExclude_Click]");
  const std::vector<std::string> typed = namesIn(txtExclude.Text.get());
  if (typed.empty()) {
    StatusText = "Type the names of directories first.";
    return;
  }
  std::vector<std::string> names;
  engine::RawValue present;
  const Status status = readNames(names, present);
  if (status != ERROR_SUCCESS) return tellUnread(status);
  const std::size_t before = names.size();
  std::vector<std::string> refused;
  for (const std::string& name : typed) {
    if (!isFolderOfProfile(name)) {
      refused.push_back(name);
    } else if (!holds(names, name)) {
      names.push_back(name);
    }
  }
  const std::size_t added = names.size() - before;
  if (added > 0 && !write(names, present)) return;
  txtExclude.Text = fmt::format("{}", fmt::join(refused, ";"));
  StatusText = added == 0
                   ? "Nothing was added."
                   : fmt::format("{} {} excluded.", added,
                                 added == 1 ? "directory has been" : "directories have been");
  if (refused.empty()) return;
  tell(fmt::format("The following directories either did not exsist or were improperly "
                   "formatted.\r\n{}\r\nPlease check these entries and try again.",
                   fmt::join(refused, "\r\n")),
       kIconExclamation);
}

void frmExProfDirs::cmdClear_Click() {
  session().trace.enter("[frmExProfDirs.cmdClear_Click]");
  const int selected = lstExcluded.ListIndex;
  if (selected < 0) return tell("You must first select an item to remove.");
  std::vector<std::string> names;
  engine::RawValue present;
  const Status status = readNames(names, present);
  if (status != ERROR_SUCCESS) return tellUnread(status);
  if (names != shown_) {
    readAgain();
    return tell("The list has been changed meanwhile. Please choose once more.");
  }
  names.erase(names.begin() + selected);
  if (!write(names, present)) return;
  lstExcluded.ListIndex = std::min(selected, lstExcluded.ListCount() - 1);
}

}  // namespace korvex::dialogs

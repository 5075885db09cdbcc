// Listing, removing and renumbering.
#include "dialogs/office/frm_mrus.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <charconv>
#include <utility>

#include "dialogs/office/running_applications.h"
#include "engine/office.h"
#include "engine/same_name.h"

namespace korvex::dialogs {

using engine::RawValue;
using forms::Layout;
using namespace platform;

namespace {

constexpr std::string_view kFile = "File";
constexpr std::string_view kListIsEmpty = "Excel's list of recent files is empty.";

// "File12": 12, without regard to case; 0 for any other name. Excel writes no zero before it.
std::uint32_t numberOf(std::string_view name) {
  if (name.size() <= kFile.size() || !engine::sameName(name.substr(0, kFile.size()), kFile) ||
      name[kFile.size()] == '0') {
    return 0;
  }
  std::uint32_t number = 0;
  const char* const end = name.data() + name.size();
  const auto [last, error] = std::from_chars(name.data() + kFile.size(), end, number);
  return error == std::errc() && last == end ? number : 0;
}

std::string nameOf(std::size_t number) { return fmt::format("{}{}", kFile, number); }

std::string counted(std::size_t count) {
  return fmt::format("{} {}", count, count == 1 ? "file" : "files");
}

bool isNetworkPath(std::string_view path) { return path.starts_with("\\\\"); }
bool isFullPath(std::string_view path) {
  return path.size() > 3 && std::isalpha(static_cast<unsigned char>(path[0])) != 0 &&
         path[1] == ':' && path[2] == '\\';
}

}  // namespace

std::string frmMRUs::Entry::text() const {
  const bool isText = value.type == REG_SZ || value.type == REG_EXPAND_SZ;
  return isText ? fmt::format("{} {}", number, value.text())
                : fmt::format("{} (no text: data of type {})", number, value.type);
}

frmMRUs::frmMRUs(const DialogParts& parts)
    : DirectDialog(kName, "Korvex...for Power Users - Excel's recent files", parts) {
  lstMRUs.WhatsThis =
      "The files that Excel shows at the end of its File menu. Each is a value File1, File2 and so "
      "on of the key HKEY_CURRENT_USER\\" +
      std::string(engine::excelRecentKey(session())) +
      ". Removing one takes it out of this list only; the file itself stays.";
  cmdDone.ToolTipText = "Close this window";
  const auto of = [](forms::Control& control) { return Layout::of(control); };
  layout = Layout::column(
      {of(lblMRUs), of(lstMRUs), Layout::row({of(lblFile), of(txtFile)}), of(lblState),
       Layout::row({of(cmdRemove), of(cmdRemoveAll), Layout::space(), of(cmdDone)})});
  lstMRUs.Click += [this] { showWhatCanBeDone(); };
  onPress(cmdRemove, [this] { cmdRemove_Click(); });
  onPress(cmdRemoveAll, [this] { cmdRemoveAll_Click(); });
  cmdDone.Click += [this] { close(); };
}

Status frmMRUs::readEntries(Entries& entries) const {
  const OpenKey key(registry(), HKEY_CURRENT_USER, engine::excelRecentKey(session()),
                    KEY_QUERY_VALUE);
  Status status = key.status();
  std::array<char, kNameBufferBytes> buffer;
  for (std::uint32_t i = 0; status == ERROR_SUCCESS; ++i) {
    auto length = static_cast<std::uint32_t>(buffer.size());
    status =
        registry().RegEnumValueA(key.get(), i, buffer.data(), &length, nullptr, nullptr, nullptr);
    if (status != ERROR_SUCCESS) break;
    Entry entry{.number = 0, .name = {buffer.data(), length}, .value = {}};
    entry.number = numberOf(entry.name);
    if (entry.number == 0) continue;
    status = engine::readRawValue(registry(), key.get(), entry.name, entry.value);
    entries.push_back(std::move(entry));
  }
  std::ranges::sort(entries, {}, &Entry::number);
  return status == ERROR_NO_MORE_ITEMS ? ERROR_SUCCESS : engine::missingIsFine(status);
}

std::string frmMRUs::p_DetermineRegLeftValue(const Entries& entries, std::string_view wanted) {
  const auto found = std::ranges::find_if(
      entries, [wanted](const Entry& entry) { return engine::sameName(entry.name, wanted); });
  return found == entries.end() ? "" : found->name;
}

void frmMRUs::readMachine() {
  session().trace.enter("[frmMRUs.Form_Load]");
  lstMRUs.Clear();
  shown_.clear();
  StatusText = "";
  if (session().g_iOfficeVer == 0) {
    return noteProblem(std::string(engine::kOnlyOffice97And2000));
  }
  const Status status = readEntries(shown_);
  noteRead(status);
  if (status != ERROR_SUCCESS) shown_.clear();
  for (const Entry& entry : shown_) lstMRUs.AddItem(entry.text());
  StatusText = shown_.empty() ? std::string(kListIsEmpty) : counted(shown_.size());
  showWhatCanBeDone();
}

void frmMRUs::showWhatCanBeDone() {
  const int selected = lstMRUs.ListIndex;
  const bool any = !shown_.empty();
  lstMRUs.Enabled = true;
  lstMRUs.ToolTipText = "The files at the end of Excel's File menu";
  cmdRemove.Enabled = selected >= 0;
  cmdRemoveAll.Enabled = any;
  const std::string none(kListIsEmpty);
  cmdRemove.ToolTipText = selected >= 0 ? "Takes the selected file out of Excel's list"
                          : any         ? "Select a file first."
                                        : none;
  cmdRemoveAll.ToolTipText = any ? "Empties Excel's list of recent files" : none;
  txtFile.Enabled = true;
  txtFile.ToolTipText = "Where the selected file lies";
  txtFile.Text = selected < 0 ? "" : shown_[selected].value.text();
  lblState.Caption = selected < 0 ? "" : whetherThere(shown_[selected]);
}

// What lies on the network cannot be looked at from here.
std::string frmMRUs::whetherThere(const Entry& entry) const {
  const std::string path = entry.value.text();
  if (isNetworkPath(path)) return "It lies on the network, where it is not looked for.";
  if (!isFullPath(path)) return "This is not the full path of a file.";
  std::uint32_t attributes = 0;
  const Status status = session().files().attributes(path, attributes);
  if (status == ERROR_SUCCESS) {
    return (attributes & FILE_ATTRIBUTE_DIRECTORY) == 0 ? "The file is there."
                                                        : "The file is missing: this is a folder.";
  }
  if (!session().files().exists(path.substr(0, 3))) {
    return fmt::format("This machine has no drive {}.", path.substr(0, 2));
  }
  return status == ERROR_FILE_NOT_FOUND || status == ERROR_PATH_NOT_FOUND
             ? "The file is missing."
             : fmt::format("Whether the file is there cannot be told: {}.", describeStatus(status));
}

bool frmMRUs::isAsShown() {
  Entries now;
  const Status status = readEntries(now);
  session().trace.dump("lRetVal&", status);
  if (status != ERROR_SUCCESS) {
    readAgain();
    tell("Operation failed.", kIconCritical);
    return false;
  }
  const bool same = std::ranges::equal(now, shown_, [](const Entry& left, const Entry& right) {
    return left.name == right.name && left.value.type == right.value.type &&
           left.value.bytes == right.value.bytes;
  });
  if (same) return true;
  readAgain();
  tell("Excel's list has been changed meanwhile. Please choose once more.");
  return false;
}

Status frmMRUs::writeSteps(const Entries& remaining) const {
  const OpenKey key(registry(), HKEY_CURRENT_USER, engine::excelRecentKey(session()),
                    KEY_ALL_ACCESS);
  Status status = key.status();
  for (std::size_t i = 0; i < remaining.size() && status == ERROR_SUCCESS; ++i) {
    const RawValue& value = remaining[i].value;
    if (remaining[i].number == i + 1) continue;
    status = registry().RegSetValueExA(key.get(), nameOf(i + 1), value.type, value.bytes.data(),
                                       static_cast<std::uint32_t>(value.bytes.size()));
  }
  for (const Entry& entry : shown_) {
    if (status != ERROR_SUCCESS) break;
    if (entry.number <= remaining.size()) continue;
    const std::string name = p_DetermineRegLeftValue(shown_, nameOf(entry.number));
    status = registry().RegDeleteValueA(key.get(), name);
  }
  return status;
}

bool frmMRUs::write(const Entries& remaining) {
  Status status = ERROR_SUCCESS;
  {
    RegistryChange change(registry());
    status = change.status();
    if (status == ERROR_SUCCESS) status = writeSteps(remaining);
    if (status == ERROR_SUCCESS) status = change.commit();
  }
  if (status != ERROR_SUCCESS) {
    session().trace.dump("lRetVal&", status);
    StatusText = fmt::format("Nothing was removed: {}.", describeStatus(status));
    tell("Operation failed.", kIconCritical);
    return false;
  }
  const std::size_t removed = shown_.size() - remaining.size();
  const bool finished = engine::finishAtOnce(session(), "Excel's list of recent files", status);
  readAgain();
  if (!finished) return false;
  StatusText = fmt::format("{} removed from the list.{}", counted(removed),
                           excelIsRunning(session())
                               ? " Excel is running: it writes its own list when it is closed."
                               : "");
  return true;
}

void frmMRUs::cmdRemove_Click() {
  session().trace.enter("[frmMRUs.cmdRemove_Click]");
  const int selected = lstMRUs.ListIndex;
  if (selected < 0 || !isAsShown()) return;
  Entries remaining = shown_;
  remaining.erase(remaining.begin() + selected);
  if (!write(remaining)) return;
  lstMRUs.ListIndex = std::min(selected, lstMRUs.ListCount() - 1);
}

void frmMRUs::cmdRemoveAll_Click() {
  session().trace.enter("[frmMRUs.cmdRemoveAll_Click]");
  if (!askYesNo(fmt::format("Remove all entries from Excel's list of recent files ({})?\r\n"
                            "The files themselves stay.",
                            counted(shown_.size())))) {
    return;
  }
  if (isAsShown()) write({});
}

}  // namespace korvex::dialogs

// Finding the number, changing it in steps, and putting it back.
#include "dialogs/nt/frm_nt_heap_size.h"

#include <fmt/format.h>

#include <algorithm>

#include "engine/numeral_field.h"
#include "engine/raw_value.h"
#include "engine/same_name.h"

namespace korvex::dialogs {

using engine::RawValue;
using forms::Layout;
using namespace platform;

namespace {

constexpr std::string_view kKey = "SYSTEM\\CurrentControlSet\\Control\\Session Manager\\SubSystems";
constexpr std::string_view kValue = "Windows";
constexpr std::string_view kMark = "SharedSection=";
constexpr std::string_view kEndOfWord{" \t\0", 3};
constexpr std::uint32_t kStep = 256;
constexpr std::uint32_t kLowest = 1792;
constexpr std::uint32_t kFiveDigits = 10000;

constexpr const char* kTooHigh =
    "You cannot raise the heap value larger.\r\n"
    "This value should not be set to an arbitrarily high value"
    "(as it would decrease performance), but should only be"
    "increased sufficiently to allow all the desired applications"
    "to run.";
constexpr const char* kTooLow =
    "You cannot lower the heap any further.\r\n"
    "This value should not be set to an arbitrarily low value"
    "(as it would decrease performance), but should only be"
    "modified sufficiently to allow all the desired applications"
    "to run.";
constexpr const char* kNoNumber =
    "The value Windows of the subsystems has no second number behind SharedSection=.";

Status readLine(Registry& registry, RawValue& line) {
  const Status status = engine::readRawValue(registry, HKEY_LOCAL_MACHINE, kKey, kValue, line);
  if (status != ERROR_SUCCESS) return status;
  return line.type == REG_SZ || line.type == REG_EXPAND_SZ ? ERROR_SUCCESS : ERROR_INVALID_DATA;
}

}  // namespace

// Other parts of the line have commas too: the word that the mark begins is all that counts.
std::optional<HeapNumber> findHeapNumber(std::string_view line) {
  for (std::size_t at = 0; at < line.size();) {
    const std::size_t end = std::min(line.find_first_of(kEndOfWord, at), line.size());
    const std::string_view word = line.substr(at, end - at);
    if (!engine::sameName(word.substr(0, kMark.size()), kMark)) {
      at = end + 1;
      continue;
    }
    const std::size_t comma = word.find(',');
    if (comma == std::string_view::npos) return std::nullopt;
    const std::size_t length = std::min(word.find(',', comma + 1), word.size()) - comma - 1;
    const auto number = engine::numberIn(word.substr(comma + 1, length));
    if (!number) return std::nullopt;
    return HeapNumber{at + comma + 1, length, *number};
  }
  return std::nullopt;
}

frmNTHeapSize::frmNTHeapSize(const DialogParts& parts)
    : DirectDialog(kName, "Korvex...for Power Users - NT Heap Size", parts, engine::kNT) {
  txtHeapSize.ToolTipText = "The heap that each window station's desktop gets";
  txtHeapSize.WhatsThis =
      "The second number behind SharedSection= in the value Windows of the key "
      "HKEY_LOCAL_MACHINE\\SYSTEM\\CurrentControlSet\\Control\\Session Manager\\SubSystems. "
      "Windows reads it when it starts.";
  cmdUp.ToolTipText = "256 KB more";
  cmdDown.ToolTipText = "256 KB less";
  cmdApply.ToolTipText = "Writes the number; Windows uses it from its next start on";
  cmdDone.ToolTipText = "Close this window";
  const auto of = [](forms::Control& control) { return Layout::of(control); };
  layout = Layout::column(
      {of(lblInfo),
       Layout::row({of(lblHeapSize), of(txtHeapSize), of(cmdUp), of(cmdDown), Layout::space()}),
       Layout::row({Layout::space(), of(cmdApply), of(cmdDone)})});
  onPress(cmdUp, [this] { cmdUp_Click(); });
  onPress(cmdDown, [this] { cmdDown_Click(); });
  onPress(cmdApply, [this] { cmdApply_Click(); });
  cmdDone.Click += [this] { close(); };
}

void frmNTHeapSize::p_DetermineHeapSize() {
  session().trace.enter("[frmNTHeapSize.p_DetermineHeapSize]");
  RawValue line;
  const Status status = readLine(registry(), line);
  session().trace.dump("lRetVal&", status);
  const auto found = findHeapNumber(line.bytes);
  if (status != ERROR_SUCCESS || !found) {
    txtHeapSize.Text = "";
    return disableAll(status == ERROR_SUCCESS
                          ? kNoNumber
                          : fmt::format("The value Windows of the subsystems cannot be used: {}.",
                                        describeStatus(status)));
  }
  stored_ = found->kilobytes;
  show(stored_);
}

void frmNTHeapSize::show(std::uint32_t kilobytes) {
  shown_ = kilobytes;
  txtHeapSize.Text = std::to_string(kilobytes);
  cmdApply.Enabled = shown_ != stored_;
}

void frmNTHeapSize::cmdUp_Click() {
  if (shown_ >= kFiveDigits) return tell(kTooHigh, kIconCritical);
  show(shown_ + kStep);
}

void frmNTHeapSize::cmdDown_Click() {
  if (shown_ <= kLowest) return tell(kTooLow, kIconCritical);
  show(shown_ - kStep);
}

Status frmNTHeapSize::p_AdjustLeftValue(std::string& line) const {
  const auto found = findHeapNumber(line);
  if (!found) return ERROR_INVALID_DATA;
  line.replace(found->at, found->length, std::to_string(shown_));
  return ERROR_SUCCESS;
}

// The line is read again: what another program has changed elsewhere in it stays.
void frmNTHeapSize::cmdApply_Click() {
  session().trace.enter("[frmNTHeapSize.cmdApply]");
  const bool written = engine::changeAtOnce(session(), "The desktop heap", [this] {
    RawValue line;
    Status status = readLine(registry(), line);
    if (status == ERROR_SUCCESS) status = p_AdjustLeftValue(line.bytes);
    if (status != ERROR_SUCCESS) return status;
    const OpenKey key(registry(), HKEY_LOCAL_MACHINE, kKey, KEY_SET_VALUE);
    if (key.status() != ERROR_SUCCESS) return key.status();
    return registry().RegSetValueExA(key.get(), kValue, line.type, line.bytes.data(),
                                     static_cast<std::uint32_t>(line.bytes.size()));
  });
  if (!written) return;
  session().g_bRebootNeeded = true;
  readAgain();
  StatusText = "The desktop heap has been written. Windows uses it from its next start on.";
}

}  // namespace korvex::dialogs

// Reading the size, and writing one of the three that there are.
#include "dialogs/nt/frm_l2_cache.h"

#include <fmt/format.h>

#include <algorithm>

#include "engine/numeral_field.h"
#include "engine/raw_value.h"

namespace korvex::dialogs {

using forms::Layout;
using namespace platform;

namespace {

constexpr std::string_view kKey =
    "SYSTEM\\CurrentControlSet\\Control\\Session Manager\\Memory Management";
constexpr std::string_view kValue = "SecondLevelDataCache";

}  // namespace

frmL2Cache::frmL2Cache(const DialogParts& parts)
    : DirectDialog(kName, "Korvex...for Power Users - L2 Cache", parts, engine::kNT) {
  for (const char* size : {"256", "512", "1024"}) cboL2Cache.AddItem(size);
  cboL2Cache.ToolTipText = "The size of the cache on the motherboard";
  cboL2Cache.WhatsThis =
      "Sets the value SecondLevelDataCache of the key HKEY_LOCAL_MACHINE\\SYSTEM\\"
      "CurrentControlSet\\Control\\Session Manager\\Memory Management, in KB. Windows reads it "
      "when "
      "it starts.";
  lblCurrent.ToolTipText = "A size of 0 leaves it to the HAL";
  cmdL2Apply.ToolTipText = "Writes the size; Windows uses it from its next start on";
  cmdDone.ToolTipText = "Close this window";
  const auto of = [](forms::Control& control) { return Layout::of(control); };
  layout = Layout::column(
      {of(lblInfo), of(lblPrompt), Layout::row({of(lblL2Cache), of(cboL2Cache), Layout::space()}),
       of(lblCurrent), Layout::row({Layout::space(), of(cmdL2Apply), of(cmdDone)})});
  onPress(cmdL2Apply, [this] { cmdL2Apply_Click(); });
  cmdDone.Click += [this] { close(); };
}

// A value that is missing is the 0 that Windows puts there: the HAL is asked.
void frmL2Cache::readMachine() {
  session().trace.enter("[frmL2Cache.Form_Load]");
  engine::RawValue stored;
  const Status status = engine::readRawValue(registry(), HKEY_LOCAL_MACHINE, kKey, kValue, stored);
  session().trace.dump("lRetVal&", status);
  if (status != ERROR_SUCCESS && status != ERROR_FILE_NOT_FOUND) {
    return disableAll(
        fmt::format("The size of the cache cannot be read: {}.", describeStatus(status)));
  }
  const std::string size = std::to_string(static_cast<std::uint32_t>(stored.number(0)));
  lblCurrent.Caption = fmt::format("Currently, HAL defaults to {}K if L2 is not recognized.", size);
  const auto& sizes = cboL2Cache.items();
  const auto found = std::ranges::find(sizes, size);
  cboL2Cache.ListIndex = found == sizes.end() ? -1 : static_cast<int>(found - sizes.begin());
  if (found == sizes.end()) cboL2Cache.Text = "";
  shown_ = cboL2Cache.Text;
}

void frmL2Cache::cmdL2Apply_Click() {
  session().trace.enter("[cmdL2Apply_Click]");
  const std::string size = cboL2Cache.Text;
  if (std::ranges::find(cboL2Cache.items(), size) == cboL2Cache.items().end()) {
    return tell(
        "You have entered an incorrect L2 cache value. Valid values are either 256, 512 or 1024.");
  }
  const auto kilobytes = static_cast<std::int32_t>(engine::numberIn(size).value_or(0));
  const bool written = engine::changeAtOnce(session(), "The size of the cache", [&] {
    return engine::putValue(session(), HKEY_LOCAL_MACHINE, kKey, kValue, kilobytes);
  });
  if (!written) return;
  session().g_bRebootNeeded = true;
  readAgain();
  StatusText = "The size has been written. Windows uses it from its next start on.";
}

}  // namespace korvex::dialogs

// Showing and writing the options.
#include "main_window/boot_options.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <utility>

#include "engine/numeral_field.h"
#include "engine/readers.h"
#include "forms/control.h"
#include "foundation/error_handler.h"
#include "foundation/reg_value.h"
#include "platform/file_change.h"

namespace korvex::main_window {

using engine::k9x;
using engine::kWin95;
using engine::kWin98;
using engine::kWinMe;
using engine::Page;
using forms::Layout;
using namespace platform;

namespace {

constexpr std::string_view kFile = "MSDOS.SYS";
constexpr std::string_view kMaster = "msdos.mstr";
constexpr std::string_view kBeforeRestore = "msdos.kvx";
constexpr std::string_view kRecord = "SOFTWARE\\Korvex\\MSDOS_SYS";
constexpr std::string_view kStart = "Start of Windows";
constexpr std::string_view kMenu = "Startup menu";
constexpr std::string_view kDrivers = "Drivers and disks";
// No default to go back to: without what its disks need Windows does not start.
constexpr int kAsSetupFound = -1;
constexpr engine::Families kRealMode = kWin95 | kWin98;  // Me starts without it

bool isNumber(const std::string& text) { return !text.empty() && engine::takesNumeral(text); }

// What an option counts as that the file does not name.
std::string defaultText(int byDefault) { return std::to_string(std::max(0, byDefault)); }

int numberOf(const std::string& text, int otherwise) {
  int number = otherwise;
  const auto end = text.data() + text.size();
  return std::from_chars(text.data(), end, number).ec == std::errc() ? number : otherwise;
}

}  // namespace

// Source: the Resource Kits of Windows 95 and 98. Me obeys the rows that name it.
const std::vector<BootOptions::Row>& BootOptions::rows() {
  static const std::vector<Row> table{
      {"BootGUI", Kind::Switch, 1, 1, kRealMode, kStart, "Start Windows itself (BootGUI)",
       "Cleared: ends at the MS-DOS prompt...default is checked"},
      {"BootWin", Kind::Switch, 1, 1, kRealMode, kStart, "Start this version of Windows (BootWin)",
       "Cleared: starts the MS-DOS that was there before...default is checked"},
      {"BootMulti", Kind::Switch, 0, 1, kRealMode, kStart,
       "Offer the previous MS-DOS with F4 (BootMulti)",
       "Lets the operating system before Windows be started...default is unchecked"},
      {"BootKeys", Kind::Switch, 1, 1, k9x, kStart, "Answer the startup keys F5 and F8 (BootKeys)",
       "Cleared: nobody can step in while Windows starts...default is checked"},
      {"BootWarn", Kind::Switch, 1, 1, kRealMode, kStart, "Warn of safe mode (BootWarn)",
       "Shows the message after a start that failed...default is checked"},
      {"Logo", Kind::Switch, 1, 1, kRealMode, kStart, "Show the startup picture (Logo)",
       "Cleared: shows what the drivers say...default is checked"},
      {"BootDelay", Kind::Number, 2, 99, kWin95, kStart, "Wait for a key in seconds (BootDelay):",
       "How long \"Starting Windows\" stands...default is 2"},
      {"BootMenu", Kind::Switch, 0, 1, k9x, kMenu, "Show the startup menu each time (BootMenu)",
       "Cleared: only after F8...default is unchecked"},
      {"BootMenuDefault", Kind::Number, 1, 8, k9x, kMenu,
       "Entry that is chosen (BootMenuDefault):", "The number of the menu's entry...default is 1"},
      {"BootMenuDelay", Kind::Number, 30, 999, k9x, kMenu,
       "Seconds until then (BootMenuDelay):", "How long the menu waits...default is 30"},
      {"Network", Kind::Switch, 1, 1, kWin95, kMenu, "Offer safe mode with network (Network)",
       "Adds the entry to the menu...default is checked"},
      {"AutoScan", Kind::Choice, 1, 2, kWin98 | kWinMe, kDrivers,
       "ScanDisk after a bad end (AutoScan):",
       "What happens when Windows was not shut down"
       "...default is to ask first"},
      {"DoubleBuffer", Kind::Switch, 0, 1, kRealMode, kDrivers,
       "Buffer SCSI disks twice (DoubleBuffer)", "Some controllers need it...default is unchecked"},
      {"DRVSpace", Kind::Switch, 1, 1, kRealMode, kDrivers, "Load DriveSpace (DRVSpace)",
       "For compressed drives...default is checked"},
      {"DBLSpace", Kind::Switch, 1, 1, kRealMode, kDrivers, "Load DoubleSpace (DBLSpace)",
       "For compressed drives...default is checked"},
      {"LoadTop", Kind::Switch, 1, 1, kRealMode, kDrivers,
       "Load COMMAND.COM at the top of memory (LoadTop)",
       "Cleared for programs that expect it below...default is checked"},
  };
  return table;
}

BootOptions::BootOptions(forms::Form& form, foundation::Session& session,
                         std::function<void()> changed)
    : form_(form),
      session_(session),
      changed_(std::move(changed)),
      cmdRestoreMSDOSSYS_(
          form.own<forms::CommandButton>("cmdRestoreMSDOSSYS", "Restore MSDOS.SYS...")) {
  for (const Row& row : rows()) {
    if (groups_.empty() || groups_.back().title != row.group) {
      groups_.push_back(Layout::group(std::string(row.group), {}));
    }
    makeControl(row, groups_.back().parts);
  }
  cmdRestoreMSDOSSYS_.ToolTipText = "Brings the file back as it was before the first change";
  groups_.back().parts.push_back(Layout::row({Layout::of(cmdRestoreMSDOSSYS_), Layout::space()}));
  cmdRestoreMSDOSSYS_.Click += [this] {
    foundation::guarded(session_, "cmdRestoreMSDOSSYS_Click",
                        [this] { cmdRestoreMSDOSSYS_Click(); });
  };
}

void BootOptions::makeControl(const Row& row, std::vector<Layout>& parts) {
  const std::string name(row.name);
  const std::size_t index = options_.size();
  const auto handler = [this, index] {
    foundation::guarded(session_, options_[index].control->name() + "_Change",
                        [this, index] { Change(index); });
  };
  forms::Control* control = nullptr;
  if (row.kind == Kind::Switch) {
    auto& box = form_.own<forms::CheckBox>("chk" + name, std::string(row.caption));
    box.Click += handler;
    control = &box;
    parts.push_back(Layout::of(box));
  } else {
    if (row.kind == Kind::Number) {
      auto& text = form_.own<forms::TextBox>(
          "txt" + name, forms::TextBoxOptions{.maxLength = 3, .widthInCharacters = 4});
      text.Change += handler;
      control = &text;
    } else {
      auto& list = form_.own<forms::ComboBox>("cbo" + name);
      for (const char* item : {"Never", "Ask first", "Without asking"}) list.AddItem(item);
      list.Click += handler;
      control = &list;
    }
    auto& label = form_.own<forms::Label>("lbl" + name, std::string(row.caption), control);
    parts.push_back(Layout::row({Layout::of(label), Layout::of(*control), Layout::space()}));
  }
  control->ToolTipText = std::string(row.toolTip);
  control->WhatsThis = fmt::format(
      "Sets {} in the section [Options] of MSDOS.SYS. Windows default: {}. Takes effect at the "
      "next "
      "start.",
      row.name,
      row.byDefault == kAsSetupFound ? std::string("what Setup found")
                                     : defaultText(row.byDefault));
  options_.push_back({&row, control, "", ""});
}

std::vector<Layout> BootOptions::groups(Page page) {
  return page == Page::Windows9x ? std::move(groups_) : std::vector<Layout>();
}

std::string BootOptions::shown(const Option& option) const {
  if (const auto* box = dynamic_cast<const forms::CheckBox*>(option.control)) {
    return box->Value == forms::vbChecked ? "1" : "0";
  }
  if (const auto* list = dynamic_cast<const forms::ComboBox*>(option.control)) {
    return std::to_string(list->ListIndex.get());
  }
  return dynamic_cast<const forms::TextBox*>(option.control)->Text;
}

void BootOptions::show(Option& option, const std::string& value) {
  option.valid = value;
  const int number = numberOf(value, option.row->byDefault);
  if (auto* box = dynamic_cast<forms::CheckBox*>(option.control)) {
    box->Value = number != 0 ? forms::vbChecked : forms::vbUnchecked;
  } else if (auto* list = dynamic_cast<forms::ComboBox*>(option.control)) {
    list->ListIndex = std::clamp(number, 0, option.row->largest);
  } else if (auto* text = dynamic_cast<forms::TextBox*>(option.control)) {
    text->Text = value;
  }
  option.stored = shown(option);
}

// The host drive of a compressed one has the file that counts.
std::string BootOptions::findFile() {
  const std::string file = session_.g_sRoot + std::string(kFile);
  std::string bytes;
  if (session_.files().read(file, bytes) != ERROR_SUCCESS) return "";
  const std::string host = MsdosSys(bytes).value("HostWinBootDrv", "Paths").value_or("");
  if (host.size() != 1) return file;
  const std::string onHost = fmt::format("{}:\\{}", host, kFile);
  return session_.files().exists(onHost) ? onHost : file;
}

std::string BootOptions::masterFile() const {
  return fmt::format("{}{}", file_.substr(0, 3), kMaster);
}

void BootOptions::disable(std::string_view reason) {
  for (Option& option : options_) {
    option.control->Enabled = false;
    option.control->ToolTipText = std::string(reason);
    option.stored = shown(option);
  }
  cmdRestoreMSDOSSYS_.Enabled = false;
  cmdRestoreMSDOSSYS_.ToolTipText = std::string(reason);
}

void BootOptions::load() {
  session_.trace.enter("[p_DetermineBootOptions]");
  m_bBootChanged_ = false;
  if (session_.g_bNT) return disable("This setting exists only on Windows 95, 98 and Millennium.");
  file_ = findFile();
  std::string bytes;
  const Status status = file_.empty() ? ERROR_FILE_NOT_FOUND : session_.files().read(file_, bytes);
  session_.trace.dump("lRetVal&", status);
  if (status != ERROR_SUCCESS) return disable("MSDOS.SYS could not be read.");
  const MsdosSys document(bytes);
  for (Option& option : options_) {
    const Row& row = *option.row;
    show(option, document.value(row.name).value_or(defaultText(row.byDefault)));
    const engine::Tweak facts{.property = {}, .families = row.families};
    const engine::TweakState state = engine::availability(facts, session_);
    if (state.kind != engine::TweakState::Kind::Unavailable) continue;
    option.control->Enabled = false;
    option.control->ToolTipText = std::string(state.reason);
  }
}

void BootOptions::Change(std::size_t index) {
  if (session_.g_bNoRecord) return;
  Option& option = options_[index];
  auto* text = dynamic_cast<forms::TextBox*>(option.control);
  if (text != nullptr && !text->Text->empty() && !isNumber(text->Text)) {
    text->Text = option.valid;
    session_.prompts().messageBox("This field accepts numerical characters only.",
                                  kButtonsOk | kIconInformation, foundation::kAppTitle);
    return;
  }
  option.valid = shown(option);
  m_bBootChanged_ = true;
  if (!session_.g_bDefaulting) changed_();
}

int BootOptions::changesWaiting() const {
  return static_cast<int>(std::ranges::count_if(
      options_, [this](const Option& option) { return shown(option) != option.stored; }));
}

std::string BootOptions::apply() {
  if (!m_bBootChanged_) return {};
  Wishes wishes;
  for (std::size_t i = 0; i < options_.size(); ++i) {
    const Option& option = options_[i];
    const std::string wanted = shown(option);
    if (wanted == option.stored) continue;
    if (!isNumber(wanted) || numberOf(wanted, 0) > option.row->largest) {
      return fmt::format("{} in MSDOS.SYS must be a number from 0 to {}. It was not changed.",
                         option.row->name, option.row->largest);
    }
    wishes.emplace_back(i, wanted);
  }
  return write(wishes);
}

std::string BootOptions::restoreDefaults() {
  if (session_.g_bNT || file_.empty()) return {};
  Wishes wishes;
  for (std::size_t i = 0; i < options_.size(); ++i) {
    if (options_[i].control->Enabled && options_[i].row->byDefault != kAsSetupFound) {
      wishes.emplace_back(i, std::to_string(options_[i].row->byDefault));
    }
  }
  return write(wishes);
}

// Somebody else may have changed the file since it was shown: what is not wished stays.
std::string BootOptions::write(const Wishes& wishes) {
  session_.trace.enter("[P_WriteMSDOSSYS]");
  std::string bytes;
  Status status = session_.files().read(file_, bytes);
  if (status == ERROR_SUCCESS) {
    MsdosSys document(bytes);
    for (const auto& [index, wanted] : wishes) {
      const Row& row = *options_[index].row;
      const std::string present = document.value(row.name).value_or(defaultText(row.byDefault));
      if (present != wanted) document.set(row.name, wanted);
    }
    const std::string changed = document.bytes();
    if (changed != bytes) status = replaceFile(changed, false);
  }
  session_.trace.dump("lRetVal&", status);
  if (status != ERROR_SUCCESS) {
    return fmt::format(
        "{} could not be written: {}.\r\nThe old file stands as it was. Put the cause right and "
        "apply "
        "again.",
        file_, describeStatus(status));
  }
  for (const auto& [index, wanted] : wishes) options_[index].stored = shown(options_[index]);
  return {};
}

Status BootOptions::replaceFile(const std::string& bytes, bool fromMaster) {
  FileChange files(session_.files());
  const std::string keep =
      fromMaster ? fmt::format("{}{}", file_.substr(0, 3), kBeforeRestore) : masterFile();
  std::uint32_t attributes = 0;
  Status status = files.attributes(file_, attributes);
  // What a copy of a read-only file is must not keep the next copy from being made.
  if (status == ERROR_SUCCESS && (fromMaster || !files.exists(keep))) {
    std::string present;
    status = files.read(file_, present);
    if (status == ERROR_SUCCESS) status = files.replace(keep, present);
  }
  constexpr std::uint32_t kHindering =
      FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM;
  if (status == ERROR_SUCCESS) status = files.setAttributes(file_, attributes & ~kHindering);
  if (status == ERROR_SUCCESS) status = files.replace(file_, bytes);
  if (status == ERROR_SUCCESS) status = files.setAttributes(file_, attributes);
  if (status == ERROR_SUCCESS && !fromMaster) {
    foundation::P_WriteRegValue(session_, HKEY_LOCAL_MACHINE, kRecord, "Master", keep,
                                KEY_ALL_ACCESS, true, &status);
  }
  if (status == ERROR_SUCCESS) files.commit();
  return status;
}

void BootOptions::cmdRestoreMSDOSSYS_Click() {
  const auto tell = [this](const std::string& text, int icon) {
    session_.prompts().messageBox(text, kButtonsOk | icon, foundation::kAppTitle);
  };
  std::string master;
  if (session_.files().read(masterFile(), master) != ERROR_SUCCESS) {
    return tell(fmt::format("There is no master copy {}.\r\n"
                            "It is made before the first change of an option.",
                            masterFile()),
                kIconInformation);
  }
  const std::string question =
      fmt::format("Restore {} from its master copy?\r\nThe present file is kept as \"{}\".", file_,
                  kBeforeRestore);
  if (session_.prompts().messageBox(question, kButtonsYesNo | kIconQuestion,
                                    foundation::kAppTitle) != Answer::Yes) {
    return;
  }
  const Status status = replaceFile(master, true);
  if (status != ERROR_SUCCESS) {
    return tell(fmt::format("{} could not be restored: {}.\r\nThe file stands as it was.", file_,
                            describeStatus(status)),
                kIconExclamation);
  }
  const bool noRecord = std::exchange(session_.g_bNoRecord, true);
  load();
  session_.g_bNoRecord = noRecord;
  form_.StatusText = "MSDOS.SYS was restored.";
}

}  // namespace korvex::main_window

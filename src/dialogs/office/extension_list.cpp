// Showing and changing the list.
#include "dialogs/office/extension_list.h"

#include <fmt/format.h>

#include <algorithm>

#include "engine/at_once.h"
#include "engine/catalogue.h"
#include "engine/jet.h"
#include "engine/readers.h"
#include "foundation/error_handler.h"
#include "platform/text/text.h"
#include "platform/trimmed.h"

namespace korvex::dialogs {

using engine::HKLM;
using forms::Layout;
using platform::ERROR_SUCCESS;
using platform::sameName;
using platform::Status;
using platform::trimmed;

namespace {

constexpr std::string_view kExtensions = "Extensions";
constexpr const char* kWithoutValue = "asc,csv,tab,txt";
constexpr int kLongest = 64;
constexpr int kRows = 6;
constexpr const char* kListTip = "Extensions of the files that Jet opens as text";
constexpr const char* kFieldTip = "An extension for the list, with or without its dot";

// The parts between the commas as they stand; none of an empty text.
std::vector<std::string_view> partsOf(std::string_view list) {
  std::vector<std::string_view> parts;
  while (!list.empty()) {
    const std::size_t comma = std::min(list.find(','), list.size());
    parts.push_back(list.substr(0, comma));
    list.remove_prefix(std::min(comma + 1, list.size()));
  }
  return parts;
}

bool has(std::string_view list, std::string_view extension) {
  return std::ranges::any_of(partsOf(list), [extension](std::string_view part) {
    return sameName(trimmed(part), extension);
  });
}

// Without the first such extension.
std::string without(std::string_view list, std::string_view extension) {
  std::string left;
  bool gone = false;
  bool first = true;
  for (const std::string_view part : partsOf(list)) {
    if (!gone && sameName(trimmed(part), extension)) {
      gone = true;
      continue;
    }
    left += fmt::format("{}{}", first ? "" : ",", part);
    first = false;
  }
  return left;
}

std::string tidy(std::string_view typed) {
  typed = trimmed(typed);
  if (typed.starts_with('.')) typed.remove_prefix(1);
  return std::string(typed);
}

std::string whyNoExtension(std::string_view extension) {
  if (extension.empty()) return "Type the extension first, such as log.";
  const bool isFine = std::ranges::all_of(extension, [](char c) {
    return static_cast<unsigned char>(c) > ' ' && c != '\x7F' &&
           std::string_view(",.\\/:*?\"<>|").find(c) == std::string_view::npos;
  });
  if (isFine) return {};
  return fmt::format(
      "\"{}\" is no extension: it may hold no blank, comma or dot, and none of \\ / : * ? \" < > "
      "|.",
      extension);
}

}  // namespace

ExtensionList::ExtensionList(forms::Form& form, foundation::Session& session,
                             std::function<bool()> mayChange)
    : session_(session),
      mayChange_(std::move(mayChange)),
      lstExtensions_(form.own<forms::ListBox>("lstExtensions", kRows)),
      lblExtensions_(form.own<forms::Label>("lblExtensions", "Extensio&ns:", &lstExtensions_)),
      txtExtension_(form.own<forms::TextBox>(
          "txtExtension", forms::TextBoxOptions{.maxLength = kLongest, .widthInCharacters = 10})),
      lblExtension_(form.own<forms::Label>("lblExtension", "New ex&tension:", &txtExtension_)),
      cmdExtensionAdd_(form.own<forms::CommandButton>("cmdExtensionAdd", "Add to &list")),
      cmdRemoveExtension_(form.own<forms::CommandButton>("cmdRemoveExtension", "Re&move")) {
  const auto on = [this](forms::CommandButton& button, void (ExtensionList::*handler)()) {
    button.Click += [this, &button, handler] {
      foundation::guarded(session_, button.name() + "_Click",
                          [this, handler] { (this->*handler)(); });
    };
  };
  on(cmdExtensionAdd_, &ExtensionList::cmdExtensionAdd_Click);
  on(cmdRemoveExtension_, &ExtensionList::cmdRemoveExtension_Click);
}

Layout ExtensionList::layout() {
  const auto of = [](forms::Control& control) { return Layout::of(control); };
  return Layout::row(
      {Layout::column({of(lblExtensions_), of(lstExtensions_)}),
       Layout::column({Layout::row({of(lblExtension_), of(txtExtension_), of(cmdExtensionAdd_)}),
                       Layout::row({of(cmdRemoveExtension_), Layout::space()}), Layout::space()}),
       Layout::space()});
}

Status ExtensionList::findKey() {
  session_.jet.unreadable = ERROR_SUCCESS;
  key_ = engine::jetKey(session_, "TEXT");
  return session_.jet.unreadable;
}

Status ExtensionList::stored(std::string& list) {
  const Status found = findKey();
  if (found != ERROR_SUCCESS) return found;
  engine::RawValue value;
  const Status status = engine::readRawValue(session_.registry(), HKLM, key_, kExtensions, value);
  const bool isText = value.type == platform::REG_SZ || value.type == platform::REG_EXPAND_SZ;
  if (status == ERROR_SUCCESS && !isText) return platform::ERROR_INVALID_DATA;
  list = status == ERROR_SUCCESS ? value.text() : kWithoutValue;
  return engine::missingIsFine(status);
}

void ExtensionList::read() {
  std::string list;
  const Status status = stored(list);
  session_.trace.dump("lRetVal&", status);
  // As the format's other settings. What could not be looked at only seems not to be there.
  const engine::TweakState state =
      engine::availability(*engine::findTweak("P_MaxScanRows"), session_);
  const Status failed = status != ERROR_SUCCESS ? status : session_.jet.unreadable;
  std::string reason(state.reason);
  if (failed != ERROR_SUCCESS) {
    reason = fmt::format("The list cannot be read: {}.", platform::describeStatus(failed));
  }
  enable(reason);
  lstExtensions_.WhatsThis =
      fmt::format("The value Extensions of the key HKEY_LOCAL_MACHINE\\{}.", key_);
  show(list);
}

void ExtensionList::enable(const std::string& reason) {
  const auto enableOne = [&reason](forms::Control& control, const char* toolTip) {
    control.Enabled = reason.empty();
    control.ToolTipText = reason.empty() ? toolTip : reason;
  };
  enableOne(lstExtensions_, kListTip);
  enableOne(lblExtensions_, kListTip);
  enableOne(txtExtension_, kFieldTip);
  enableOne(lblExtension_, kFieldTip);
  enableOne(cmdExtensionAdd_, "Add the new extension to the list; written at once");
  enableOne(cmdRemoveExtension_, "Take the selected extension out of the list; written at once");
}

void ExtensionList::show(const std::string& list) {
  lstExtensions_.Clear();
  for (const std::string_view part : partsOf(list)) {
    const std::string_view extension = trimmed(part);
    if (!extension.empty()) lstExtensions_.AddItem(std::string(extension));
  }
}

// The list is read again in the change that writes it: it may be another by now.
bool ExtensionList::change(const Change& change) {
  if (!mayChange_()) return false;
  std::string refusal;
  Status status = ERROR_SUCCESS;
  {
    platform::RegistryChange bracket(session_.registry());
    status = bracket.status();
    std::string list;
    if (status == ERROR_SUCCESS) status = stored(list);
    if (status == ERROR_SUCCESS) refusal = change(list);
    if (status == ERROR_SUCCESS && refusal.empty()) {
      status = engine::putText(session_, HKLM, key_, kExtensions, list);
      if (status == ERROR_SUCCESS) status = bracket.commit();
    }
  }
  const bool done =
      refusal.empty() && engine::finishAtOnce(session_, "The list of extensions", status);
  if (!refusal.empty()) engine::tell(session_, refusal);
  read();
  return done;
}

void ExtensionList::cmdExtensionAdd_Click() {
  session_.trace.enter("[cmdExtensionAdd]");
  const std::string extension = tidy(txtExtension_.Text.get());
  const std::string refusal = whyNoExtension(extension);
  if (!refusal.empty()) return engine::tell(session_, refusal);
  const bool added = change([&extension](std::string& list) {
    if (has(list, extension)) {
      return fmt::format("The extension {} is in the list already.", extension);
    }
    if (trimmed(list).empty()) list.clear();
    const bool isFirst = list.empty() || list.ends_with(',');
    list = fmt::format("{}{}{}", list, isFirst ? "" : ",", extension);
    return std::string();
  });
  if (added) txtExtension_.Text = "";
}

void ExtensionList::cmdRemoveExtension_Click() {
  session_.trace.enter("[cmdRemoveExtension]");
  if (lstExtensions_.ListCount() == 0) {
    return engine::tell(session_, "There are no extensions to remove.");
  }
  const std::string extension = lstExtensions_.selectedItem();
  if (extension.empty()) return engine::tell(session_, "Select the extension to remove first.");
  change([&extension](std::string& list) {
    if (!has(list, extension)) {
      return fmt::format("The extension {} is no longer in the list.", extension);
    }
    list = without(list, extension);
    return std::string();
  });
}

}  // namespace korvex::dialogs

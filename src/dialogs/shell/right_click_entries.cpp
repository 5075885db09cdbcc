// Records, verbs, and what adding and removing write.
#include "dialogs/shell/right_click_entries.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <array>

#include "engine/at_once.h"
#include "engine/raw_value.h"
#include "platform/text/text.h"
#include "platform/trimmed.h"

namespace korvex::dialogs {

using engine::HKCR;
using engine::HKLM;
using engine::missingIsFine;
using engine::RawValue;
using foundation::Session;
using namespace platform;

namespace {

constexpr std::array<std::string_view, 20> kTypes{
    ".BMP", ".BAT", ".CMD",  ".DOC", ".GIF", ".INI", ".INF", ".HTML", ".ICO", ".JPEG",
    ".JPG", ".MOV", ".MPEG", ".PCX", ".REG", ".RTF", ".TXT", ".WAV",  ".WRI", kUnknownType};

constexpr std::string_view kRecords = "Software\\Korvex\\Right_Click";
constexpr std::string_view kMachineClasses = "SOFTWARE\\Classes\\";
constexpr std::string_view kArea = "RightClick";
constexpr std::string_view kClassOfUnknown = "Unknown";
constexpr std::string_view kText = "Text=";
constexpr std::string_view kCommand = "Command=";
constexpr std::string_view kType = "Type=";
// Bitmaps are registered under the second one.
constexpr std::string_view kBmpFile = "bmpfile";
constexpr std::string_view kPaintPicture = "Paint.Picture";

// Verbs that Explorer and programs look for by their names.
constexpr std::array<std::string_view, 12> kVerbsOfWindows{
    "open", "openas", "opennew", "print",   "printto",    "edit",
    "find", "play",   "explore", "preview", "properties", "runas"};
constexpr std::size_t kLongestVerb = 64;  // bytes
constexpr int kMostVerbsOfOneName = 1000;

bool isBitmap(std::string_view className) {
  return sameName(className, kBmpFile) || sameName(className, kPaintPicture);
}

bool sameClass(std::string_view left, std::string_view right) {
  return sameName(left, right) || (isBitmap(left) && isBitmap(right));
}

bool isSameEntry(const RightClickEntry& left, const RightClickEntry& right) {
  return sameClass(left.className, right.className) && sameName(left.verb, right.verb);
}

// As the menu shows it: "&" marks the next letter, "&&" is one that is seen.
std::string shownText(std::string_view text) {
  std::string shown;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] == '&' && ++i == text.size()) break;
    shown += text[i];
  }
  return std::string(trimmed(shown));
}

int accelerators(std::string_view text) {
  int count = 0;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] != '&') continue;
    if (i + 1 < text.size() && text[i + 1] == '&') {
      ++i;
    } else {
      ++count;
    }
  }
  return count;
}

std::string verbFor(std::string_view text) {
  std::string verb = shownText(text);
  for (char& c : verb) {
    const bool fits = static_cast<unsigned char>(c) >= ' ' &&
                      std::string_view("\\/:*?\"<>|").find(c) == std::string_view::npos;
    if (!fits) c = '_';
  }
  if (verb.size() > kLongestVerb) {
    std::size_t end = kLongestVerb;
    while ((static_cast<unsigned char>(verb[end]) & 0xC0) == 0x80) --end;  // within a character
    verb.resize(end);
  }
  return std::string(trimmed(verb));
}

std::string keyOf(std::string_view className, std::string_view verb) {
  return fmt::format("{}\\shell\\{}", className, verb);
}

std::string recordName(const RightClickEntry& entry) {
  return fmt::format("{}\\{}", entry.className, entry.verb);
}

RawValue recordOf(const RightClickEntry& entry) {
  RawValue record{.type = REG_MULTI_SZ, .bytes = {}};
  const auto append = [&record](std::string_view field, std::string_view text) {
    record.bytes += fmt::format("{}{}{}", field, text, '\0');
  };
  append(kText, entry.text);
  append(kCommand, entry.command);
  for (const std::string& type : entry.types) append(kType, type);
  record.bytes += '\0';
  return record;
}

// Nothing where the value is no record.
std::optional<RightClickEntry> entryOf(std::string_view name, const RawValue& record) {
  const std::size_t cut = name.rfind('\\');
  if (record.type != REG_MULTI_SZ || cut == std::string_view::npos || cut == 0 ||
      cut + 1 == name.size()) {
    return std::nullopt;
  }
  RightClickEntry entry{
      std::string(name.substr(0, cut)), std::string(name.substr(cut + 1)), "", "", {}};
  for (std::string_view rest = record.bytes; !rest.empty();) {
    const std::string_view line = rest.substr(0, rest.find('\0'));
    rest.remove_prefix(std::min(rest.size(), line.size() + 1));
    if (line.starts_with(kText)) entry.text = line.substr(kText.size());
    if (line.starts_with(kCommand)) entry.command = line.substr(kCommand.size());
    if (line.starts_with(kType)) entry.types.emplace_back(line.substr(kType.size()));
  }
  return entry;
}

void addTypes(const std::vector<std::string>& from, std::vector<std::string>& to) {
  for (const std::string& type : from) {
    const auto same = [&type](const std::string& one) { return sameName(one, type); };
    if (std::ranges::none_of(to, same)) to.push_back(type);
  }
}

// Whether the key has that text as its default value, and nothing else but that many subkeys.
Status holdsOnly(Session& session, const std::string& key, const std::string& text,
                 std::uint32_t subKeys, bool& only) {
  const OpenKey opened(session.registry(), HKCR, key, KEY_READ);
  KeyInfo info;
  RawValue value;
  Status status = opened.status();
  if (status == ERROR_SUCCESS) status = session.registry().RegQueryInfoKeyA(opened.get(), info);
  if (status == ERROR_SUCCESS) {
    status = missingIsFine(engine::readRawValue(session.registry(), opened.get(), "", value));
  }
  only =
      info.values == 1 && info.subKeys == subKeys && value.type == REG_SZ && value.text() == text;
  return status;
}

}  // namespace

std::string RightClickEntry::line() const { return fmt::format("{}   {}", className, verb); }
std::string RightClickEntry::key() const { return keyOf(className, verb); }

std::string RightClickEntry::program() const {
  if (!command.starts_with('"')) return command;
  return command.substr(1, command.find('"', 1) - 1);
}

std::string RightClickEntry::p_FillType() const {
  if (types.empty()) return "Unknown";
  std::string shown;
  for (const std::string& type : types) {
    if (!shown.empty()) shown += ", ";
    shown += type == kUnknownType ? "Unknown" : type;
  }
  return shown;
}

RightClickEntries::RightClickEntries(Session& session)
    : session_(session), ofMachine_(session, HKLM, kArea), ofUser_(session, HKCR, kArea) {}

std::span<const std::string_view> RightClickEntries::DetermineRightClickOptions() { return kTypes; }

std::string RightClickEntries::tidiedPath(std::string_view typed) {
  std::string path(trimmed(typed, " \t\""));
  std::ranges::replace(path, '/', '\\');
  return path;
}

std::optional<RightClickEntries::Refusal> RightClickEntries::refusalOf(
    std::string_view type, std::string_view text, std::string_view program) const {
  using Field = Refusal::Field;
  if (verbFor(text).empty()) {
    return Refusal{Field::Text,
                   "Korvex needs to know the text as you wish it to appear within the right click "
                   "menu."};
  }
  if (accelerators(text) > 1) {
    return Refusal{Field::Text,
                   "A menu text has one accelerator character only. Write && for an ampersand that "
                   "is to be seen."};
  }
  const std::string path = tidiedPath(program);
  if (path.empty()) {
    return Refusal{Field::Program,
                   fmt::format("Korvex needs to know the fully qualified path. Include the "
                               "executable name for the application you wish to use as the "
                               "secondary application to launch {}.",
                               type)};
  }
  const bool isFull = path.size() > 3 && path[1] == ':' && path[2] == '\\';
  std::uint32_t attributes = 0;
  if (!isFull || session_.files().attributes(path, attributes) != ERROR_SUCCESS ||
      (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0) {
    return Refusal{
        Field::Program,
        fmt::format("{} is not a valid path. Please check the path and try again.", path)};
  }
  return std::nullopt;
}

Status RightClickEntries::classOf(std::string_view type, std::string& className,
                                  bool& registered) const {
  registered = true;
  className = kClassOfUnknown;
  if (type == kUnknownType) return ERROR_SUCCESS;
  const Status status = engine::storedText(session_, HKCR, type, "", className);
  registered = !className.empty();
  if (registered) return status;
  for (const char c : type.substr(1)) {
    className += c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
  }
  className += "file";
  return status;
}

Status RightClickEntries::records(std::vector<RightClickEntry>& entries) const {
  entries.clear();
  const OpenKey key(session_.registry(), HKLM, kRecords, KEY_QUERY_VALUE);
  Status status = key.status();
  std::array<char, kNameBufferBytes> buffer;
  for (std::uint32_t i = 0; status == ERROR_SUCCESS; ++i) {
    auto length = static_cast<std::uint32_t>(buffer.size());
    status = session_.registry().RegEnumValueA(key.get(), i, buffer.data(), &length, nullptr,
                                               nullptr, nullptr);
    if (status != ERROR_SUCCESS) break;
    const std::string_view name(buffer.data(), length);
    RawValue record;
    status = engine::readRawValue(session_.registry(), key.get(), name, record);
    if (auto entry = entryOf(name, record)) entries.push_back(std::move(*entry));
  }
  return status == ERROR_NO_MORE_ITEMS ? ERROR_SUCCESS : missingIsFine(status);
}

Status RightClickEntries::p_DetermineRightClickEntries(
    std::vector<RightClickEntry>& entries) const {
  session_.trace.enter("[p_DetermineRightClickEntries]");
  std::vector<RightClickEntry> all;
  const Status status = records(all);
  entries.clear();
  for (RightClickEntry& entry : all) {
    const auto same = std::ranges::find_if(
        entries, [&entry](const RightClickEntry& one) { return isSameEntry(one, entry); });
    if (same == entries.end()) {
      entries.push_back(std::move(entry));
    } else {
      addTypes(entry.types, same->types);
    }
  }
  return status;
}

Status RightClickEntries::hasKey(const std::string& key, bool& there) const {
  const Status status = OpenKey(session_.registry(), HKCR, key, KEY_READ).status();
  there = status == ERROR_SUCCESS;
  return missingIsFine(status);
}

Status RightClickEntries::stateOf(const RightClickEntry& entry, State& state) const {
  bool there = false;
  Status status = hasKey(entry.key(), there);
  state = there ? State::Changed : State::Missing;
  if (!there) return status;
  bool named = false;
  bool starts = false;
  status = holdsOnly(session_, entry.key(), entry.text, 1, named);
  if (status == ERROR_SUCCESS) {
    status =
        missingIsFine(holdsOnly(session_, entry.key() + "\\command", entry.command, 0, starts));
  }
  if (named && starts) state = State::AsAdded;
  return status;
}

// A verb of a bitmap is one of both classes: removing it looks at both.
Status RightClickEntries::isTaken(const std::vector<RightClickEntry>& own,
                                  const std::string& className, const std::string& verb,
                                  bool& taken) const {
  taken = std::ranges::any_of(kVerbsOfWindows,
                              [&verb](std::string_view one) { return sameName(one, verb); }) ||
          std::ranges::any_of(own, [&](const RightClickEntry& entry) {
            return sameClass(entry.className, className) && sameName(entry.verb, verb);
          });
  Status status = ERROR_SUCCESS;
  if (!taken) status = hasKey(keyOf(className, verb), taken);
  for (const std::string_view one : {kBmpFile, kPaintPicture}) {
    if (taken || status != ERROR_SUCCESS || !isBitmap(className)) break;
    status = hasKey(keyOf(one, verb), taken);
  }
  return status;
}

// A double click starts the verb that the class names, else "open", else the first one, and NT
// sorts them: an entry of the menu must not get before it.
Status RightClickEntries::wouldLead(const RightClickEntry& entry, bool& leads) const {
  leads = false;
  if (!session_.g_bNT) return ERROR_SUCCESS;
  const std::string shell = entry.className + "\\shell";
  std::string named;
  std::vector<std::string> verbs;
  Status status = engine::storedText(session_, HKCR, shell, "", named);
  if (status == ERROR_SUCCESS) {
    status = missingIsFine(engine::listSubKeys(session_.registry(), HKCR, shell, KEY_READ, verbs));
  }
  const auto isOpen = [](const std::string& verb) { return sameName(verb, "open"); };
  if (!named.empty() || std::ranges::any_of(verbs, isOpen)) return status;
  const std::string folded = foldName(entry.verb);
  leads = !verbs.empty() && std::ranges::all_of(verbs, [&folded](const std::string& verb) {
    return folded < foldName(verb);
  });
  return status;
}

Status RightClickEntries::freeVerb(const std::vector<RightClickEntry>& own,
                                   RightClickEntry& entry) const {
  std::string base = verbFor(entry.text);
  entry.verb = base;
  bool leads = false;
  Status status = wouldLead(entry, leads);
  if (leads) base.insert(0, "~");  // behind all letters
  entry.verb = base;
  bool taken = true;
  for (int i = 2; status == ERROR_SUCCESS; ++i) {
    status = isTaken(own, entry.className, entry.verb, taken);
    if (!taken || status != ERROR_SUCCESS) break;
    if (i > kMostVerbsOfOneName) return ERROR_ALREADY_EXISTS;
    entry.verb = fmt::format("{} {}", base, i);
  }
  return status;
}

Status RightClickEntries::plan(std::string_view type, const std::string& text,
                               std::string_view program, Plan& plan) const {
  plan = {};
  RightClickEntry& entry = plan.entry;
  entry.text = trimmed(text);
  entry.command = fmt::format("\"{}\" \"%1\"", tidiedPath(program));
  entry.types = {std::string(type)};
  std::vector<RightClickEntry> own;
  Status status = classOf(type, entry.className, plan.registered);
  if (status == ERROR_SUCCESS) status = records(own);
  if (status != ERROR_SUCCESS) return status;
  const auto same = std::ranges::find_if(own, [&entry](const RightClickEntry& one) {
    return sameName(one.className, entry.className) &&
           sameName(shownText(one.text), shownText(entry.text));
  });
  if (same == own.end()) return freeVerb(own, entry);
  plan.replaced = *same;
  entry.className = same->className;
  entry.verb = same->verb;
  entry.types = same->types;
  addTypes({std::string(type)}, entry.types);
  return ERROR_SUCCESS;
}

Status RightClickEntries::keep(const std::string& key, const std::string& name) {
  Status status = missingIsFine(ofMachine_.removeTree(std::string(kMachineClasses) + key, name));
  bool there = false;
  if (status == ERROR_SUCCESS) status = hasKey(key, there);
  return there ? ofUser_.removeTree(key, name) : status;
}

// What stands there and is not as it was added is kept, and goes.
Status RightClickEntries::setAside(const RightClickEntry& entry, State& state) {
  const Status status = stateOf(entry, state);
  if (status != ERROR_SUCCESS || state != State::Changed) return status;
  state = State::Missing;
  return keep(entry.key(), fmt::format("{} ({})", entry.line(), entry.p_FillType()));
}

// Takes the entry's verb out of the class.
Status RightClickEntries::clear(const std::string& className, const RightClickEntry& entry) {
  RightClickEntry there = entry;
  there.className = className;
  State state{};
  Status status = setAside(there, state);
  if (status != ERROR_SUCCESS || state == State::Missing) return status;
  status = session_.regTool.DeleteRegNodes(HKCR, there.key() + "\\command");
  return status == ERROR_SUCCESS ? session_.regTool.DeleteRegNodes(HKCR, there.key()) : status;
}

Status RightClickEntries::add(const RightClickEntry& entry) {
  std::vector<RightClickEntry> own;
  Status status = records(own);
  for (const RightClickEntry& before : own) {
    State state{};
    const bool replaced = sameName(recordName(before), recordName(entry));
    if (status == ERROR_SUCCESS && replaced) status = setAside(before, state);
  }
  const std::string key = entry.key();
  if (status == ERROR_SUCCESS) {
    status = engine::putText(session_, HKCR, key + "\\command", "", entry.command);
  }
  if (status == ERROR_SUCCESS) status = engine::putText(session_, HKCR, key, "", entry.text);
  return status == ERROR_SUCCESS
             ? engine::putRaw(session_, HKLM, kRecords, recordName(entry), recordOf(entry))
             : status;
}

// A class that holds nothing any more was made for the entry.
Status RightClickEntries::dropEmpty(const std::string& className) {
  Status status = ERROR_SUCCESS;
  for (const std::string& key : {className + "\\shell", className}) {
    bool empty = false;
    status = missingIsFine(engine::isEmptyKey(session_.registry(), HKCR, key, empty));
    if (status != ERROR_SUCCESS || !empty) break;
    status = session_.regTool.DeleteOneRegNode(HKCR, key);
    if (status != ERROR_SUCCESS) break;
  }
  return status;
}

Status RightClickEntries::remove(const RightClickEntry& entry) {
  std::vector<RightClickEntry> own;
  Status status = records(own);
  std::erase_if(own, [&entry](const RightClickEntry& one) { return !isSameEntry(one, entry); });
  if (status == ERROR_SUCCESS && own.empty()) return ERROR_FILE_NOT_FOUND;
  for (const RightClickEntry& record : own) {
    std::vector<std::string> classes{record.className};
    if (sameName(record.className, kBmpFile)) classes.emplace_back(kPaintPicture);
    for (const std::string& className : classes) {
      if (status == ERROR_SUCCESS) status = clear(className, record);
      if (status == ERROR_SUCCESS) status = dropEmpty(className);
    }
    if (status == ERROR_SUCCESS) {
      status = engine::dropValue(session_, HKLM, kRecords, recordName(record));
    }
  }
  return status;
}

std::vector<engine::TakenAway::Item> RightClickEntries::kept() const {
  std::vector<engine::TakenAway::Item> items = ofMachine_.items();
  const std::vector<engine::TakenAway::Item> ofUser = ofUser_.items();
  items.insert(items.end(), ofUser.begin(), ofUser.end());
  std::ranges::stable_sort(items, std::ranges::greater{}, &engine::TakenAway::Item::when);
  return items;
}

Status RightClickEntries::takeBack(const engine::TakenAway::Item& item) {
  const bool ofMachine = sameName(item.key.substr(0, kMachineClasses.size()), kMachineClasses);
  return ofMachine ? ofMachine_.takeBack(item) : ofUser_.takeBack(item);
}

}  // namespace korvex::dialogs

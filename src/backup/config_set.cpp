// Records of sets, in the registry and as a file.
#include "backup/config_set.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <map>
#include <utility>

#include "backup/categories.h"
#include "backup/folder_tree.h"
#include "foundation/reg_value.h"
#include "platform/text/reg_names.h"
#include "platform/text/reg_parser.h"
#include "platform/text/text.h"

namespace korvex::backup {

using foundation::Session;
using namespace platform;

namespace {

constexpr std::string_view kFiles = "\\Files";
constexpr std::string_view kConfiguration = "SOFTWARE\\Korvex\\Configuration";
constexpr std::string_view kForbidden = "\\/:*?\"<>|";
constexpr std::size_t kLongestName = 100;
constexpr std::size_t kLongestPlace = 1024;
constexpr std::string_view kKinds = "KFDkf";

std::string setKey(std::string_view name) { return fmt::format("{}\\{}", kSetsKey, name); }

bool isDevice(std::string_view name) {
  static constexpr std::array<std::string_view, 4> kDevices{"CON", "PRN", "AUX", "NUL"};
  const std::string_view stem = name.substr(0, name.find('.'));
  const bool numbered = stem.size() == 4 && stem[3] >= '0' && stem[3] <= '9' &&
                        (sameName(stem.substr(0, 3), "COM") || sameName(stem.substr(0, 3), "LPT"));
  return numbered || std::ranges::any_of(kDevices, [stem](auto d) { return sameName(d, stem); });
}

// One part of a path: nothing that leads anywhere else.
bool isFileName(std::string_view name) {
  if (name.empty() || name.back() == '.' || name.back() == ' ' || isDevice(name)) return false;
  return std::none_of(name.begin(), name.end(), [](char c) {
    return (c >= 0 && c < ' ') || kForbidden.find(c) != std::string_view::npos;
  });
}

// A path below the set's folder.
bool isFileInSet(std::string_view file) {
  while (!file.empty()) {
    const std::size_t slash = file.find('\\');
    if (!isFileName(file.substr(0, slash))) return false;
    if (slash == std::string_view::npos) return true;
    file.remove_prefix(slash + 1);
  }
  return false;
}

// "K|ColorConfig|1234|0123456789abcdef|HKEY_CURRENT_USER\Control Panel\Appearance"
std::string entryText(const SetEntry& entry) {
  return fmt::format("{}|{}|{}|{:016x}|{}", static_cast<char>(entry.kind), entry.tag, entry.size,
                     entry.checksum, entry.place);
}

template <typename Number>
bool readNumber(std::string_view text, int base, Number& number) {
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number, base);
  return error == std::errc() && end == text.data() + text.size();
}

bool readEntry(std::string_view file, std::string_view text, SetEntry& entry) {
  std::array<std::string_view, 5> fields;
  for (std::size_t i = 0; i < fields.size(); ++i) {
    const std::size_t bar = i + 1 < fields.size() ? text.find('|') : text.size();
    if (bar == std::string_view::npos) return false;
    fields[i] = text.substr(0, bar);
    text.remove_prefix(std::min(text.size(), bar + 1));
  }
  if (fields[0].size() != 1 || kKinds.find(fields[0]) == std::string_view::npos) return false;
  entry.kind = static_cast<SetEntry::Kind>(fields[0][0]);
  entry.tag = fields[1];
  entry.place = fields[4];
  entry.file = file;
  return isFileInSet(file) && !entry.place.empty() && entry.place.size() <= kLongestPlace &&
         readNumber(fields[2], 10, entry.size) && readNumber(fields[3], 16, entry.checksum);
}

// What a record says, from wherever it was read.
struct RawRecord {
  std::map<std::string, std::string, std::less<>> texts;  // the set's own values, folded names
  std::vector<std::string> tags;
  std::vector<std::pair<std::string, std::string>> files;
};

// False: message says what is wrong with it.
bool understand(const RawRecord& raw, ConfigSet& set, std::string& message) {
  const auto text = [&raw](std::string_view name) {
    const auto found = raw.texts.find(foldName(name));
    return found == raw.texts.end() ? std::string() : found->second;
  };
  set.saved = text("Saved");
  set.windows = text("Windows");
  set.computer = text("Computer");
  set.user = text("User");
  for (const Category& category : categories()) {
    const auto same = [&](const std::string& tag) { return sameName(tag, category.tag); };
    if (std::ranges::any_of(raw.tags, same)) set.tags.emplace_back(category.tag);
  }
  for (const auto& [file, line] : raw.files) {
    SetEntry entry;
    if (!readEntry(file, line, entry) || !set.holds(entry.tag)) {
      message = fmt::format("its record of {} cannot be understood.", file);
      return false;
    }
    set.entries.push_back(std::move(entry));
  }
  std::ranges::sort(set.entries, {}, [](const SetEntry& entry) { return foldName(entry.file); });
  return true;
}

std::string textOf(std::string_view data) { return std::string(data.substr(0, data.find('\0'))); }

// The values of one set in a profile.kvx: everything else in it makes it none.
class ProfileSink : public RegTextSink {
 public:
  RegStep beginKey(std::size_t line, const KeyPath& key) override {
    const std::string prefix = std::string(kSetsKey) + '\\';
    const std::string_view path = key.path;
    const bool below = key.root == HKEY_LOCAL_MACHINE && path.size() > prefix.size() &&
                       sameName(path.substr(0, prefix.size()), prefix);
    std::string_view rest = below ? path.substr(prefix.size()) : std::string_view();
    const std::size_t slash = rest.find('\\');
    inFiles_ = slash != std::string_view::npos && sameName(rest.substr(slash), kFiles);
    if (inFiles_) rest = rest.substr(0, slash);
    const bool known = below && rest.find('\\') == std::string_view::npos &&
                       (name.empty() || sameName(name, rest));
    if (!known) return refuse(line);
    name = rest;
    return RegStep::Done;
  }
  RegStep deleteKey(std::size_t line, const KeyPath& /*key*/) override { return refuse(line); }
  RegStep deleteValue(std::size_t line, std::string_view /*name*/) override { return refuse(line); }
  RegStep setValue(std::size_t line, std::string_view valueName, RegType type,
                   std::string_view data) override {
    if (inFiles_ && type == REG_SZ) {
      raw.files.emplace_back(valueName, textOf(data));
    } else if (type == REG_DWORD && data.size() == 4) {
      if (data[0] != 0) raw.tags.emplace_back(valueName);
    } else if (type == REG_SZ) {
      raw.texts[foldName(valueName)] = textOf(data);
    } else {
      return refuse(line);
    }
    return RegStep::Done;
  }
  void problem(std::size_t line, std::string_view /*text*/) override { refuse(line); }
  void note(std::size_t /*line*/, std::string_view /*text*/) override {}

  std::string name;
  RawRecord raw;
  std::size_t badLine = 0;

 private:
  RegStep refuse(std::size_t line) {
    if (badLine == 0) badLine = line;
    return RegStep::Stop;
  }

  bool inFiles_ = false;
};

// Names and data of a key's values.
Status readValues(Session& session, const std::string& path, bool files, RawRecord& raw) {
  const OpenKey key(session.registry(), HKEY_LOCAL_MACHINE, path, KEY_READ);
  if (key.status() != ERROR_SUCCESS) return key.status();
  for (std::uint32_t i = 0;; ++i) {
    std::string name;
    foundation::Variant value;
    RegType type = REG_NONE;
    const Status status = session.regTool.GetRegValueNext(key.get(), i, name, value, type, false);
    if (status == ERROR_NO_MORE_ITEMS) return ERROR_SUCCESS;
    if (status != ERROR_SUCCESS) return status;
    if (type == REG_DWORD) {
      if (session.regTool.GetRegInt(path, name, HKEY_LOCAL_MACHINE) != 0) raw.tags.push_back(name);
      continue;
    }
    const std::string text = session.regTool.GetRegStr(path, name, HKEY_LOCAL_MACHINE);
    if (files) {
      raw.files.emplace_back(name, text);
    } else {
      raw.texts[foldName(name)] = text;
    }
  }
}

}  // namespace

bool ConfigSet::holds(std::string_view tag) const {
  return std::ranges::any_of(tags, [tag](const std::string& one) { return sameName(one, tag); });
}

std::string whyNoSetName(std::string_view name) {
  if (name.empty()) return "Type a name for the save first.";
  if (characterCount(name) > kLongestName) {
    return fmt::format("A name may have {} characters at most.", kLongestName);
  }
  if (!isFileName(name) || name.front() == ' ' || name.front() == '.') {
    return "The name of a save is the name of its folder: it may not hold \\ / : * ? \" < > |, "
           "begin or end with a blank or a dot, or be the name of a device.";
  }
  for (const std::string_view ending : {".kvxnew", ".kvxold"}) {
    if (name.size() > ending.size() && sameName(name.substr(name.size() - ending.size()), ending)) {
      return fmt::format("The ending {} is Korvex's own. Choose another name.", ending);
    }
  }
  return "";
}

std::string saveFolder(Session& session) {
  const std::string stored =
      session.regTool.GetRegStr(kConfiguration, "RegPath", HKEY_LOCAL_MACHINE);
  const bool isWhole = stored.size() > 1 && (stored[1] == ':' || stored.starts_with("\\\\"));
  std::string folder =
      isWhole ? stored
              : fmt::format("{}\\{}", session.g_sAppPath, stored.empty() ? "Registry" : stored);
  while (folder.size() > 3 && folder.back() == '\\') folder.pop_back();
  return folder;
}

std::vector<std::string> savedSets(Session& session) {
  std::vector<std::string> names;
  const OpenKey key(session.registry(), HKEY_LOCAL_MACHINE, kSetsKey, KEY_READ);
  if (key.status() != ERROR_SUCCESS) return names;
  for (std::uint32_t i = 0;; ++i) {
    std::string name;
    if (session.regTool.GetRegNodeNext(key.get(), i, name, i == 0) != ERROR_SUCCESS) break;
    names.push_back(name);
  }
  std::ranges::sort(names, {}, [](const std::string& name) { return foldName(name); });
  return names;
}

Status readRecord(Session& session, std::string_view name, ConfigSet& set, std::string& message) {
  set = {};
  set.name = name;
  const auto fail = [&](Status status, std::string_view why) {
    message = fmt::format("The save {}: {}", name, why);
    return status;
  };
  RawRecord raw;
  const std::string path = setKey(name);
  Status status = name.empty() ? ERROR_FILE_NOT_FOUND : readValues(session, path, false, raw);
  if (status == ERROR_FILE_NOT_FOUND) return fail(status, "there is no such save.");
  if (status == ERROR_SUCCESS) status = readValues(session, path + std::string(kFiles), true, raw);
  if (status == ERROR_FILE_NOT_FOUND) status = ERROR_SUCCESS;
  if (status != ERROR_SUCCESS) return fail(status, describeStatus(status) + '.');
  const auto folder = raw.texts.find(foldName("Path"));
  if (folder != raw.texts.end()) set.folder = folder->second;
  std::string why;
  if (!understand(raw, set, why)) return fail(ERROR_INVALID_DATA, why);
  return ERROR_SUCCESS;
}

Status writeRecord(Session& session, const ConfigSet& set) {
  RegistryChange change(session.registry());
  Status status = change.status();
  if (status == ERROR_SUCCESS) status = deleteRecord(session, set.name);
  if (status == ERROR_FILE_NOT_FOUND) status = ERROR_SUCCESS;
  const std::string path = setKey(set.name);
  const auto write = [&](const std::string& key, std::string_view name,
                         const foundation::Variant& value) {
    if (status == ERROR_SUCCESS) {
      foundation::P_WriteRegValue(session, HKEY_LOCAL_MACHINE, key, name, value, KEY_ALL_ACCESS,
                                  true, &status);
    }
  };
  // REG_SZ whatever stands in it: a "%" would make other writers expand it.
  const auto writeText = [&](const std::string& key, std::string_view name,
                             const std::string& text) {
    HKEY opened = 0;
    std::uint32_t disposition = 0;
    if (status == ERROR_SUCCESS) {
      status = session.registry().RegCreateKeyExA(HKEY_LOCAL_MACHINE, key, KEY_ALL_ACCESS, opened,
                                                  disposition);
    }
    if (status != ERROR_SUCCESS) return;
    status = session.registry().RegSetValueExA(opened, name, REG_SZ, text.c_str(),
                                               static_cast<std::uint32_t>(text.size() + 1));
    session.registry().RegCloseKey(opened);
  };
  writeText(path, "Path", set.folder);
  writeText(path, "Saved", set.saved);
  writeText(path, "Windows", set.windows);
  writeText(path, "Computer", set.computer);
  writeText(path, "User", set.user);
  for (const Category& category : categories()) {
    write(path, category.tag, std::int32_t{set.holds(category.tag) ? 1 : 0});
  }
  for (const SetEntry& entry : set.entries) {
    writeText(path + std::string(kFiles), entry.file, entryText(entry));
  }
  return status == ERROR_SUCCESS ? change.commit() : status;
}

Status deleteRecord(Session& session, std::string_view name) {
  if (name.empty()) return ERROR_FILE_NOT_FOUND;
  return session.regTool.DeleteRegNodes(HKEY_LOCAL_MACHINE, setKey(name));
}

Status readProfile(Session& session, std::string_view file, ConfigSet& set, std::string& message) {
  set = {};
  const auto fail = [&](Status status, std::string_view why) {
    message = fmt::format("{}: {}", file, why);
    return status;
  };
  const CodePage* codePage = CodePage::find(session.machine().describe().codePage);
  if (codePage == nullptr) codePage = CodePage::find(1252);
  ProfileSink sink;
  RegTextParser parser(sink, *codePage, ShortRoots::No);
  bool wanted = true;
  const Status status = session.files().readPieces(file, [&](std::string_view piece) {
    if (wanted) wanted = parser.feed(piece);
    return ERROR_SUCCESS;
  });
  if (status != ERROR_SUCCESS) return fail(status, describeStatus(status) + '.');
  if (wanted) parser.finish();
  if (!parser.headerAccepted()) {
    return fail(ERROR_INVALID_DATA, "it is no record of saved settings.");
  }
  if (sink.badLine != 0) {
    return fail(ERROR_INVALID_DATA,
                fmt::format("line {} does not belong into a record of saved settings; nothing of "
                            "it was used.",
                            sink.badLine));
  }
  set.name = sink.name;
  set.folder = parentFolder(std::string(file));
  const std::string wrongName = whyNoSetName(set.name);
  if (!wrongName.empty()) return fail(ERROR_INVALID_DATA, wrongName);
  std::string why;
  if (!understand(sink.raw, set, why)) return fail(ERROR_INVALID_DATA, why);
  return ERROR_SUCCESS;
}

}  // namespace korvex::backup

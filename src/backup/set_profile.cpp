// The record of a set as a file, and the list of what the set holds.
#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <charconv>

#include "backup/categories.h"
#include "backup/config_set.h"
#include "backup/folder_tree.h"
#include "backup/set_record.h"
#include "platform/text/reg_names.h"
#include "platform/text/reg_parser.h"
#include "platform/text/text.h"

namespace korvex::backup {

using foundation::Session;
using namespace platform;

namespace {

constexpr std::size_t kLongestPlace = 1024;
constexpr std::size_t kLargestList = std::size_t{16} * 1024 * 1024;
constexpr std::string_view kKinds = "KFDkf";
constexpr std::string_view kListHead = "[Files]";

// "K|ColorConfig|1234|0123456789abcdef|colors.reg|HKEY_CURRENT_USER\Control Panel\Colors"
std::string entryLine(const SetEntry& entry) {
  return fmt::format("{}|{}|{}|{:016x}|{}|{}\r\n", static_cast<char>(entry.kind), entry.tag,
                     entry.size, entry.checksum, entry.file, entry.place);
}

template <typename Number>
bool readNumber(std::string_view text, int base, Number& number) {
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number, base);
  return error == std::errc() && end == text.data() + text.size();
}

bool readEntry(std::string_view text, SetEntry& entry) {
  std::array<std::string_view, 6> fields;
  for (std::size_t i = 0; i < fields.size(); ++i) {
    const std::size_t bar = i + 1 < fields.size() ? text.find('|') : text.size();
    if (bar == std::string_view::npos) return false;
    fields[i] = text.substr(0, bar);
    text.remove_prefix(std::min(text.size(), bar + 1));
  }
  if (fields[0].size() != 1 || kKinds.find(fields[0]) == std::string_view::npos) return false;
  entry.kind = static_cast<SetEntry::Kind>(fields[0][0]);
  entry.tag = fields[1];
  entry.file = fields[4];
  entry.place = fields[5];
  return isFileInSet(entry.file) && !entry.place.empty() && entry.place.size() <= kLongestPlace &&
         readNumber(fields[2], 10, entry.size) && readNumber(fields[3], 16, entry.checksum);
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
    const std::string_view rest = below ? path.substr(prefix.size()) : std::string_view();
    const bool known = below && rest.find('\\') == std::string_view::npos &&
                       (set.name.empty() || sameName(set.name, rest));
    if (!known) return refuse(line);
    set.name = rest;
    return RegStep::Done;
  }
  RegStep deleteKey(std::size_t line, const KeyPath& /*key*/) override { return refuse(line); }
  RegStep deleteValue(std::size_t line, std::string_view /*name*/) override { return refuse(line); }
  RegStep setValue(std::size_t line, std::string_view valueName, RegType type,
                   std::string_view data) override {
    if (type == REG_DWORD && data.size() == 4) {
      takeRecordFlag(valueName, data[0] != 0, set);
    } else if (type == REG_SZ) {
      takeRecordText(valueName, textOf(data), set);
    } else {
      return refuse(line);
    }
    return RegStep::Done;
  }
  void problem(std::size_t line, std::string_view /*text*/) override { refuse(line); }
  void note(std::size_t /*line*/, std::string_view /*text*/) override {}

  ConfigSet set;
  std::size_t badLine = 0;

 private:
  RegStep refuse(std::size_t line) {
    if (badLine == 0) badLine = line;
    return RegStep::Stop;
  }
};

std::string sizeAndChecksum(std::uint64_t size, std::uint64_t checksum) {
  return fmt::format("{}|{:016x}", size, checksum);
}

std::string listOf(const std::string& folder) {
  return fmt::format("{}{}{}", folder, folder.ends_with('\\') ? "" : "\\", kContentsFile);
}

// False: message says what is wrong with the list.
bool readContents(Session& session, ConfigSet& set, std::string& message) {
  const auto fail = [&message](std::string_view why) {
    message = fmt::format("its list {} {}", kContentsFile, why);
    return false;
  };
  const std::string file = listOf(set.folder);
  std::uint64_t size = 0;
  std::uint64_t checksum = 0;
  const Status measured = measure(session.files(), file, size, checksum);
  if (measured == ERROR_FILE_NOT_FOUND) return fail("is missing.");
  if (measured != ERROR_SUCCESS)
    return fail(fmt::format("cannot be read: {}.", describeStatus(measured)));
  std::string text;
  if (sizeAndChecksum(size, checksum) != set.contents || size > kLargestList ||
      session.files().read(file, text) != ERROR_SUCCESS) {
    return fail("is not what was saved.");
  }
  bool inList = false;
  for (std::string_view rest = text; !rest.empty();) {
    const std::string_view line = rest.substr(0, rest.find_first_of("\r\n"));
    rest.remove_prefix(std::min(rest.size(), line.size() + 1));
    if (line.empty()) continue;
    if (!inList) {
      inList = line == kListHead;
      if (!inList) return fail("cannot be understood.");
      continue;
    }
    SetEntry entry;
    if (!readEntry(line, entry) || !set.holds(entry.tag)) return fail("cannot be understood.");
    set.entries.push_back(std::move(entry));
  }
  std::ranges::sort(set.entries, {}, [](const SetEntry& entry) { return foldName(entry.file); });
  return true;
}

}  // namespace

void takeRecordText(std::string_view name, std::string text, ConfigSet& set) {
  const std::array<std::pair<std::string_view, std::string*>, 6> texts{
      {{"Path", &set.folder},
       {"Saved", &set.saved},
       {"Windows", &set.windows},
       {"Computer", &set.computer},
       {"User", &set.user},
       {"Contents", &set.contents}}};
  for (const auto& [known, target] : texts) {
    if (!sameName(known, name)) continue;
    *target = std::move(text);
    return;
  }
}

// Tags stand in the order of the categories, whatever the order in which they come.
void takeRecordFlag(std::string_view name, bool value, ConfigSet& set) {
  const Category* const category = findCategory(name);
  if (!value || category == nullptr || set.holds(name)) return;
  set.tags.emplace_back(category->tag);
  std::ranges::sort(set.tags, {}, [](const std::string& tag) { return findCategory(tag); });
}

Status writeContents(Session& session, const std::string& folder, ConfigSet& set) {
  std::string text = std::string(kListHead) + "\r\n";
  for (const SetEntry& entry : set.entries) text += entryLine(entry);
  const std::string file = listOf(folder);
  std::uint64_t size = 0;
  std::uint64_t checksum = 0;
  Status status = session.files().replace(file, text);
  if (status == ERROR_SUCCESS) status = measure(session.files(), file, size, checksum);
  set.contents = sizeAndChecksum(size, checksum);
  return status;
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
  set = std::move(sink.set);
  set.folder = parentFolder(std::string(file));
  const std::string wrongName = whyNoSetName(set.name);
  if (!wrongName.empty()) return fail(ERROR_INVALID_DATA, wrongName);
  std::string why;
  if (!readContents(session, set, why)) return fail(ERROR_INVALID_DATA, why);
  return ERROR_SUCCESS;
}

}  // namespace korvex::backup

// Reading, changing and starting what is registered for uninstalling.
#include "dialogs/system/uninstall_entries.h"

#include <fmt/format.h>

#include <algorithm>

#include "engine/at_once.h"
#include "platform/text/text.h"
#include "platform/trimmed.h"

namespace korvex::dialogs {

using engine::RawValue;
using namespace platform;

namespace {

constexpr std::string_view kUninstall = "SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Uninstall";
constexpr const char* kCommand = "UninstallString";
constexpr const char* kQuietCommand = "QuietUninstallString";

bool isText(const RawValue& value) { return value.type == REG_SZ || value.type == REG_EXPAND_SZ; }

// The first of two values that holds text; where neither does, the first, or the second where only
// that one is there.
Status readEither(Registry& registry, HKEY key, const char* first, const char* second,
                  std::string& name, RawValue& value) {
  name = first;
  Status status = engine::missingIsFine(engine::readRawValue(registry, key, first, value));
  if (status != ERROR_SUCCESS || (isText(value) && !value.text().empty())) return status;
  RawValue other;
  status = engine::missingIsFine(engine::readRawValue(registry, key, second, other));
  const bool takesSecond =
      value.type == REG_NONE ? other.type != REG_NONE : isText(other) && !other.text().empty();
  if (status == ERROR_SUCCESS && takesSecond) {
    name = second;
    value = std::move(other);
  }
  return status;
}

bool hasFolder(std::string_view path) { return path.find_first_of("\\/:") != std::string::npos; }

bool isNamed(std::string_view program, std::string_view name) {
  const std::string_view file = program.substr(program.find_last_of("\\/:") + 1);
  return sameName(file, name) || sameName(file, std::string(name) + ".exe");
}

// The first blank behind the name's ending, else the first of all: for a program that is not there.
std::size_t endOfName(const std::string& command) {
  const std::size_t ending = foldName(command).find(".EXE ");
  return std::min(ending == std::string::npos ? command.find(' ') : ending + 4, command.size());
}

std::string firstWord(std::string_view text, std::string_view ends) {
  const std::string_view word = trimmed(text);
  if (word.starts_with('"')) return std::string(word.substr(1, word.find('"', 1) - 1));
  return std::string(word.substr(0, word.find_first_of(ends)));
}

}  // namespace

bool UninstallEntry::operator==(const UninstallEntry& other) const {
  return sameName(subKey, other.subKey) && name == other.name &&
         commandValue == other.commandValue && command.type == other.command.type &&
         command.bytes == other.command.bytes;
}

UninstallEntries::UninstallEntries(foundation::Session& session)
    : session_(session), taken_(session, engine::HKLM, "Uninstall") {}

std::string UninstallEntries::keyOf(std::string_view subKey) {
  return fmt::format("{}\\{}", kUninstall, subKey);
}

Status UninstallEntries::readEntry(const std::string& subKey, UninstallEntry& entry) const {
  const OpenKey key(session_.registry(), HKEY_LOCAL_MACHINE, keyOf(subKey), KEY_QUERY_VALUE);
  Status status = key.status();
  RawValue name;
  std::string nameValue;
  entry = {};
  entry.subKey = subKey;
  if (status == ERROR_SUCCESS) {
    status = readEither(session_.registry(), key.get(), "DisplayName", "QuietDisplayName",
                        nameValue, name);
  }
  if (isText(name)) entry.name = name.text();
  if (status == ERROR_SUCCESS) {
    status = readEither(session_.registry(), key.get(), kCommand, kQuietCommand, entry.commandValue,
                        entry.command);
  }
  return status;
}

Status UninstallEntries::read(std::vector<UninstallEntry>& entries) const {
  entries.clear();
  std::vector<std::string> subKeys;
  Status status = engine::missingIsFine(
      engine::listSubKeys(session_.registry(), HKEY_LOCAL_MACHINE, kUninstall, KEY_READ, subKeys));
  for (const std::string& subKey : subKeys) {
    UninstallEntry entry;
    status = readEntry(subKey, entry);
    // One that went meanwhile is none.
    if (engine::missingIsFine(status) != ERROR_SUCCESS) return status;
    if (!entry.name.empty()) entries.push_back(std::move(entry));
    status = ERROR_SUCCESS;
  }
  std::ranges::stable_sort(entries, {}, [](const UninstallEntry& entry) {
    return foldName(entry.name) + '\n' + foldName(entry.subKey);
  });
  for (UninstallEntry& entry : entries) {
    const auto same = [&entry](const UninstallEntry& one) {
      return sameName(one.name, entry.name);
    };
    const bool alone = std::ranges::count_if(entries, same) == 1;
    entry.text = alone ? entry.name : fmt::format("{} ({})", entry.name, entry.subKey);
  }
  return status;
}

Status UninstallEntries::isAsShown(const UninstallEntry& entry, bool& same) const {
  UninstallEntry now;
  const Status status = readEntry(entry.subKey, now);
  same = status == ERROR_SUCCESS && now == entry;
  return engine::missingIsFine(status);
}

std::string UninstallEntries::commandOf(const UninstallEntry& entry) const {
  if (!isText(entry.command)) return "";
  const std::string text = entry.command.text();
  if (entry.command.type != REG_EXPAND_SZ) return text;
  return session_.machine().systemInfo().ExpandEnvironmentStringsA(text);
}

// "" where the machine has no such file. A bare name is looked for where Windows looks first.
std::string UninstallEntries::found(const std::string& file) const {
  const std::string name = file.substr(file.find_last_of("\\/:") + 1);
  const bool bare = name.find('.') == std::string::npos;
  for (const std::string& folder : {session_.g_sWinSysDir, session_.g_sWinDir}) {
    for (const char* ending : {"", ".exe"}) {
      if (*ending != '\0' && !bare) continue;
      const std::string path = (hasFolder(file) ? file : folder + file) + ending;
      std::uint32_t attributes = 0;
      if (session_.files().attributes(path, attributes) == ERROR_SUCCESS &&
          (attributes & FILE_ATTRIBUTE_DIRECTORY) == 0) {
        return path;
      }
    }
  }
  return "";
}

UninstallProgram UninstallEntries::programOf(const UninstallEntry& entry) const {
  const std::string command(trimmed(commandOf(entry)));
  UninstallProgram result;
  if (command.empty()) return result;
  std::size_t end = std::min(command.find('"', 1), command.size());
  if (command.front() == '"') {
    result.start = command.substr(1, end - 1);
    end = std::min(end + 1, command.size());
  } else {
    // A path with blanks and without quotes ends where there is a file, as Windows has it.
    end = command.find(' ');
    while (end != std::string::npos && found(command.substr(0, end)).empty()) {
      end = command.find(' ', end + 1);
    }
    if (end == std::string::npos)
      end = found(command).empty() ? endOfName(command) : command.size();
    result.start = command.substr(0, end);
  }
  result.parameters = std::string(trimmed(std::string_view(command).substr(end)));
  result.file = result.start;
  if (isNamed(result.start, "rundll32") || isNamed(result.start, "rundll")) {
    result.file = firstWord(result.parameters, ", ");
  }
  const bool elsewhere = result.file.starts_with("\\\\") ||
                         (result.file.size() > 2 && result.file[1] == ':' &&
                          !session_.files().exists(result.file.substr(0, 2) + '\\'));
  if (elsewhere || result.file.empty()) return result;
  std::string there = found(result.file);
  if (there.empty() && result.file != result.start) there = found(result.file + ".dll");
  result.state = there.empty() ? UninstallProgram::State::Missing : UninstallProgram::State::Found;
  if (!there.empty()) result.file = there;
  return result;
}

Status UninstallEntries::remove(const UninstallEntry& entry) {
  return taken_.removeTree(keyOf(entry.subKey), entry.text);
}

Status UninstallEntries::edit(const UninstallEntry& entry, const std::string& command) {
  const OpenKey key(session_.registry(), HKEY_LOCAL_MACHINE, keyOf(entry.subKey), KEY_ALL_ACCESS);
  if (key.status() != ERROR_SUCCESS) return key.status();
  RawValue present;
  const Status status =
      engine::readRawValue(session_.registry(), key.get(), entry.commandValue, present);
  if (engine::missingIsFine(status) != ERROR_SUCCESS) return status;
  if (status == ERROR_SUCCESS && !isText(present)) return ERROR_INVALID_DATA;
  const RegType type = status == ERROR_SUCCESS ? present.type : REG_SZ;
  return session_.registry().RegSetValueExA(key.get(), entry.commandValue, type, command.c_str(),
                                            static_cast<std::uint32_t>(command.size() + 1));
}

Status UninstallEntries::start(const UninstallEntry& entry, std::string& message) const {
  const UninstallProgram program = programOf(entry);
  return session_.machine().processes().ShellExecuteA("open", program.start, program.parameters, "",
                                                      message);
}

}  // namespace korvex::dialogs

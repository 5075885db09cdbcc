// Finding it.
#include "dialogs/shell/startup_program.h"

#include <fmt/format.h>

#include <array>
#include <vector>

#include "dialogs/shell/shell_link.h"
#include "engine/same_name.h"
#include "platform/text/text.h"
#include "platform/trimmed.h"

namespace korvex::dialogs {

using foundation::Session;

namespace {

constexpr std::array<std::string_view, 6> kExtensions{"", ".exe", ".com", ".bat", ".cmd", ".pif"};
constexpr std::string_view kAppPaths = "SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\App Paths\\";

bool isFile(Session& session, const std::string& path) {
  std::uint32_t attributes = 0;
  return session.files().attributes(path, attributes) == platform::ERROR_SUCCESS &&
         (attributes & platform::FILE_ATTRIBUTE_DIRECTORY) == 0;
}

std::string unquoted(std::string text) {
  std::erase(text, '"');
  return text;
}

std::string fromAppPaths(Session& session, const std::string& name) {
  const std::string value =
      session.regTool.GetRegStr(std::string(kAppPaths) + name, "", platform::HKEY_LOCAL_MACHINE);
  return unquoted(session.machine().systemInfo().ExpandEnvironmentStringsA(value));
}

// The file that these words name; "" for none.
std::string fileNamed(Session& session, const std::string& words) {
  const bool hasFolder = words.find_first_of("\\/:") != std::string::npos;
  std::vector<std::string> folders{""};
  if (!hasFolder) {
    folders = {session.g_sWinSysDir, session.g_sWinDir};
    if (session.g_bNT) folders.push_back(session.g_sWinDir + "system\\");
  }
  for (const std::string_view extension : kExtensions) {
    const std::string name = words + std::string(extension);
    for (const std::string& folder : folders) {
      if (isFile(session, folder + name)) return folder + name;
    }
    const std::string path = hasFolder ? "" : fromAppPaths(session, name);
    if (!path.empty() && isFile(session, path)) return path;
  }
  return {};
}

// The words that may be the program, the shortest first.
std::vector<std::string> candidates(const std::string& command) {
  if (command.starts_with('"')) return {command.substr(1, command.find('"', 1) - 1)};
  std::vector<std::string> result;
  for (std::size_t blank = command.find_first_of(" \t");;
       blank = command.find_first_of(" \t", blank + 1)) {
    const std::string words(platform::trimmed(command.substr(0, blank)));
    if (!words.empty() && (result.empty() || result.back() != words)) result.push_back(words);
    if (blank == std::string::npos) return result;
  }
}

StartupProgram missing(Session& session, const std::string& first) {
  if (first.starts_with("\\\\")) {
    return {"", std::nullopt, "It lies on the network, where it is not looked for."};
  }
  if (first.size() > 2 && first[1] == ':' && !session.files().exists(first.substr(0, 2) + "\\")) {
    return {"", false, fmt::format("This machine has no drive {}.", first.substr(0, 2))};
  }
  return {"", false, fmt::format("The file {} is missing.", first)};
}

StartupProgram ofCommand(Session& session, const std::string& text) {
  const std::string command(
      platform::trimmed(session.machine().systemInfo().ExpandEnvironmentStringsA(text)));
  if (command.empty()) return {"", false, "There is no command."};
  const std::vector<std::string> words = candidates(command);
  for (const std::string& word : words) {
    if (word.starts_with("\\\\")) break;
    const std::string path = fileNamed(session, word);
    if (!path.empty()) return {path, true, fmt::format("The file is there: {}", path)};
  }
  // Of a path with blanks the extension tells where it ends.
  for (const std::string& word : words) {
    for (const std::string_view extension : kExtensions) {
      if (extension.empty() || word.size() <= extension.size()) continue;
      if (engine::sameName(word.substr(word.size() - extension.size()), extension)) {
        return missing(session, word);
      }
    }
  }
  return missing(session, words.front());
}

StartupProgram ofFile(Session& session, const StartupEntry& entry) {
  std::string bytes;
  const platform::Status status =
      entry.path.empty() ? platform::ERROR_FILE_NOT_FOUND : session.files().read(entry.path, bytes);
  if (status == platform::ERROR_FILE_NOT_FOUND || status == platform::ERROR_PATH_NOT_FOUND) {
    return {"", false, "The file itself is missing."};
  }
  if (status != platform::ERROR_SUCCESS) {
    return {entry.path, std::nullopt,
            fmt::format("The file cannot be read: {}.", platform::describeStatus(status))};
  }
  if (!platform::sameName(entry.path.substr(entry.path.size() - 4), ".lnk")) {
    return {entry.path, true, "The file is there."};
  }
  const auto* page = platform::CodePage::find(session.machine().describe().codePage);
  const std::string named = targetOfShellLink(bytes);
  const std::string target = page == nullptr ? named : page->decode(named);
  if (target.empty()) return {entry.path, true, "A shortcut that names no path."};
  const bool there = isFile(session, target);
  return {target, there,
          there ? fmt::format("A shortcut to {}", target)
                : fmt::format("A shortcut to {}, which is missing.", target)};
}

}  // namespace

StartupProgram programOf(Session& session, const StartupEntry& entry) {
  if (entry.isFile) return ofFile(session, entry);
  const auto type = entry.value.type;
  const bool isText =
      type == platform::REG_NONE || type == platform::REG_SZ || type == platform::REG_EXPAND_SZ;
  // A line's programs are no values and have no type.
  if (!isText) return {"", std::nullopt, fmt::format("No text: data of type {}.", type)};
  return ofCommand(session, entry.command);
}

}  // namespace korvex::dialogs

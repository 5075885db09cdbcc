// Commands for the registry editor.
#include "backup/registry_backer.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <utility>

namespace korvex::backup {

using namespace platform;

namespace {

// By the low bits of the root's handle; HKEY_USERS (3) and HKEY_PERFORMANCE_DATA (4) have none.
constexpr std::array<std::string_view, 6> kRootNames{
    "HKEY_CLASSES_ROOT\\",  "HKEY_CURRENT_USER\\", "HKEY_LOCAL_MACHINE\\", "", "",
    "HKEY_CURRENT_CONFIG\\"};

// How often a file is looked for after the editor has ended.
constexpr int kPollsPerFile = 5000;
constexpr std::size_t kShortStem = 8;
constexpr std::string_view kCommandFile = "kvxrb";

std::string_view rootName(HKEY root) {
  const std::size_t index = root & 0xFU;
  return index < kRootNames.size() ? kRootNames[index] : std::string_view();
}

bool isPlain(std::string_view text) {
  return std::all_of(text.begin(), text.end(), [](char c) { return c >= ' ' && c <= '~'; });
}

// "C:\A\B.reg" -> "C:\A\" and "B.reg".
std::pair<std::string_view, std::string_view> splitPath(std::string_view path) {
  const std::size_t slash = path.find_last_of("\\/");
  if (slash == std::string_view::npos) return {"", path};
  return {path.substr(0, slash + 1), path.substr(slash + 1)};
}

// What of a file's name an 8.3 name can begin with: up to the first ".".
std::string stemOf(std::string_view name) {
  std::string stem;
  for (const char c : name.substr(0, name.find('.'))) {
    const bool kept = (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
    if (kept) stem += c;
  }
  return stem.substr(0, kShortStem);
}

}  // namespace

// One export on its way.
struct RegistryBacker::Export {
  KeyBackup backup;
  std::string file;       // with its network folder
  std::string temporary;  // the name that the editor writes to
  std::string command;
  KeyBackupResult result;
  bool ready = false;  // to be run
};

std::string RegistryBacker::StripNulls(std::string_view s) {
  return std::string(s.substr(0, s.find('\0')));
}

std::string RegistryBacker::mappedPath(std::string_view path) {
  if (path.size() < 2 || path[1] != ':') return std::string(path);
  for (const std::string_view key : {"Network\\", "Network\\Persistent\\"}) {
    const std::string remote = session_.regTool.GetRegStr(
        std::string(key) + std::string(path.substr(0, 1)), "RemotePath", HKEY_CURRENT_USER);
    if (!remote.empty()) return remote + std::string(path.substr(2));
  }
  return std::string(path);
}

std::string RegistryBacker::P_rbGetShortName(std::string_view sPath) {
  session_.trace.enter("[p_rbGetShortName]");
  const std::string mapped = mappedPath(sPath);
  std::string result;
  const Status status = session_.machine().systemInfo().GetShortPathNameA(mapped, result);
  session_.trace.dump("sPath$", mapped);
  return status == ERROR_SUCCESS ? result : mapped;
}

// The short form of a path whose last part need not be there yet.
std::string RegistryBacker::p_rbParseForShortFileNames(std::string_view path) {
  session_.trace.enter("[p_rbParseForShortFileNames]");
  const auto [folder, name] = splitPath(path);
  std::string result = P_rbGetShortName(folder);
  if (!result.empty() && result.back() != '\\') result += '\\';
  return result + std::string(name);
}

RegistryBacker::Export RegistryBacker::prepare(const KeyBackup& backup) {
  Export one;
  one.backup = backup;
  const auto refuse = [&one](Status status, std::string message) {
    one.result = {false, status, std::move(message)};
    return one;
  };
  const std::string_view root = rootName(backup.root);
  if (root.empty()) return refuse(ERROR_INVALID_PARAMETER, "Keys of this root cannot be saved.");
  const std::string key = std::string(root) + backup.subKey;
  const OpenKey opened(session_.registry(), backup.root, backup.subKey, KEY_READ);
  if (opened.status() != ERROR_SUCCESS) {
    return refuse(opened.status(), fmt::format("{}: {}.", key, describeStatus(opened.status())));
  }
  if (key.find('"') != std::string::npos) {
    return refuse(ERROR_INVALID_NAME,
                  fmt::format("{}: the registry editor takes no quotation mark in a key.", key));
  }
  one.file = mappedPath(backup.file);
  const std::string target = p_rbParseForShortFileNames(one.file);
  const auto [folder, name] = splitPath(target);
  const std::string stem = stemOf(name);
  Files& files = session_.files();
  for (int number = 0; one.temporary.empty(); ++number) {
    const std::string tail = number == 0 && !stem.empty() ? "" : std::to_string(number);
    const std::string candidate =
        fmt::format("{}{}{}.tmp", folder, stem.substr(0, kShortStem - tail.size()), tail);
    if (!files.exists(candidate)) one.temporary = candidate;
  }
  one.command = fmt::format("regedit /e \"{}\" \"{}\"", one.temporary, key);
  one.ready = true;
  return one;
}

Status RegistryBacker::p_rbWriteRegFile(std::string_view commands, std::string& commandFile) {
  session_.trace.enter("[p_rbWriteRegFile]");
  const std::string folder = session_.machine().systemInfo().GetTempPathA();
  std::string extension = session_.g_sExt;
  if (extension.empty()) extension = session_.g_bNT ? ".cmd" : ".bat";
  Files& files = session_.files();
  for (int number = 0;; ++number) {
    commandFile = fmt::format("{}{}{}{}", folder, kCommandFile,
                              number == 0 ? "" : std::to_string(number), extension);
    if (!files.exists(commandFile)) break;
  }
  std::string text = "@echo off\r\n";
  for (std::string_view rest = commands; !rest.empty();) {
    const std::string command = StripNulls(rest);
    rest.remove_prefix(std::min(rest.size(), command.size() + 1));
    for (const char c : command) text.append(c == '%' ? 2 : 1, c);
    text += "\r\n";
  }
  return files.replace(commandFile, text);
}

bool RegistryBacker::awaitFile(const std::string& file, bool failed) {
  for (int poll = 0; poll < (failed ? 1 : kPollsPerFile); ++poll) {
    if (session_.files().exists(file)) return true;
    if (doEvents && !doEvents()) return false;
  }
  return false;
}

// Processes::run returns when the editor has ended, so there is no process left to wait for.
std::string RegistryBacker::p_rbRunBatchFileAndCleanUp(std::string_view commands,
                                                       std::string_view files,
                                                       std::string& message) {
  session_.trace.enter("[p_rbRunBatchFileAndCleanUp]");
  Processes& processes = session_.machine().processes();
  std::string commandFile;
  Status status = ERROR_SUCCESS;
  int exitCode = 0;
  // A command file is read in the code page of DOS: other text goes without one, and so it does
  // where there is no folder for temporary files.
  std::string plain(commands);
  std::replace(plain.begin(), plain.end(), '\0', ' ');
  if (isPlain(plain) && p_rbWriteRegFile(commands, commandFile) == ERROR_SUCCESS) {
    status = processes.run(fmt::format("\"{}\"", commandFile), exitCode, message);
    const Status removed = session_.files().remove(commandFile);
    session_.trace.dump("lRetVal&", removed);
  } else {
    for (std::string_view rest = commands; !rest.empty();) {
      const std::string command = StripNulls(rest);
      rest.remove_prefix(std::min(rest.size(), command.size() + 1));
      std::string told;
      const Status one = processes.run(command, exitCode, told);
      if (status == ERROR_SUCCESS) status = one;
      if (message.empty()) message = told;
    }
  }
  session_.trace.dump("lRetVal&", status);
  if (status != ERROR_SUCCESS && message.empty()) message = describeStatus(status) + '.';
  std::string results;
  for (std::string_view rest = files; !rest.empty();) {
    const std::string file = StripNulls(rest);
    rest.remove_prefix(std::min(rest.size(), file.size() + 1));
    results += fmt::format("{}={}", file, awaitFile(file, status != ERROR_SUCCESS) ? -1 : 0);
    results += '\0';
  }
  session_.trace.dump("sResult$", results);
  return results;
}

KeyBackupResult RegistryBacker::finish(const Export& one, const std::string& message) {
  Files& files = session_.files();
  const auto fail = [&](Status status, const std::string& why) {
    if (files.exists(one.temporary)) files.remove(one.temporary);
    return KeyBackupResult{false, status,
                           why.empty() ? fmt::format("{} was not written.", one.file) : why};
  };
  // Not "no such file": that says of a key that it is not there.
  if (!files.exists(one.temporary)) return fail(ERROR_GEN_FAILURE, message);
  // The editor has left something out, or could not end.
  if (!message.empty()) return fail(ERROR_INVALID_DATA, message);
  // A file of that name is replaced whole, which a move cannot do.
  const bool replaces = files.exists(one.file);
  const Status status = replaces ? files.copy(one.temporary, one.file, Overwrite::Yes)
                                 : files.move(one.temporary, one.file);
  if (status != ERROR_SUCCESS) {
    return fail(status, fmt::format("{}: {}.", one.file, describeStatus(status)));
  }
  if (replaces) files.remove(one.temporary);
  return {true, ERROR_SUCCESS, ""};
}

void RegistryBacker::runAll(std::vector<Export>& exports) {
  std::string commands;
  std::string files;
  for (const Export& one : exports) {
    if (!one.ready) continue;
    commands += one.command + '\0';
    files += one.temporary + '\0';
  }
  if (commands.empty()) return;
  std::string message;
  p_rbRunBatchFileAndCleanUp(commands, files, message);
  const auto ready = std::ranges::count(exports, true, &Export::ready);
  for (Export& one : exports) {
    if (!one.ready) continue;
    // Whose message it is cannot be told: each one runs again by itself.
    if (!message.empty() && ready > 1) {
      if (session_.files().exists(one.temporary)) session_.files().remove(one.temporary);
      std::string own;
      p_rbRunBatchFileAndCleanUp(one.command, one.temporary, own);
      one.result = finish(one, own);
    } else {
      one.result = finish(one, message);
    }
  }
}

std::vector<KeyBackupResult> RegistryBacker::backupKeys(std::span<const KeyBackup> backups) {
  session_.trace.enter("[P_rbBackupRegistryKey]");
  std::vector<Export> exports;
  for (const KeyBackup& backup : backups) {
    exports.push_back(prepare(backup));
    // Two of one batch must not write to one name.
    Export& last = exports.back();
    const auto taken = [&](const Export& other) {
      return &other != &last && other.ready && last.ready && other.temporary == last.temporary;
    };
    for (int number = 1; std::ranges::any_of(exports, taken); ++number) {
      const auto [folder, name] = splitPath(last.temporary);
      const std::string tail = std::to_string(number);
      const std::string stem = stemOf(name).substr(0, kShortStem - tail.size());
      const std::string candidate = fmt::format("{}{}{}.tmp", folder, stem, tail);
      if (session_.files().exists(candidate)) continue;
      last.command.replace(last.command.find(last.temporary), last.temporary.size(), candidate);
      last.temporary = candidate;
    }
  }
  runAll(exports);
  std::vector<KeyBackupResult> results;
  for (Export& one : exports) {
    if (!one.result.saved) last_ = one.result;
    results.push_back(std::move(one.result));
  }
  return results;
}

bool RegistryBacker::P_rbBackupRegistryKey(HKEY hKeyRoot, std::string_view sSubKey,
                                           std::string_view sFile) {
  const KeyBackup backup{hKeyRoot, std::string(sSubKey), std::string(sFile)};
  return backupKeys(std::span(&backup, 1)).front().saved;
}

bool RegistryBacker::P_rbRestoreRegistryKey(std::string_view sFile) {
  session_.trace.enter("[P_rbRestoreRegistryKey]");
  const std::string path = mappedPath(sFile);
  std::uint32_t attributes = 0;
  Status status = session_.files().attributes(path, attributes);
  std::string message;
  if (status == ERROR_SUCCESS) {
    const std::string file = P_rbGetShortName(sFile);
    const char* const quote = file.find(' ') == std::string::npos ? "" : "\"";
    int exitCode = 0;
    status = session_.machine().processes().run(
        fmt::format("Regedit.exe /s {}{}{}", quote, file, quote), exitCode, message);
    if (status == ERROR_SUCCESS && exitCode != 0) status = ERROR_GEN_FAILURE;
  } else {
    message = fmt::format("{}: {}.", path, describeStatus(status));
  }
  session_.trace.dump("lRetVal&", status);
  if (status == ERROR_SUCCESS && message.empty()) return true;
  last_ = {false, status == ERROR_SUCCESS ? ERROR_INVALID_DATA : status, message};
  return false;
}

}  // namespace korvex::backup

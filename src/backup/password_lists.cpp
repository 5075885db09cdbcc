// Lines of system.ini.
#include "backup/password_lists.h"

#include <algorithm>
#include <map>
#include <optional>
#include <string_view>
#include <utility>

#include "platform/text/text.h"

namespace korvex::backup {

using foundation::Session;
using namespace platform;

namespace {

constexpr std::string_view kSection = "Password Lists";

// Name and text of each line, by folded name.
using Lines = std::map<std::string, std::pair<std::string, std::string>>;

std::string systemIni(const Session& session) { return session.g_sWinDir + "system.ini"; }

Lines linesOf(std::string_view lines) {
  Lines result;
  while (!lines.empty()) {
    const std::string_view line = lines.substr(0, lines.find_first_of(std::string_view("\r\n")));
    lines.remove_prefix(std::min(lines.size(), line.size() + 1));
    const std::size_t equals = line.find('=');
    if (equals == std::string_view::npos) continue;
    result[foldName(line.substr(0, equals))] = {std::string(line.substr(0, equals)),
                                                std::string(line.substr(equals + 1))};
  }
  return result;
}

// Read as bytes: the profile functions would take it for the machine's code page.
Status readCopy(Session& session, const std::string& copy, Lines& lines) {
  std::string text;
  const Status status = session.files().read(copy, text);
  if (status == ERROR_SUCCESS) lines = linesOf(text);
  return status;
}

}  // namespace

std::string passwordLists(Session& session) {
  if (session.g_bNT) return "";
  std::string lines =
      session.machine().initFiles().GetPrivateProfileSectionA(kSection, systemIni(session));
  std::replace(lines.begin(), lines.end(), '\0', '\n');
  return lines;
}

std::string passwordListsText(Session& session) {
  std::string text = "[Password Lists]\r\n";
  for (const char c : passwordLists(session)) text.append(c == '\n' ? "\r\n" : std::string(1, c));
  return text;
}

bool hasPasswordLists(Session& session, const std::string& copy) {
  Lines saved;
  return readCopy(session, copy, saved) == ERROR_SUCCESS &&
         saved == linesOf(passwordLists(session));
}

Status writePasswordLists(Session& session, Files& files, const std::string& copy) {
  const std::string place = systemIni(session);
  InitFiles& ini = session.machine().initFiles();
  // The way back: the profile functions know nothing of it.
  std::string before;
  Lines wanted;
  Status status = readCopy(session, copy, wanted);
  if (status == ERROR_SUCCESS) status = files.read(place, before);
  if (status == ERROR_SUCCESS) status = files.replace(place, before);
  const auto present = linesOf(passwordLists(session));
  const auto write = [&](const std::string& name, std::optional<std::string_view> value) {
    if (status == ERROR_SUCCESS) {
      status = ini.WritePrivateProfileStringA(kSection, name, value, place);
    }
  };
  for (const auto& [folded, line] : present) {
    if (!wanted.contains(folded)) write(line.first, std::nullopt);
  }
  for (const auto& [folded, line] : wanted) {
    const auto found = present.find(folded);
    if (found == present.end() || found->second.second != line.second) {
      write(line.first, line.second);
    }
  }
  return status;
}

}  // namespace korvex::backup

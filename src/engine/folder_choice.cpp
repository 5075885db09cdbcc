// Picking a folder, and making one.
#include "engine/folder_choice.h"

#include <fmt/format.h>

#include <algorithm>
#include <vector>

#include "engine/at_once.h"
#include "platform/trimmed.h"

namespace korvex::engine {

using foundation::Session;
using platform::Status;

namespace {

// What begins a path on another computer, or one on the present drive: its slashes.
std::string slashesOf(const std::string& start) {
  const auto isSlash = [](char c) { return c == '\\' || c == '/'; };
  const auto count = static_cast<std::size_t>(std::ranges::count_if(start, isSlash));
  return std::string(std::min<std::size_t>(count, 2), '\\');
}

bool isDrive(std::string_view path) { return path.size() == 2 && path[1] == ':'; }

bool cannotBeUsed(Session& session, const std::string& path, std::string_view why) {
  tell(session, fmt::format("{} cannot be used: {}.\r\nChoose another folder.", path, why),
       platform::kIconExclamation);
  return false;
}

}  // namespace

std::string tidyFolder(std::string_view path) {
  std::vector<std::string> parts;
  for (std::size_t begin = 0; begin <= path.size();) {
    const std::size_t end = std::min(path.find_first_of("\\/", begin), path.size());
    const std::string part(platform::trimmed(path.substr(begin, end - begin), " "));
    // Nothing lies above a drive.
    if (part == ".." && parts.size() > 1) parts.pop_back();
    if (!part.empty() && part != "." && part != "..") parts.push_back(part);
    begin = end + 1;
  }
  const std::string start(path.substr(0, path.find_first_not_of("\\/ ")));
  std::string folder = start.find_first_of("\\/") == std::string::npos ? "" : slashesOf(start);
  for (const std::string& part : parts) {
    folder += (folder.empty() || folder.back() == '\\' ? "" : "\\") + part;
  }
  return isDrive(folder) ? folder + '\\' : folder;
}

bool agreeOnFolder(Session& session, const std::string& path) {
  std::uint32_t attributes = 0;
  Status status = session.files().attributes(path, attributes);
  if (status == platform::ERROR_SUCCESS) {
    if ((attributes & platform::FILE_ATTRIBUTE_DIRECTORY) != 0) return true;
    return cannotBeUsed(session, path, "it is a file");
  }
  if (status != platform::ERROR_FILE_NOT_FOUND && status != platform::ERROR_PATH_NOT_FOUND) {
    return cannotBeUsed(session, path, platform::describeStatus(status));
  }
  if (!askYesNo(session, "The folder does not exist.\r\nWould you like to create it?"))
    return false;
  status = session.files().createFolder(path);
  session.trace.dump("lRetVal&", status);
  return status == platform::ERROR_SUCCESS ||
         cannotBeUsed(session, path, platform::describeStatus(status));
}

std::optional<std::string> chooseFolder(Session& session, std::string_view prompt) {
  const auto picked = session.prompts().pickFolder(prompt);
  if (!picked) return std::nullopt;
  std::string folder = tidyFolder(*picked);
  if (folder.empty() || !agreeOnFolder(session, folder)) return std::nullopt;
  return folder;
}

}  // namespace korvex::engine

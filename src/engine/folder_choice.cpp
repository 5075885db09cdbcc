// Picking a folder, and making one.
#include "engine/folder_choice.h"

#include <fmt/format.h>

#include "engine/at_once.h"

namespace korvex::engine {

using foundation::Session;
using platform::Status;

namespace {

constexpr std::size_t kLengthOfRoot = 3;  // "C:\"

bool cannotBeUsed(Session& session, const std::string& path, std::string_view why) {
  tell(session, fmt::format("{} cannot be used: {}.\r\nChoose another folder.", path, why),
       platform::kIconExclamation);
  return false;
}

}  // namespace

std::string tidyFolder(std::string_view path) {
  const std::size_t first = path.find_first_not_of(' ');
  if (first == std::string_view::npos) return {};
  std::string folder(path.substr(first, path.find_last_not_of(' ') + 1 - first));
  if (folder.size() == 2 && folder[1] == ':') folder += '\\';
  while (folder.size() > kLengthOfRoot && (folder.back() == '\\' || folder.back() == '/')) {
    folder.pop_back();
  }
  return folder;
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

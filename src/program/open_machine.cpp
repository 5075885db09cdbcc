// Finding and opening the machine that a person named.
#include "program/open_machine.h"

#include <fmt/format.h>

#include <algorithm>

#include "platform/embedded/embedded_machine.h"
#include "platform/text/text.h"
#include "platform/windows_folder/installation.h"
#include "platform/windows_folder/windows_machine.h"
#include "platform/wine/wine_machine.h"
#include "program/data_folder.h"

namespace korvex::program {
namespace {

namespace fs = std::filesystem;
using platform::OpenedMachine;
using platform::OpenMode;
using platform::Status;

constexpr std::string_view kDefaultWindows = "2000";

OpenedMachine refused(Status status, std::string message) {
  return {nullptr, status, std::move(message)};
}

OpenedMachine openOwn(const fs::path& folder, OpenMode mode, const std::string& user) {
  OpenedMachine opened = platform::openEmbeddedMachine(folder, mode);
  if (!opened.machine || user.empty()) return opened;
  const std::string own = opened.machine->describe().user;
  if (platform::sameName(own, user)) return opened;
  return refused(platform::ERROR_FILE_NOT_FOUND,
                 fmt::format("{}: there is no user {} here; the machine is {}'s.", folder.string(),
                             user, own));
}

bool holdsWindows(const fs::path& folder) {
  return platform::kindOfWindowsFolder(folder) != platform::FolderKind::Unknown;
}

struct KindOfMachine {
  bool (*recognises)(const fs::path& folder);
  OpenedMachine (*open)(const fs::path& folder, OpenMode mode, const std::string& user);
};

// The first that recognises a folder opens it.
constexpr KindOfMachine kKinds[] = {
    {platform::looksLikeEmbeddedMachine, openOwn},
    {platform::looksLikeWinePrefix, platform::openWineMachine},
    {holdsWindows, platform::openWindowsMachine},
};

OpenedMachine openFolder(const fs::path& folder, OpenMode mode, const std::string& user) {
  std::error_code error;
  if (!fs::is_directory(folder, error)) {
    return refused(platform::ERROR_PATH_NOT_FOUND,
                   fmt::format("There is no machine at {}: the folder is missing. Make one with "
                               "'korvex machine create --windows 2000 DIR'.",
                               folder.string()));
  }
  for (const KindOfMachine& kind : kKinds) {
    if (kind.recognises(folder)) return kind.open(folder, mode, user);
  }
  return refused(platform::ERROR_FILE_NOT_FOUND,
                 fmt::format("{} is no machine: it holds no machine.json, no Wine prefix "
                             "(system.reg and user.reg) and no Windows folder. Name the folder of "
                             "a machine, a prefix or the drive of an installed Windows, or make a "
                             "machine with 'korvex machine create --windows 2000 DIR'.",
                             folder.string()));
}

}  // namespace

fs::path defaultMachineFolder() {
  const fs::path data = userDataFolder();
  return data.empty() ? data : data / "korvex" / "machines" / "default";
}

OpenedMachine openMachine(const fs::path& folder, OpenMode mode, const std::string& user) {
  if (!folder.empty()) return openFolder(folder, mode, user);
  const fs::path standard = defaultMachineFolder();
  if (standard.empty()) {
    return refused(platform::ERROR_PATH_NOT_FOUND,
                   "There is no folder for the default machine: neither HOME nor XDG_DATA_HOME is "
                   "set. Name a machine with --machine DIR.");
  }
  if (!platform::looksLikeEmbeddedMachine(standard)) {
    std::string message;
    const Status status = createMachine(kDefaultWindows, standard, message);
    // Another program may have made it in the meantime, and then it is as good.
    if (status != platform::ERROR_SUCCESS && !platform::looksLikeEmbeddedMachine(standard)) {
      return refused(status, message);
    }
  }
  return openFolder(standard, mode, user);
}

const std::vector<std::string>& windowsNames() {
  static const std::vector<std::string> names{"95", "98", "me", "nt4", "2000", "2000-server"};
  return names;
}

Status createMachine(std::string_view windows, const fs::path& folder, std::string& message) {
  const auto& names = windowsNames();
  if (std::find(names.begin(), names.end(), windows) == names.end()) {
    message = fmt::format("There is no sample of Windows '{}'.", windows);
    return platform::ERROR_INVALID_PARAMETER;
  }
  const fs::path data = dataFolder();
  if (data.empty()) {
    message =
        "The sample installations are missing. Set KORVEX_DATA_DIR to the data folder that "
        "came with Korvex.";
    return platform::ERROR_PATH_NOT_FOUND;
  }
  const fs::path sample = data / "machines" / ("windows-" + std::string(windows));
  std::error_code error;
  if (!fs::is_directory(sample, error)) {
    message = fmt::format("The sample {} is missing.", sample.string());
    return platform::ERROR_PATH_NOT_FOUND;
  }
  fs::create_directories(folder.parent_path(), error);  // what fails here fails below, and is told
  return platform::createEmbeddedMachine(sample, folder, message);
}

}  // namespace korvex::program

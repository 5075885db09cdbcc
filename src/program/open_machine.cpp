// Finding and opening the machine that a person named.
#include "program/open_machine.h"

#include <fmt/format.h>

#include <algorithm>

#include "platform/embedded/embedded_machine.h"
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

OpenedMachine openFolder(const fs::path& folder, OpenMode mode) {
  std::error_code error;
  if (!fs::is_directory(folder, error)) {
    return refused(platform::ERROR_PATH_NOT_FOUND,
                   fmt::format("There is no machine at {}: the folder is missing. Make one with "
                               "'korvex machine create --windows 2000 DIR'.",
                               folder.string()));
  }
  if (!platform::looksLikeEmbeddedMachine(folder)) {
    return refused(platform::ERROR_FILE_NOT_FOUND,
                   fmt::format("{} is no machine: it holds no machine.json. Name the folder of a "
                               "machine, or make one with 'korvex machine create --windows 2000 "
                               "DIR'.",
                               folder.string()));
  }
  return platform::openEmbeddedMachine(folder, mode);
}

}  // namespace

fs::path defaultMachineFolder() {
  const fs::path data = userDataFolder();
  return data.empty() ? data : data / "korvex" / "machines" / "default";
}

OpenedMachine openMachine(const fs::path& folder, OpenMode mode) {
  if (!folder.empty()) return openFolder(folder, mode);
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
  return openFolder(standard, mode);
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

// Where the files that come with the program lie.
#include "program/data_folder.h"

#include <array>
#include <cstdlib>

namespace korvex::program {
namespace {

namespace fs = std::filesystem;

fs::path fromEnvironment(const char* name) {
  const char* value = std::getenv(name);
  return value == nullptr ? fs::path() : fs::path(value);
}

fs::path userFolder(const char* variable, const char* standard) {
  fs::path given = fromEnvironment(variable);
  if (given.is_absolute()) return given;  // the standard has a relative one ignored
  const fs::path home = fromEnvironment("HOME");
  return home.empty() ? fs::path() : home / ".local" / standard;
}

}  // namespace

fs::path dataFolder() {
  std::error_code error;
  const fs::path executable = fs::read_symlink("/proc/self/exe", error);
  const std::array candidates{
      fromEnvironment("KORVEX_DATA_DIR"),
      executable.empty() ? fs::path() : executable.parent_path().parent_path() / "share" / "korvex",
      fs::path(KORVEX_SOURCE_DATA_DIR)};
  for (const fs::path& candidate : candidates) {
    if (!candidate.empty() && fs::is_directory(candidate / "machines", error)) return candidate;
  }
  return {};
}

fs::path userDataFolder() { return userFolder("XDG_DATA_HOME", "share"); }

fs::path userStateFolder() { return userFolder("XDG_STATE_HOME", "state"); }

}  // namespace korvex::program

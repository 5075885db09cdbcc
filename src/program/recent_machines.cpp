// The machines that were opened last.
#include "program/recent_machines.h"

#include <algorithm>
#include <fstream>

#include "platform/common/whole_file.h"
#include "program/data_folder.h"

namespace korvex::program {
namespace {

namespace fs = std::filesystem;

fs::path listFile() {
  const fs::path state = userStateFolder();
  return state.empty() ? state : state / "korvex" / "recent-machines";
}

std::vector<fs::path> readList() {
  std::vector<fs::path> folders;
  std::ifstream file(listFile());
  for (std::string line; std::getline(file, line);) {
    if (!line.empty()) folders.emplace_back(line);
  }
  return folders;
}

}  // namespace

std::vector<fs::path> recentMachines() {
  std::vector<fs::path> folders = readList();
  std::error_code error;
  std::erase_if(folders, [&](const fs::path& folder) { return !fs::is_directory(folder, error); });
  return folders;
}

void rememberMachine(const fs::path& folder) {
  std::error_code error;
  const fs::path real = fs::canonical(folder, error);
  const fs::path file = listFile();
  // A line could not hold it.
  if (error || file.empty() || real.string().find('\n') != std::string::npos) return;
  std::vector<fs::path> folders = readList();
  if (!folders.empty() && folders.front() == real) return;
  std::erase(folders, real);
  folders.insert(folders.begin(), real);
  folders.resize(std::min(folders.size(), kMostRecentMachines));
  std::string text;
  for (const fs::path& path : folders) text += path.string() + '\n';
  fs::create_directories(file.parent_path(), error);
  if (!error) (void)platform::replaceWholeFile(file, text);
}

}  // namespace korvex::program

// Which windows of programs are open on an embedded machine, by its machine.json.
#pragma once

#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

namespace korvex::test {

// For the next time that the machine is opened.
inline void setOpenWindows(const std::filesystem::path& machine,
                           const std::vector<std::string>& classes) {
  std::ostringstream text;
  text << std::ifstream(machine / "machine.json").rdbuf();
  std::string json = text.str();
  std::string windows;
  for (const std::string& name : classes) {
    windows += (windows.empty() ? "" : ", ") + ("{\"class\": \"" + name + "\", \"title\": \"x\"}");
  }
  const std::size_t list = json.find('[', json.find("\"openWindows\"")) + 1;
  json.replace(list, json.find(']', list) - list, windows);
  std::ofstream(machine / "machine.json") << json;
}

}  // namespace korvex::test

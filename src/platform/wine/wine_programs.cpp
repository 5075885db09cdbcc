// Starting programs of a prefix with Wine.
#include "platform/wine/wine_programs.h"

#include <fmt/format.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <thread>
#include <vector>

#include "platform/common/registry_editor.h"

extern char** environ;

namespace korvex::platform {
namespace {

namespace fs = std::filesystem;

fs::path findProgram(const char* name) {
  const char* const path = std::getenv("PATH");
  std::string_view rest = path == nullptr ? "" : path;
  while (!rest.empty()) {
    const std::size_t end = rest.find(':');
    const fs::path candidate = fs::path(rest.substr(0, end)) / name;
    if (::access(candidate.c_str(), X_OK) == 0) return candidate;
    rest = end == std::string_view::npos ? std::string_view() : rest.substr(end + 1);
  }
  return {};
}

std::vector<std::string> environmentFor(const fs::path& prefix) {
  std::vector<std::string> variables{"WINEPREFIX=" + prefix.string()};
  for (char** variable = environ; *variable != nullptr; ++variable) {
    const std::string_view text = *variable;
    if (!text.starts_with("WINEPREFIX=")) variables.emplace_back(text);
  }
  return variables;
}

std::vector<char*> pointersTo(std::vector<std::string>& texts) {
  std::vector<char*> pointers;
  for (std::string& text : texts) pointers.push_back(text.data());
  pointers.push_back(nullptr);
  return pointers;
}

int waitFor(pid_t child) {
  int status = 0;
  while (::waitpid(child, &status, 0) < 0 && errno == EINTR) {
  }
  return WIFEXITED(status) ? WEXITSTATUS(status) : 1;
}

}  // namespace

Status startWithWine(const fs::path& prefix, std::string_view commandLine, Wait wait, int& exitCode,
                     std::string& message) {
  const fs::path wine = findProgram("wine");
  if (wine.empty()) {
    message = fmt::format("{} was not started: Wine is not installed.", commandLine);
    return ERROR_NOT_SUPPORTED;
  }
  std::vector<std::string> words = commandWords(commandLine);
  // Documents too are opened by what the prefix has for them.
  if (wait == Wait::No) words.insert(words.begin(), "start");
  words.insert(words.begin(), wine.string());
  std::vector<std::string> variables = environmentFor(prefix);
  pid_t child = 0;
  const int error = ::posix_spawn(&child, wine.c_str(), nullptr, nullptr, pointersTo(words).data(),
                                  pointersTo(variables).data());
  if (error != 0) {
    message =
        fmt::format("{} was not started: {}.", commandLine, std::generic_category().message(error));
    return ERROR_NOT_SUPPORTED;
  }
  exitCode = 0;
  if (wait == Wait::Yes) {
    exitCode = waitFor(child);
  } else {
    std::thread([child] { waitFor(child); }).detach();
  }
  return ERROR_SUCCESS;
}

}  // namespace korvex::platform

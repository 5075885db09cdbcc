// Mode 21: the Windows help file and the one that stands in for it.
#include "engine/help_file.h"

#include <array>
#include <string>

#include "engine/reg_worker.h"

namespace korvex::engine {

using platform::Files;
using platform::Overwrite;
using platform::Status;

namespace {

// A real help file is put aside under its kept name before anything replaces it, and is only taken
// from there when it stands in its place again: at any moment one whole copy exists.
Status swapIn(Files& files, const HelpFilePaths& paths, const std::string& substitute) {
  std::string current;
  Status status = files.read(paths.help, current);
  if (status != platform::ERROR_SUCCESS) return status;
  // What is no substitute is the real one, be it newer than the kept one.
  if (current != substitute) status = files.copy(paths.help, paths.kept, Overwrite::Yes);
  if (status != platform::ERROR_SUCCESS) return status;
  return files.replace(paths.help, substitute);
}

Status swapOut(Files& files, const HelpFilePaths& paths) {
  if (!files.exists(paths.kept)) return platform::ERROR_SUCCESS;
  const Status status = files.copy(paths.kept, paths.help, Overwrite::Yes);
  return status == platform::ERROR_SUCCESS ? files.remove(paths.kept) : status;
}

}  // namespace

std::array<HelpFilePaths, 2> helpFiles(const foundation::Session& session) {
  const std::string folder = session.g_sWinDir + "Help\\";
  return {{{folder + "Windows.hlp", folder + "Windows.kvx"},
           {folder + "Windows2.hlp", folder + "Windows2.kvx"}}};
}

bool RegWorker::p_rwFlipTheHelpFile(bool on) {
  session_.trace.enter("[p_rwFlipTheHelpFile]");
  session_.trace.dump("bOn", on);
  Files& files = this->files();
  std::string substitute;
  Status status = platform::ERROR_SUCCESS;
  if (on) status = files.read(session_.g_sAppPath + "\\zak.hlp", substitute);
  bool swapped = !on;
  for (const HelpFilePaths& paths : helpFiles(session_)) {
    if (status != platform::ERROR_SUCCESS) break;
    if (on && !files.exists(paths.help)) continue;  // not every Windows has both
    status = on ? swapIn(files, paths, substitute) : swapOut(files, paths);
    swapped = true;
  }
  if (!swapped && status == platform::ERROR_SUCCESS) status = platform::ERROR_FILE_NOT_FOUND;
  session_.trace.dump("lRetVal&", status);
  return keep(status);
}

}  // namespace korvex::engine

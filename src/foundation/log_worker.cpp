// Writing log files.
#include "foundation/log_worker.h"

#include "foundation/fix_path.h"

namespace korvex::foundation {

using namespace platform;

std::string logLines(std::string_view text) {
  std::string lines;
  for (auto end = text.find('\0'); end != std::string_view::npos; end = text.find('\0')) {
    const std::string_view piece = text.substr(0, end);
    text.remove_prefix(end + 1);
    if (piece == "\r") continue;
    lines.append(piece).append("\r\n");
    if (piece.empty()) break;
  }
  return lines + "\r\n";
}

std::string LogWorker::logPath() const {
  std::string folder = machine_.systemInfo().GetTempPathA();
  if (!folder.ends_with('\\')) folder += '\\';
  return folder + "KORVEX.LOG";
}

bool LogWorker::cP_WriteToLogFile(std::string_view sText, bool bOverwrite) {
  const std::string text = P_FixPathGen(trace_, sText);
  const std::string path = logPath();
  Files& files = machine_.files();
  Status status = ERROR_SUCCESS;
  if (bOverwrite && files.exists(path)) status = files.remove(path);
  if (status == ERROR_SUCCESS) status = files.append(path, logLines(text));
  trace_.enter("[cP_WriteToLogFile]");
  trace_.dump("lRetVal&", status);
  return status == ERROR_SUCCESS;
}

Status LogWorker::appendRunLog(std::string_view sPath) {
  Files& files = machine_.files();
  const std::string lines = logLines(trace_.text());
  Status status = files.append(sPath, lines);
  const auto folderEnd = sPath.rfind('\\');
  if (status != ERROR_PATH_NOT_FOUND || folderEnd == std::string_view::npos) return status;
  status = files.createFolder(sPath.substr(0, folderEnd));
  return status == ERROR_SUCCESS ? files.append(sPath, lines) : status;
}

Status LogWorker::boundRunLog(std::string_view sPath, std::uint64_t limit) {
  Files& files = machine_.files();
  std::vector<FileEntry> entries;
  Status status = files.list(sPath, entries);
  if (status == ERROR_FILE_NOT_FOUND || status == ERROR_PATH_NOT_FOUND) return ERROR_SUCCESS;
  if (status != ERROR_SUCCESS || entries.front().size <= limit) return status;
  std::string bytes;
  status = files.read(sPath, bytes);
  if (status != ERROR_SUCCESS || bytes.size() <= limit) return status;
  const auto line = bytes.find('\n', bytes.size() - limit / 2 - 1);
  return files.replace(sPath, line == std::string::npos ? "" : bytes.substr(line + 1));
}

}  // namespace korvex::foundation

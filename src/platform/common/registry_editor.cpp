// The registry editor's command line.
#include "platform/common/registry_editor.h"

#include <fmt/format.h>

#include <algorithm>
#include <utility>
#include <vector>

#include "platform/common/reg_export.h"
#include "platform/common/reg_import.h"
#include "platform/text/text.h"

namespace korvex::platform {
namespace {

bool isRegistryEditor(std::string_view program) {
  const std::size_t folder = program.find_last_of("\\/");
  if (folder != std::string_view::npos) program.remove_prefix(folder + 1);
  return sameName(program, "regedit") || sameName(program, "regedit.exe");
}

bool isCommandFile(std::string_view program) {
  const std::size_t dot = program.rfind('.');
  const std::string_view extension = dot == std::string_view::npos ? "" : program.substr(dot + 1);
  return sameName(extension, "bat") || sameName(extension, "cmd");
}

// The commands of a command file: without what the command processor itself takes.
std::vector<std::string> commandLines(std::string_view text) {
  std::vector<std::string> commands;
  while (!text.empty()) {
    const std::size_t end = std::min(text.find('\n'), text.size());
    std::string line(text.substr(0, end));
    text.remove_prefix(std::min(end + 1, text.size()));
    if (!line.empty() && line.back() == '\r') line.pop_back();
    if (!line.empty() && line.front() == '@') line.erase(0, 1);
    // A percent sign stands there twice.
    for (std::size_t at = line.find("%%"); at != std::string::npos; at = line.find("%%", at + 1)) {
      line.erase(at, 1);
    }
    const auto words = commandWords(line);
    const bool isRemark =
        words.empty() || sameName(words.front(), "rem") || sameName(words.front(), "echo");
    if (!isRemark) commands.push_back(std::move(line));
  }
  return commands;
}

// What the editor was asked to do.
struct EditorCall {
  bool isExport = false;
  std::vector<std::string> names;  // the file, and the key of an export
  std::string unknown;             // a switch that the editor does not have
};

EditorCall readCall(const std::vector<std::string>& words) {
  EditorCall call;
  for (std::size_t i = 1; i < words.size(); ++i) {
    const std::string& word = words[i];
    const bool isSwitch = word.size() > 1 && (word[0] == '/' || word[0] == '-');
    if (!isSwitch) {
      call.names.push_back(word);
    } else if (sameName(word.substr(1), "e")) {
      call.isExport = true;
    } else if (!sameName(word.substr(1), "s")) {
      call.unknown = word;
    }
  }
  return call;
}

}  // namespace

std::vector<std::string> commandWords(std::string_view commandLine) {
  std::vector<std::string> words;
  bool quoted = false;
  bool inWord = false;
  for (const char c : commandLine) {
    const bool blank = !quoted && (c == ' ' || c == '\t');
    if (!blank && !inWord) words.emplace_back();
    inWord = !blank;
    if (c == '"') {
      quoted = !quoted;
    } else if (inWord) {
      words.back() += c;
    }
  }
  return words;
}

bool RegistryEditor::readCommands(const std::vector<std::string>& words,
                                  std::vector<std::string>& commands) {
  std::string text;
  if (words.size() != 1 || !isCommandFile(words.front())) return false;
  if (files_.read(words.front(), text) != ERROR_SUCCESS) return false;
  commands = commandLines(text);
  return !commands.empty() &&
         std::all_of(commands.begin(), commands.end(), [](const auto& command) {
           return isRegistryEditor(commandWords(command).front());
         });
}

bool RegistryEditor::isMeant(std::string_view commandLine) {
  const auto words = commandWords(commandLine);
  std::vector<std::string> commands;
  return !words.empty() && (isRegistryEditor(words.front()) || readCommands(words, commands));
}

// A command file goes on after a command that fails, as on Windows; the first failure is told.
Status RegistryEditor::run(std::string_view commandLine, int& exitCode, std::string& message) {
  std::vector<std::string> commands;
  if (!readCommands(commandWords(commandLine), commands)) commands = {std::string(commandLine)};
  Status first = ERROR_SUCCESS;
  message.clear();
  for (const std::string& command : commands) {
    std::string told;
    const Status status = runOne(command, told);
    if (first == ERROR_SUCCESS) first = status;
    if (message.empty()) message = told;
  }
  exitCode = first == ERROR_SUCCESS ? 0 : 1;
  return first;
}

Status RegistryEditor::runOne(std::string_view commandLine, std::string& message) {
  const auto words = commandWords(commandLine);
  const EditorCall call = readCall(words);
  const std::size_t most = call.isExport ? 2 : 1;
  if (!call.unknown.empty() || call.names.empty() || call.names.size() > most) {
    message = fmt::format("{}: use \"regedit /e FILE [KEY]\" or \"regedit /s FILE\".", commandLine);
    return ERROR_INVALID_PARAMETER;
  }
  const std::string key = call.names.size() > 1 ? call.names[1] : std::string();
  return call.isExport ? exportKeys(call.names[0], key, message)
                       : importFile(call.names[0], message);
}

Status RegistryEditor::exportKeys(const std::string& file, const std::string& key,
                                  std::string& message) {
  auto keys = wholeRegistry();
  if (!key.empty()) {
    const auto path = parseKeyPath(key);
    if (!path) {
      message = fmt::format("{}: a key begins with the name of a root.", key);
      return ERROR_FILE_NOT_FOUND;
    }
    keys = {*path};
  }
  std::unique_ptr<WholeFileWriter> writer;
  Status status = files_.openToReplace(file, writer);
  if (status != ERROR_SUCCESS) {
    message = fmt::format("{}: {}.", file, describeStatus(status));
    return status;
  }
  const bool unicode = facts_.family == Family::Nt && facts_.version.majorVersion >= 5;
  RegExportOptions options;
  options.format = unicode ? RegFormat::Version5 : RegFormat::Regedit4;
  options.codePage = facts_.codePage;
  const auto sink = [&](std::string_view piece) { return writer->write(piece); };
  const auto result = exportRegPieces(registry_, keys, sink, options);
  status = result.status == ERROR_SUCCESS ? writer->commit() : result.status;
  if (result.leftOutCount > 0) message = result.leftOut.front();
  if (status != ERROR_SUCCESS) {
    message = fmt::format("{}: {}", file,
                          result.message.empty() ? describeStatus(status) : result.message);
  }
  return status;
}

Status RegistryEditor::importFile(const std::string& file, std::string& message) {
  FileDescriptor source;
  const Status status = files_.openToRead(file, source);
  if (status != ERROR_SUCCESS) {
    message = fmt::format("{}: {}.", file, describeStatus(status));
    return status;
  }
  RegImportOptions options;
  options.source = file;
  options.codePage = facts_.codePage;
  const auto result = importRegDescriptor(registry_, source.get(), options);
  message = result.message;
  if (message.empty() && result.refused > 0) message = result.messages.front();
  return result.status;
}

std::string commandLineOf(std::string_view file, std::string_view parameters) {
  std::string commandLine = fmt::format("\"{}\"", file);
  if (!parameters.empty()) commandLine += fmt::format(" {}", parameters);
  return commandLine;
}

}  // namespace korvex::platform

// Templates: named choices of file types. A file NAME.dat holds the section "[FA]" with one line
// per extension, ".txt=1"; other sections and comments stay as people wrote them.
#include <fmt/format.h>

#include <algorithm>

#include "backup/associations.h"
#include "backup/config_set.h"
#include "backup/folder_tree.h"
#include "platform/text/text.h"

namespace korvex::backup {

using foundation::Session;
using namespace platform;

namespace {

constexpr std::string_view kEnding = ".dat";

std::string templateFile(const Session& session, std::string_view name) {
  return fmt::format("{}\\{}{}", templateFolder(session), name, kEnding);
}

}  // namespace

std::string templateFolder(const Session& session) { return session.g_sAppPath + "\\templates"; }

std::string whyNoTemplateName(std::string_view name) {
  if (name.empty()) return "Type a name for the template first.";
  return whyNoSetName(name).empty()
             ? ""
             : "The name of a template is the name of its file: it may not hold \\ / : * ? \" < > "
               "|, begin or end with a blank or a dot, or be the name of a device.";
}

std::vector<std::string> associationTemplates(Session& session) {
  std::vector<FileEntry> found;
  session.files().list(templateFolder(session) + "\\*.dat", found);
  std::vector<std::string> names;
  for (const FileEntry& entry : found) {
    const std::string name = entry.name.substr(0, entry.name.size() - kEnding.size());
    const bool isFolder = (entry.attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
    if (!isFolder && extensionOf(entry.name) == kEnding && whyNoTemplateName(name).empty()) {
      names.push_back(name);
    }
  }
  std::ranges::sort(names, {}, [](const std::string& name) { return foldName(name); });
  return names;
}

Status readTemplate(Session& session, std::string_view name, std::vector<std::string>& extensions) {
  extensions.clear();
  if (!whyNoTemplateName(name).empty()) return ERROR_INVALID_NAME;
  std::string bytes;
  const Status status = session.files().read(templateFile(session, name), bytes);
  if (status != ERROR_SUCCESS) return status;
  bool inSection = false;
  for (std::string_view rest = bytes; !rest.empty();) {
    std::string_view line = rest.substr(0, rest.find_first_of("\r\n"));
    rest.remove_prefix(std::min(rest.size(), line.size() + 1));
    while (!line.empty() && line.front() == ' ') line.remove_prefix(1);
    if (line.starts_with('[')) {
      inSection = sameName(line.substr(0, line.find(']') + 1), "[FA]");
      continue;
    }
    if (!inSection || !line.starts_with('.')) continue;
    const std::size_t equals = line.find('=');
    if (equals != std::string_view::npos && line.substr(equals + 1).starts_with('0')) continue;
    std::string extension(line.substr(0, equals));
    while (!extension.empty() && extension.back() == ' ') extension.pop_back();
    const auto same = [&extension](const std::string& one) { return sameName(one, extension); };
    if (extension.size() > 1 && std::ranges::none_of(extensions, same)) {
      extensions.push_back(std::move(extension));
    }
  }
  return ERROR_SUCCESS;
}

Status writeTemplate(Session& session, std::string_view name,
                     std::span<const std::string> extensions) {
  if (!whyNoTemplateName(name).empty()) return ERROR_INVALID_NAME;
  std::string text = "[FA]\r\n";
  for (const std::string& extension : extensions) text += extension + "=1\r\n";
  const Status status = session.files().createFolder(templateFolder(session));
  if (status != ERROR_SUCCESS && status != ERROR_ALREADY_EXISTS) return status;
  return session.files().replace(templateFile(session, name), text);
}

Status removeTemplate(Session& session, std::string_view name) {
  if (!whyNoTemplateName(name).empty()) return ERROR_INVALID_NAME;
  return removeFile(session.files(), templateFile(session, name));
}

}  // namespace korvex::backup

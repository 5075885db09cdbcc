// What is in a folder of saved file types.
#include "backup/association_files.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>

#include "backup/associations.h"
#include "platform/text/reg_parser.h"
#include "platform/text/text.h"

namespace korvex::backup {

using foundation::Session;
using namespace platform;

namespace {

// The default value of the first key of a registry-editor file.
class FirstDefault : public RegTextSink {
 public:
  RegStep beginKey(std::size_t /*line*/, const KeyPath& path) override {
    if (!key.empty()) return RegStep::Stop;
    if (path.root == HKEY_CLASSES_ROOT) key = path.path;
    return RegStep::Done;
  }
  RegStep deleteKey(std::size_t /*line*/, const KeyPath& /*path*/) override {
    return RegStep::Stop;
  }
  RegStep setValue(std::size_t /*line*/, std::string_view name, RegType /*type*/,
                   std::string_view data) override {
    if (name.empty()) text = std::string(data.substr(0, data.find('\0')));
    return RegStep::Done;
  }
  RegStep deleteValue(std::size_t /*line*/, std::string_view /*name*/) override {
    return RegStep::Done;
  }
  void problem(std::size_t /*line*/, std::string_view /*text*/) override {}
  void note(std::size_t /*line*/, std::string_view /*text*/) override {}

  std::string key;
  std::string text;
};

FirstDefault readFirst(Session& session, const std::string& file) {
  FirstDefault sink;
  const CodePage* codePage = CodePage::find(session.machine().describe().codePage);
  if (codePage == nullptr) codePage = CodePage::find(1252);
  RegTextParser parser(sink, *codePage, ShortRoots::No);
  bool wanted = true;
  session.files().readPieces(file, [&](std::string_view piece) {
    if (wanted) wanted = parser.feed(piece);
    return ERROR_SUCCESS;
  });
  if (wanted) parser.finish();
  return sink;
}

// With the %XX of lines and of file names as what they stand for.
std::string decoded(std::string_view line) {
  std::string name;
  for (std::size_t i = 0; i < line.size(); ++i) {
    unsigned byte = 0;
    const bool isCode = line[i] == '%' && i + 3 <= line.size() &&
                        std::from_chars(line.data() + i + 1, line.data() + i + 3, byte, 16).ptr ==
                            line.data() + i + 3;
    name += isCode ? static_cast<char>(byte) : line[i];
    if (isCode) i += 2;
  }
  return name;
}

// Names in keys.dat: what could end a key of the file, or is no plain text, stands as %XX.
std::string lineName(std::string_view name) {
  std::string line;
  for (const char c : name) {
    const bool plain =
        c > ' ' && c <= '~' && std::string_view("=%;[]").find(c) == std::string_view::npos;
    line += plain ? std::string(1, c) : fmt::format("%{:02X}", static_cast<unsigned char>(c));
  }
  return line;
}

std::string keyOfFile(std::string_view file) {
  return decoded(file.substr(0, file.size() - std::string_view(".reg").size()));
}

}  // namespace

std::string keysLine(const ListedKey& key) {
  return fmt::format("{}={}\r\n", lineName(key.first), lineName(key.second));
}

std::vector<ListedKey> listedKeys(Session& session, const std::string& folder,
                                  std::string_view section) {
  std::vector<ListedKey> result;
  const std::string lines = session.machine().initFiles().GetPrivateProfileSectionA(
      section, fmt::format("{}\\{}", folder, kKeysFile));
  for (std::string_view rest = lines; !rest.empty();) {
    const std::string_view line = rest.substr(0, rest.find('\0'));
    rest.remove_prefix(std::min(rest.size(), line.size() + 1));
    const std::size_t equals = line.find('=');
    if (equals == std::string_view::npos || equals == 0) continue;
    const std::string key = decoded(line.substr(0, equals));
    if (key.find('\\') != std::string::npos) continue;
    result.emplace_back(key, decoded(line.substr(equals + 1)));
  }
  return result;
}

std::vector<FileType> savedAssociations(Session& session, const std::string& folder) {
  std::vector<FileEntry> found;
  session.files().list(folder + "\\*.reg", found);
  std::vector<FileType> types;
  for (const FileEntry& entry : found) {
    if (!entry.name.starts_with('.') || (entry.attributes & FILE_ATTRIBUTE_DIRECTORY) != 0)
      continue;
    const FirstDefault first = readFirst(session, folder + '\\' + entry.name);
    // Its own key decides, not its name; but a damaged file must not go unnoticed.
    const std::string key = first.key.empty() ? keyOfFile(entry.name) : first.key;
    if (!key.starts_with('.') || !sameName(associationFile(key), entry.name)) continue;
    FileType type{key, first.text, ""};
    const std::string classFile = folder + '\\' + associationFile(type.className);
    if (!type.className.empty() && session.files().exists(classFile)) {
      type.description = readFirst(session, classFile).text;
    }
    types.push_back(std::move(type));
  }
  // Of some only the class was saved, or nothing, because nothing was there.
  for (const char* const section : {"Kept", "Absent"}) {
    for (const ListedKey& key : listedKeys(session, folder, section)) {
      const auto same = [&](const FileType& type) { return sameName(type.extension, key.second); };
      if (std::ranges::none_of(types, same)) types.push_back({key.second, "", ""});
    }
  }
  std::ranges::sort(types, {}, [](const FileType& type) { return foldName(type.extension); });
  return types;
}

}  // namespace korvex::backup

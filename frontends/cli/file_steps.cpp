// Telling what was done to files.
#include "cli/file_steps.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>

#include "platform/text/text.h"

namespace korvex::cli {
namespace {

using platform::FileState;

struct ChangeWords {
  std::string_view json;
  std::string_view step;
  std::string_view done;
};
constexpr ChangeWords kFileCreated{"file-created", "makes the file", "new file"};
constexpr ChangeWords kFileChanged{"file-changed", "changes the file", "file changed"};
constexpr ChangeWords kFileDeleted{"file-deleted", "deletes the file", "file deleted"};
constexpr ChangeWords kFolderCreated{"folder-created", "makes the folder", "new folder"};
constexpr ChangeWords kFolderDeleted{"folder-deleted", "deletes the folder", "folder deleted"};
constexpr ChangeWords kAttributes{"attributes-changed", "changes the attributes",
                                  "attributes changed"};

const ChangeWords& wordsOf(const FileRecord& record) {
  const bool folder =
      (record.after ? record.after : record.before).value_or(FileState{}).isFolder();
  if (!record.after) return folder ? kFolderDeleted : kFileDeleted;
  if (!record.before || record.before->isFolder() != folder) {
    return folder ? kFolderCreated : kFileCreated;
  }
  return record.before->bytes == record.after->bytes ? kAttributes : kFileChanged;
}

struct Letter {
  std::uint32_t bit;
  char letter;
};
constexpr std::array kLetters{
    Letter{platform::FILE_ATTRIBUTE_READONLY, 'R'}, Letter{platform::FILE_ATTRIBUTE_HIDDEN, 'H'},
    Letter{platform::FILE_ATTRIBUTE_SYSTEM, 'S'}, Letter{platform::FILE_ATTRIBUTE_ARCHIVE, 'A'}};

// As the ATTRIB command writes them: "RHSA".
std::string attributeText(const FileState& state) {
  std::string text;
  for (const Letter& row : kLetters) {
    if ((state.attributes & row.bit) != 0) text += row.letter;
  }
  return text;
}

Json stateJson(const std::optional<FileState>& state) {
  if (!state) return nullptr;
  Json json;
  if (!state->isFolder()) json["size"] = state->bytes.size();
  json["attributes"] = attributeText(*state);
  return json;
}

// ", 10 -> 20 bytes, from C:\a.txt"
std::string detailText(const FileRecord& record) {
  const ChangeWords& words = wordsOf(record);
  std::string text;
  if (&words == &kFileChanged) {
    text = fmt::format(", {} -> {} bytes", record.before->bytes.size(), record.after->bytes.size());
  } else if (&words == &kFileCreated) {
    text = fmt::format(", {} bytes", record.after->bytes.size());
  } else if (&words == &kAttributes) {
    const auto letters = [](const FileState& state) {
      const std::string all = attributeText(state);
      return all.empty() ? "none" : all;
    };
    text = fmt::format(", {} -> {}", letters(*record.before), letters(*record.after));
  }
  if (!record.from.empty()) text += ", from " + printable(record.from);
  return text;
}

}  // namespace

std::vector<FileRecord> merged(const std::vector<FileRecord>& records) {
  std::vector<FileRecord> result;
  for (const FileRecord& record : records) {
    const auto same = std::find_if(result.begin(), result.end(), [&record](const auto& earlier) {
      return platform::sameName(earlier.path, record.path);
    });
    if (same == result.end()) {
      result.push_back(record);
      continue;
    }
    same->after = record.after;
    same->from = record.from;
  }
  std::erase_if(result, [](const FileRecord& record) { return record.before == record.after; });
  return result;
}

Json recordJson(const FileRecord& record) {
  Json json{{"change", wordsOf(record).json}, {"path", record.path}};
  if (!record.from.empty()) json["from"] = record.from;
  json["before"] = stateJson(record.before);
  json["after"] = stateJson(record.after);
  return json;
}

std::string stepText(const FileRecord& record) {
  return std::string(wordsOf(record).step) + detailText(record);
}

std::string recordText(const FileRecord& record, std::string_view indent) {
  return fmt::format("{}{}  ({}{})\n", indent, printable(record.path), wordsOf(record).done,
                     detailText(record));
}

}  // namespace korvex::cli

// The profile functions: finding the file, its text form, and what Windows does to a value.
#include "platform/common/ini_files.h"

#include <utility>
#include <vector>

namespace korvex::platform {
namespace {

constexpr std::string_view kUnicodeMark = "\xFF\xFE";

std::string joined(const std::vector<std::string>& texts) {
  std::string result;
  for (const std::string& text : texts) (result += text) += '\0';
  return result;
}

std::string withoutQuotes(std::string value) {
  const bool quoted = value.size() >= 2 && value.front() == value.back() &&
                      (value.front() == '"' || value.front() == '\'');
  return quoted ? value.substr(1, value.size() - 2) : value;
}

}  // namespace

IniFiles::IniFiles(Files& files, std::string windowsFolder, const CodePage& codePage,
                   SectionGap gap)
    : files_(files), windowsFolder_(std::move(windowsFolder)), codePage_(codePage), gap_(gap) {}

std::string IniFiles::pathOf(std::string_view file) const {
  if (file.find_first_of("\\/:") != std::string_view::npos) return std::string(file);
  const bool separated = windowsFolder_.ends_with('\\');  // "C:\"
  return windowsFolder_ + (separated ? "" : "\\") + std::string(file);
}

Status IniFiles::load(const std::string& path, IniDocument& document, bool& unicode) const {
  std::string bytes;
  const Status status = files_.read(path, bytes);
  unicode = bytes.starts_with(kUnicodeMark);
  if (unicode) bytes = utf16leToUtf8(std::string_view(bytes).substr(kUnicodeMark.size()));
  document = IniDocument(std::move(bytes), unicode ? nullptr : &codePage_, gap_);
  return status;
}

IniDocument IniFiles::readable(std::string_view file) const {
  IniDocument document("", &codePage_);
  bool unicode = false;
  // What cannot be read is empty, as on Windows.
  (void)load(pathOf(file), document, unicode);
  return document;
}

std::string IniFiles::GetPrivateProfileStringA(std::optional<std::string_view> section,
                                               std::optional<std::string_view> key,
                                               std::string_view fallback, std::string_view file) {
  const IniDocument document = readable(file);
  if (!section) return joined(document.sections());
  if (!key) return joined(document.keys(*section));
  if (auto value = document.value(*section, *key)) return withoutQuotes(*std::move(value));
  return std::string(fallback.substr(0, fallback.find_last_not_of(' ') + 1));
}

std::string IniFiles::GetPrivateProfileSectionA(std::string_view section, std::string_view file) {
  return joined(readable(file).lines(section));
}

Status IniFiles::WritePrivateProfileStringA(std::string_view section,
                                            std::optional<std::string_view> key,
                                            std::optional<std::string_view> value,
                                            std::string_view file) {
  const std::string path = pathOf(file);
  IniDocument document("", &codePage_);
  bool unicode = false;
  Status status = load(path, document, unicode);
  const bool missing = status == ERROR_FILE_NOT_FOUND;
  if (status != ERROR_SUCCESS && !missing) return status;

  const std::string before = document.bytes();
  if (!key) {
    status = document.removeSection(section);
  } else if (!value) {
    status = document.remove(section, *key);
  } else {
    status = document.set(section, *key, *value);
  }
  if (status != ERROR_SUCCESS || document.bytes() == before) return status;
  if (!unicode) return files_.replace(path, document.bytes());
  return files_.replace(path, std::string(kUnicodeMark) + utf8ToUtf16le(document.bytes()));
}

std::string IniFiles::GetProfileStringA(std::optional<std::string_view> section,
                                        std::optional<std::string_view> key,
                                        std::string_view fallback) {
  return GetPrivateProfileStringA(section, key, fallback, "WIN.INI");
}

Status IniFiles::WriteProfileStringA(std::string_view section, std::optional<std::string_view> key,
                                     std::optional<std::string_view> value) {
  return WritePrivateProfileStringA(section, key, value, "WIN.INI");
}

}  // namespace korvex::platform

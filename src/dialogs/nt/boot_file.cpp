// Reading, comparing and writing the boot file.
#include "dialogs/nt/boot_file.h"

#include <fmt/format.h>

#include <algorithm>

#include "engine/same_name.h"
#include "platform/text/text.h"
#include "platform/trimmed.h"

namespace korvex::dialogs {

using foundation::kCrLf;
using foundation::Session;
using namespace platform;

namespace {

constexpr std::uint32_t kNormal = 0;

const CodePage& codePageOf(Session& session) {
  const CodePage* found = CodePage::find(session.machine().describe().codePage);
  return found == nullptr ? *CodePage::find(1252) : *found;
}

// DOS editors end a text with Ctrl+Z.
bool isText(std::string_view bytes) {
  constexpr std::string_view kControls = "\t\r\n\f\x1A";
  return std::ranges::all_of(bytes, [kControls](char c) {
    return static_cast<unsigned char>(c) >= ' ' || kControls.find(c) != std::string_view::npos;
  });
}

// Every end of a line as CR LF: a lone LF or CR is one too.
std::string withCrLf(std::string_view text) {
  std::string result;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] != '\r' && text[i] != '\n') {
      result += text[i];
      continue;
    }
    result += kCrLf;
    if (text[i] == '\r' && i + 1 < text.size() && text[i + 1] == '\n') ++i;
  }
  return result;
}

Status readLimited(Files& files, std::string& bytes) {
  bytes.clear();
  return files.readPieces(kBootIni, [&bytes](std::string_view piece) {
    if (bytes.size() + piece.size() > BootFile::kLargest) return ERROR_MORE_DATA;
    bytes += piece;
    return ERROR_SUCCESS;
  });
}

}  // namespace

std::string decodeText(Session& session, std::string_view bytes) {
  return codePageOf(session).decode(bytes);
}

bool encodeText(Session& session, std::string_view text, std::string& bytes) {
  return codePageOf(session).encode(text, bytes);
}

bool hasSection(std::string_view text, std::string_view head) {
  while (!text.empty()) {
    const std::size_t end = std::min(text.find_first_of("\r\n"), text.size());
    if (engine::sameName(trimmed(text.substr(0, end)), head)) return true;
    text.remove_prefix(std::min(end + 1, text.size()));
  }
  return false;
}

Status BootFile::read() {
  text_.clear();
  Status status = readLimited(session_.files(), bytes_);
  if (status == ERROR_SUCCESS && !isText(bytes_)) status = ERROR_INVALID_DATA;
  session_.trace.dump("lRetVal&", status);
  if (status == ERROR_SUCCESS) text_ = withCrLf(decodeText(session_, bytes_));
  return status;
}

Status BootFile::compare(bool& changed) {
  std::string present;
  const Status status = readLimited(session_.files(), present);
  changed = status == ERROR_MORE_DATA || present != bytes_;
  return status == ERROR_MORE_DATA ? ERROR_SUCCESS : status;
}

bool BootFile::fileOf(std::string_view text, std::string& bytes) const {
  std::string lines = withCrLf(text);
  // The end of the last line is shown with the text: a second one would make the file grow by an
  // empty line each time.
  if (!lines.ends_with(kCrLf)) lines += kCrLf;
  return isText(lines) && encodeText(session_, lines, bytes);
}

Status BootFile::keepMaster(bool& made) {
  FileChange change(session_.files());
  std::uint32_t attributes = 0;
  Status status = change.attributes(kBootMaster, attributes);
  made = status == ERROR_FILE_NOT_FOUND;
  if (made) {
    status = change.copy(kBootIni, kBootMaster, Overwrite::No);
  } else if (status == ERROR_SUCCESS) {
    status = change.setAttributes(kBootMaster, kNormal);
  }
  if (status == ERROR_SUCCESS) status = change.setAttributes(kBootMaster, kBootAttributes);
  if (status == ERROR_SUCCESS) change.commit();
  made = made && status == ERROR_SUCCESS;
  return status;
}

Status BootFile::keepPrevious(bool& made) {
  FileChange change(session_.files());
  Status status = ERROR_SUCCESS;
  if (change.exists(kBootPrevious)) status = change.setAttributes(kBootPrevious, kNormal);
  if (status == ERROR_SUCCESS) status = change.copy(kBootIni, kBootPrevious, Overwrite::Yes);
  if (status == ERROR_SUCCESS) status = change.setAttributes(kBootPrevious, kBootAttributes);
  if (status == ERROR_SUCCESS) change.commit();
  made = status == ERROR_SUCCESS;
  return status;
}

BootWrite BootFile::write(std::string_view bytes) {
  BootWrite result;
  FileChange change(session_.files());
  result.status = change.setAttributes(kBootIni, kNormal);
  if (result.status == ERROR_SUCCESS) result.status = keepMaster(result.masterMade);
  if (result.status == ERROR_SUCCESS) result.status = keepPrevious(result.previousMade);
  // Replaced, never deleted first: a machine without a boot file would not start again.
  if (result.status == ERROR_SUCCESS) result.status = change.replace(kBootIni, bytes);
  if (result.status == ERROR_SUCCESS) {
    result.status = change.setAttributes(kBootIni, kBootAttributes);
  }
  if (result.status == ERROR_SUCCESS) {
    change.commit();
  } else {
    result.takenBack = change.rollback();
  }
  session_.trace.dump("lRetVal&", result.status);
  return result;
}

std::string describeFailure(const BootWrite& write) {
  std::string text =
      fmt::format("{} could not be written: {}.{}", kBootIni, describeStatus(write.status), kCrLf);
  if (write.takenBack == ERROR_SUCCESS) {
    text += "The old file stands under its name as it was, with its attributes.";
  } else {
    text += fmt::format("It could not be brought back to what it was either: {}.{}Look at it",
                        describeStatus(write.takenBack), kCrLf);
    text += " before you restart the machine.";
    if (write.previousMade) text += fmt::format(" {} is the old file.", kBootPrevious);
  }
  std::string copies;
  if (write.masterMade) copies = kBootMaster;
  if (write.previousMade) copies += (copies.empty() ? "" : " and ") + std::string(kBootPrevious);
  if (!copies.empty()) text += fmt::format("{}Copies of it that stay: {}.", kCrLf, copies);
  return text;
}

}  // namespace korvex::dialogs

// BootFile: C:\boot.ini as text, checked before it is written, and written with its copies.
//
// boot.mstr is the file as it was before Korvex first wrote it, made once and never overwritten;
// boot.org is the file as it was before the latest write. The text is 8-bit, in the code page of
// the machine.
#pragma once

#include <string>
#include <string_view>

#include "foundation/session.h"
#include "platform/file_change.h"

namespace korvex::dialogs {

constexpr std::string_view kBootIni = "C:\\boot.ini";
constexpr std::string_view kBootMaster = "C:\\boot.mstr";
constexpr std::string_view kBootPrevious = "C:\\boot.org";
constexpr std::uint32_t kBootAttributes =
    platform::FILE_ATTRIBUTE_READONLY | platform::FILE_ATTRIBUTE_HIDDEN |
    platform::FILE_ATTRIBUTE_SYSTEM | platform::FILE_ATTRIBUTE_ARCHIVE;

// Text of the machine's code page; false where a character has no place in it.
std::string decodeText(foundation::Session& session, std::string_view bytes);
bool encodeText(foundation::Session& session, std::string_view text, std::string& bytes);

// Whether a line of the text is that section's head ("[boot loader]"), in any case.
bool hasSection(std::string_view text, std::string_view head);

// The outcome of a write.
struct BootWrite {
  platform::Status status = platform::ERROR_SUCCESS;
  platform::Status takenBack = platform::ERROR_SUCCESS;  // of bringing the old file back
  bool masterMade = false;
  bool previousMade = false;
};

class BootFile {
 public:
  // Larger is no boot file: Windows' loader takes a fraction of it.
  static constexpr std::size_t kLargest = 64 << 10;

  explicit BootFile(foundation::Session& session) : session_(session) {}

  // 234 for a file beyond kLargest, 13 for one that is no 8-bit text.
  platform::Status read();
  // As it was read, every line ending in CR LF; "" after a failure.
  const std::string& text() const { return text_; }
  // Whether the file is still what was read.
  platform::Status compare(bool& changed);

  // The file that the text makes: every line ends in CR LF, the last one too. False where the code
  // page has no place for a character.
  bool fileOf(std::string_view text, std::string& bytes) const;
  // Writes the file and its copies. After a failure boot.ini is what it was, content and
  // attributes; the copies that were whole by then stay.
  BootWrite write(std::string_view bytes);

 private:
  platform::Status keepMaster(bool& made);
  platform::Status keepPrevious(bool& made);

  foundation::Session& session_;
  std::string bytes_;
  std::string text_;
};

// What to tell a person of a write that failed.
std::string describeFailure(const BootWrite& write);

}  // namespace korvex::dialogs

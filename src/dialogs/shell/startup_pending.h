// PendingMove: a move between a file and the program's records, noted before it begins.
//
// The registry and the files of a machine are not changed as one. So the note is written and
// brought to the disk first, then comes the file, and then, in one change, the records and the end
// of the note. After a kill the file tells how far it came: done is finished, not done is
// forgotten.
#pragma once

#include <functional>
#include <optional>
#include <string>

#include "foundation/session.h"
#include "platform/file_change.h"

namespace korvex::dialogs {

struct PendingMove {
  std::string area;  // by its name
  std::string step;  // one of those below
  std::string name;  // of the record
  std::string data;  // of the record: the program as it is written, or where the file came from
  std::string from;  // the line before, or the path
  std::string to;    // the line after, or the path
  std::string id;    // of what is taken back
};

constexpr const char* kStepOff = "off";
constexpr const char* kStepOn = "on";
constexpr const char* kStepDelete = "delete";
constexpr const char* kStepTakeBack = "take back";

class PendingMoves {
 public:
  using Records = std::function<platform::Status()>;

  explicit PendingMoves(foundation::Session& session) : session_(session) {}

  // Nothing where none is noted.
  platform::Status read(std::optional<PendingMove>& move) const;
  // A failure takes back what was done. The last step is not on the disk before the next flush.
  platform::Status carryOut(const PendingMove& move,
                            const std::function<platform::Status(platform::FileChange&)>& file,
                            const Records& records);
  // The end of one that was interrupted: its records where the file's step was done, else nothing.
  platform::Status end(bool fileIsDone, const Records& records);

 private:
  platform::Status note(const PendingMove& move);
  platform::Status forget();

  foundation::Session& session_;
};

// Steps of the registry as one change, kept where all succeed.
platform::Status inOneChange(foundation::Session& session,
                             const std::function<platform::Status()>& steps);

}  // namespace korvex::dialogs

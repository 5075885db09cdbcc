// Noting, doing and ending.
#include "dialogs/shell/startup_pending.h"

#include <array>
#include <utility>

#include "engine/at_once.h"
#include "engine/raw_value.h"

namespace korvex::dialogs {

using platform::ERROR_FILE_NOT_FOUND;
using platform::ERROR_SUCCESS;
using platform::HKEY_LOCAL_MACHINE;
using platform::Status;

namespace {

constexpr std::string_view kPending = "SOFTWARE\\Korvex\\App Manager\\Pending";

struct Field {
  const char* name;
  std::string PendingMove::*text;
};
constexpr std::array kFields{
    Field{"Area", &PendingMove::area}, Field{"Step", &PendingMove::step},
    Field{"Name", &PendingMove::name}, Field{"Data", &PendingMove::data},
    Field{"From", &PendingMove::from}, Field{"To", &PendingMove::to},
    Field{"Id", &PendingMove::id},
};

}  // namespace

Status inOneChange(foundation::Session& session, const std::function<Status()>& steps) {
  platform::RegistryChange change(session.registry());
  Status status = change.status();
  if (status == ERROR_SUCCESS) status = steps();
  return status == ERROR_SUCCESS ? change.commit() : status;
}

Status PendingMoves::read(std::optional<PendingMove>& move) const {
  move.reset();
  PendingMove found;
  for (const Field& field : kFields) {
    engine::RawValue value;
    const Status status =
        engine::readRawValue(session_.registry(), HKEY_LOCAL_MACHINE, kPending, field.name, value);
    // Written as one change, so that one missing value tells that there is none.
    if (status != ERROR_SUCCESS) return engine::missingIsFine(status);
    found.*field.text = value.text();
  }
  move = std::move(found);
  return ERROR_SUCCESS;
}

Status PendingMoves::note(const PendingMove& move) {
  Status status = inOneChange(session_, [&] {
    Status put = ERROR_SUCCESS;
    for (const Field& field : kFields) {
      if (put != ERROR_SUCCESS) break;
      put = engine::putText(session_, HKEY_LOCAL_MACHINE, kPending, field.name, move.*field.text);
    }
    return put;
  });
  if (status != ERROR_SUCCESS) return status;
  status = session_.registry().flush();
  if (status != ERROR_SUCCESS) inOneChange(session_, [this] { return forget(); });
  return status;
}

Status PendingMoves::forget() {
  return engine::missingIsFine(
      session_.regTool.DeleteRegNodes(HKEY_LOCAL_MACHINE, std::string(kPending)));
}

Status PendingMoves::carryOut(const PendingMove& move,
                              const std::function<Status(platform::FileChange&)>& file,
                              const Records& records) {
  Status status = note(move);
  if (status != ERROR_SUCCESS) return status;
  platform::FileChange files(session_.files());
  status = file(files);
  if (status == ERROR_SUCCESS) status = end(true, records);
  if (status == ERROR_SUCCESS) {
    files.commit();
    return status;
  }
  // Where the file cannot be taken back the note stays: the next start looks at the file.
  if (files.rollback() == ERROR_SUCCESS) end(false, {});
  return status;
}

Status PendingMoves::end(bool fileIsDone, const Records& records) {
  return inOneChange(session_, [&] {
    const Status status = fileIsDone ? records() : ERROR_SUCCESS;
    return status == ERROR_SUCCESS ? forget() : status;
  });
}

}  // namespace korvex::dialogs

// Listing and moving what stands on a line.
#include "dialogs/shell/startup_line.h"

#include "engine/same_name.h"

namespace korvex::dialogs {

using platform::ERROR_ALREADY_EXISTS;
using platform::ERROR_FILE_NOT_FOUND;
using platform::ERROR_SUCCESS;
using platform::Status;

StartupEntry StartupLine::entryOf(const std::string& written, bool on) const {
  StartupEntry entry;
  entry.area = area_;
  entry.on = on;
  entry.name = plainProgram(written);
  entry.text = written;
  entry.command = written;
  entry.origin = line_.place();
  return entry;
}

Status StartupLine::p_WinParse(StartupEntries& entries) {
  session_.trace.enter("[p_WinParse]");
  std::string text;
  const Status status = line_.read(text);
  session_.trace.dump("sLine$", text);
  if (status != ERROR_SUCCESS) session_.trace.add("ERROR - p_WinParse");
  for (const std::string& written : ProgramLine(text).programs()) {
    entries.push_back(entryOf(written, true));
  }
  return status;
}

Status StartupLine::switchedOff(StartupEntries& entries) {
  std::vector<NamedValue> found;
  const Status status = store_.list(found);
  for (const NamedValue& record : found) {
    StartupEntry entry = entryOf(shownText(record.value), false);
    entry.record = record.name;
    entry.value = record.value;
    entries.push_back(entry);
  }
  return status;
}

Status StartupLine::records(const PendingMove& pending) {
  return pending.step == kStepOff ? store_.keep(pending.name, textValue(pending.data))
                                  : store_.drop(pending.name);
}

Status StartupLine::move(const PendingMove& pending) {
  const auto write = [&](platform::FileChange& files) { return line_.write(files, pending.to); };
  const auto keep = [&] { return records(pending); };
  if (!line_.isInRegistry()) return PendingMoves(session_).carryOut(pending, write, keep);
  platform::FileChange none(session_.files());
  return inOneChange(session_, [&] {
    const Status status = write(none);
    return status == ERROR_SUCCESS ? keep() : status;
  });
}

Status StartupLine::switchOff(const StartupEntry& entry) {
  PendingMove pending{name_, kStepOff, entry.name, entry.command, "", "", ""};
  Status status = line_.read(pending.from);
  ProgramLine line(pending.from);
  if (status == ERROR_SUCCESS && !line.remove(entry.command)) status = ERROR_FILE_NOT_FOUND;
  if (status == ERROR_SUCCESS) status = store_.freeName(pending.name);
  pending.to = line.text();
  return status == ERROR_SUCCESS ? move(pending) : status;
}

Status StartupLine::switchOn(const StartupEntry& entry, Replace) {
  engine::RawValue record;
  Status status = store_.find(entry.record, record);
  if (status == ERROR_SUCCESS && !sameValue(record, entry.value)) status = ERROR_FILE_NOT_FOUND;
  PendingMove pending{name_, kStepOn, entry.record, entry.command, "", "", ""};
  if (status == ERROR_SUCCESS) status = line_.read(pending.from);
  ProgramLine line(pending.from);
  line.add(entry.command);
  pending.to = line.text();
  return status == ERROR_SUCCESS ? move(pending) : status;
}

Status StartupLine::forget(const StartupEntry& entry) {
  return inOneChange(session_, [&] {
    engine::RawValue record;
    const Status status = store_.find(entry.record, record);
    if (status != ERROR_SUCCESS) return status;
    if (!sameValue(record, entry.value)) return ERROR_FILE_NOT_FOUND;
    return store_.forget(entry.record, entry.name);
  });
}

Status StartupLine::add(const std::string& path, const std::string&) {
  std::string text;
  Status status = line_.read(text);
  if (status != ERROR_SUCCESS) return status;
  ProgramLine line(text);
  for (const std::string& written : line.programs()) {
    if (engine::sameName(plainProgram(written), path)) return ERROR_ALREADY_EXISTS;
  }
  line.add(quotedForLine(path));
  platform::FileChange files(session_.files());
  status = inOneChange(session_, [&] { return line_.write(files, line.text()); });
  if (status == ERROR_SUCCESS) files.commit();
  return status;
}

// The program stands there as often as before, or not.
Status StartupLine::finish(const PendingMove& pending) {
  std::string now;
  const Status status = line_.read(now);
  if (status != ERROR_SUCCESS) return status;
  const int before = ProgramLine(pending.from).count(pending.data);
  const int after = ProgramLine(now).count(pending.data);
  const bool done = pending.step == kStepOff ? after < before : after > before;
  return PendingMoves(session_).end(done, [&] { return records(pending); });
}

}  // namespace korvex::dialogs

// The table of events.
#include "platform/embedded/event_log.h"

#include <ctime>

namespace korvex::platform {

Status EventLog::add(std::string_view kind, std::string_view detail) {
  RegistryChange change(registry_);
  if (change.status() != ERROR_SUCCESS) return change.status();
  Statement insert;
  Statement prune;
  Status status = database_.prepare(insert, "INSERT INTO events(at, kind, detail) VALUES(?, ?, ?)");
  if (status == ERROR_SUCCESS) {
    insert.bind(1, static_cast<std::int64_t>(std::time(nullptr))).bind(2, kind).bind(3, detail);
    status = database_.report(insert.step());
  }
  if (status == ERROR_SUCCESS) {
    status = database_.prepare(prune,
                               "DELETE FROM events WHERE id <= (SELECT max(id) FROM events) - 100");
  }
  if (status == ERROR_SUCCESS) status = database_.report(prune.step());
  insert.reset();
  prune.reset();
  return status == ERROR_SUCCESS ? change.commit() : status;
}

Status EventLog::read(std::vector<MachineEvent>& events) {
  events.clear();
  Statement query;
  const Status status = database_.prepare(query, "SELECT at, kind, detail FROM events ORDER BY id");
  if (status != ERROR_SUCCESS) return status;
  int result = query.step();
  for (; result == SQLITE_ROW; result = query.step()) {
    events.push_back({query.number(0), std::string(query.bytes(1)), std::string(query.bytes(2))});
  }
  return database_.report(result);
}

}  // namespace korvex::platform

// Requests that an embedded machine cannot carry out itself, kept in registry.db.
#pragma once

#include <string_view>
#include <vector>

#include "platform/embedded/database.h"
#include "platform/embedded/embedded_machine.h"

namespace korvex::platform {

// The last hundred are kept.
class EventLog {
 public:
  // registry is the one on the same database: the record takes part in its open change.
  EventLog(Database& database, Registry& registry) : database_(database), registry_(registry) {}

  Status add(std::string_view kind, std::string_view detail);
  Status read(std::vector<MachineEvent>& events);

 private:
  Database& database_;
  Registry& registry_;
};

}  // namespace korvex::platform

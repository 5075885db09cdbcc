// The changes of a restore, for people and for scripts.
#include "backup/restore_offer.h"

#include <fmt/format.h>

namespace korvex::backup {
namespace {

using Kind = RestoreChange::Kind;

char signOf(Kind kind) {
  switch (kind) {
    case Kind::NewKey:
    case Kind::NewValue:
    case Kind::NewFile:
      return '+';
    case Kind::DeletedKey:
    case Kind::DeletedValue:
    case Kind::DeletedFile:
      return '-';
    case Kind::ChangedValue:
    case Kind::ChangedFile:
      break;
  }
  return '*';
}

}  // namespace

const char* kindName(Kind kind) {
  switch (kind) {
    case Kind::NewKey:
      return "NewKey";
    case Kind::DeletedKey:
      return "DeletedKey";
    case Kind::NewValue:
      return "NewValue";
    case Kind::ChangedValue:
      return "ChangedValue";
    case Kind::DeletedValue:
      return "DeletedValue";
    case Kind::NewFile:
      return "NewFile";
    case Kind::ChangedFile:
      return "ChangedFile";
    case Kind::DeletedFile:
      return "DeletedFile";
  }
  return "";
}

std::string describe(const RestoreChange& change) {
  std::string line = fmt::format("{} {}", signOf(change.kind), change.place);
  const std::string name = change.name.empty() ? "(Default)" : change.name;
  switch (change.kind) {
    case Kind::NewValue:
      return fmt::format("{}  {} = {}", line, name, change.after);
    case Kind::ChangedValue:
      return fmt::format("{}  {} = {}, was {}", line, name, change.after, change.before);
    case Kind::DeletedValue:
      return fmt::format("{}  {}, was {}", line, name, change.before);
    default:
      return line;
  }
}

}  // namespace korvex::backup

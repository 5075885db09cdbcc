// Comparing and restoring one key.
#include "backup/key_restore.h"

#include <fmt/format.h>

#include <utility>

#include "platform/text/reg_names.h"

namespace korvex::backup {

using foundation::Session;
using namespace platform;

namespace {

RestoreChange::Kind kindOf(RegChange::Kind kind) {
  switch (kind) {
    case RegChange::Kind::NewKey:
      return RestoreChange::Kind::NewKey;
    case RegChange::Kind::DeletedKey:
      return RestoreChange::Kind::DeletedKey;
    case RegChange::Kind::NewValue:
      return RestoreChange::Kind::NewValue;
    case RegChange::Kind::ChangedValue:
      return RestoreChange::Kind::ChangedValue;
    default:
      return RestoreChange::Kind::DeletedValue;
  }
}

}  // namespace

RestoreChange forPeople(const RegChange& change) {
  const bool isNew = change.kind == RegChange::Kind::NewValue;
  const bool isChanged = change.kind == RegChange::Kind::ChangedValue;
  const bool isGone = change.kind == RegChange::Kind::DeletedValue;
  const auto shown = [](bool there, RegType type, const std::string& data) {
    return there ? describeData(type, data) : std::string();
  };
  return {kindOf(change.kind), fullKeyName(change.root, change.path), change.name,
          shown(isChanged || isGone, change.typeBefore, change.before),
          shown(isChanged || isNew, change.typeAfter, change.after)};
}

void addChange(RestoreItem& item, RestoreChange change) {
  ++item.changeCount;
  if (item.changes.size() < RestoreItem::kMostChanges) item.changes.push_back(std::move(change));
}

bool compareSavedKey(Session& session, KeyRestore& restore, const std::string& nameForPeople,
                     RestoreItem& item) {
  if (restore.file.empty()) {
    const OpenKey opened(session.registry(), restore.root, restore.key, KEY_READ);
    if (opened.status() == ERROR_FILE_NOT_FOUND) return false;
    addChange(item, {RestoreChange::Kind::DeletedKey, fullKeyName(restore.root, restore.key), "",
                     "", ""});
    return true;
  }
  CompareOptions options;
  options.extras = Extras::Remove;
  options.root = restore.root;
  options.within = restore.key;
  options.source = nameForPeople;
  restore.extras.clear();
  const RegDifference difference =
      compareRegFile(session, restore.file, options, [&](const RegChange& change) {
        addChange(item, forPeople(change));
        if (!change.extra) return;
        restore.extras.push_back(change);
        restore.extras.back().before.clear();
      });
  // Lines below a key that is not its own are told with that key.
  std::vector<std::string> problems =
      difference.outside.empty() ? difference.problems : std::vector<std::string>();
  if (difference.status != ERROR_SUCCESS) {
    problems.push_back(fmt::format("{}: {}.", nameForPeople, difference.message));
  }
  if (!difference.outside.empty()) {
    problems.push_back(fmt::format("{}: it would also change {}, which is none of its keys.",
                                   nameForPeople, difference.outside));
  }
  if (!problems.empty()) item.restorable = false;
  for (std::string& problem : problems) item.problems.push_back(std::move(problem));
  return difference.changes > 0;
}

Status restoreSavedKey(Session& session, RegistryBacker& backer, const KeyRestore& restore,
                       std::string& message) {
  const auto fail = [&message](HKEY root, std::string_view path, Status status) {
    message = fmt::format("{}: {}.", fullKeyName(root, path), describeStatus(status));
    return status;
  };
  if (restore.file.empty()) {
    const Status status = session.regTool.DeleteRegNodes(restore.root, restore.key);
    const bool done = status == ERROR_SUCCESS || status == ERROR_FILE_NOT_FOUND;
    return done ? ERROR_SUCCESS : fail(restore.root, restore.key, status);
  }
  for (const RegChange& extra : restore.extras) {
    const Status status = extra.kind == RegChange::Kind::DeletedKey
                              ? session.regTool.DeleteRegNodes(extra.root, extra.path)
                              : session.regTool.DeleteRegValue(extra.root, extra.path, extra.name);
    if (status != ERROR_SUCCESS && status != ERROR_FILE_NOT_FOUND) {
      return fail(extra.root, extra.path, status);
    }
  }
  if (backer.P_rbRestoreRegistryKey(restore.file)) return ERROR_SUCCESS;
  message = backer.lastMessage();
  return backer.lastStatus();
}

}  // namespace korvex::backup

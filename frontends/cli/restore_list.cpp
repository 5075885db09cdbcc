// Changes of a restore as lines and as JSON.
#include "cli/restore_list.h"

#include <fmt/format.h>

#include <ostream>

namespace korvex::cli {

using Kind = backup::RestoreChange::Kind;

void RestoreList::add(const backup::RestoreChange& change) {
  ++count_;
  if (context_.json || printed_ >= kMostLines) return;
  ++printed_;
  context_.out << printable(backup::describe(change)) << '\n';
}

void RestoreList::end() {
  if (context_.json || count_ == printed_) return;
  context_.out << fmt::format("... and {} more.\n", count_ - printed_);
}

std::string changesText(std::size_t count) {
  return fmt::format("{} change{}", count, count == 1 ? "" : "s");
}

Json changeJson(const backup::RestoreChange& change) {
  const bool isValue = change.kind == Kind::NewValue || change.kind == Kind::ChangedValue ||
                       change.kind == Kind::DeletedValue;
  const auto text = [](bool there, const std::string& value) {
    return there ? Json(value) : Json(nullptr);
  };
  return {{"kind", backup::kindName(change.kind)},
          {"place", change.place},
          {"name", text(isValue, change.name)},
          {"before", text(isValue && change.kind != Kind::NewValue, change.before)},
          {"after", text(isValue && change.kind != Kind::DeletedValue, change.after)}};
}

}  // namespace korvex::cli

// Standing in front of an offer, as the window frmRestore does.
#include "cli/offer_run.h"

#include <fmt/format.h>
#include <unistd.h>

#include <algorithm>
#include <iostream>

#include "cli/interrupt.h"
#include "cli/restore_list.h"

namespace korvex::cli {
namespace {

using backup::RestoreItem;

bool personIsThere(const Context& context) {
  return context.in.rdbuf() == std::cin.rdbuf() && ::isatty(STDIN_FILENO) == 1;
}

Failure notConfirmed() {
  return {ExitCode::Usage, "not-confirmed",
          "Nobody can be asked whether to do it. Add --yes to do it, --dry-run to only look. "
          "Nothing was changed."};
}

bool confirmed(Context& context, const std::string& question) {
  context.out.flush();
  context.err << printable(question) << " [y/N] " << std::flush;
  std::string answer;
  std::getline(context.in, answer);
  return !answer.empty() && (answer[0] == 'y' || answer[0] == 'Y');
}

std::size_t changesOf(const std::vector<RestoreItem>& items) {
  std::size_t count = 0;
  for (const RestoreItem& item : items) count += item.restorable ? item.changeCount : 0;
  return count;
}

void printEnd(Context& context, const std::vector<RestoreItem>& items,
              const backup::RestoreOutcome* outcome, Json json) {
  const std::size_t count = changesOf(items);
  if (context.json) {
    json["restored"] = outcome != nullptr;
    json["savedAs"] = outcome != nullptr ? Json(outcome->savedAs) : Json(nullptr);
    json["changeCount"] = count;
    json["items"] = itemsJson(items);
    print(context.out, json);
  } else if (outcome != nullptr) {
    context.out << fmt::format("Restored: {}. What was there before is saved as {}.\n",
                               changesText(count), printable(outcome->savedAs));
  } else if (count == 0) {
    context.out << "Nothing would change.\n";
  }
}

}  // namespace

void expectConfirmable(const Context& context, const OfferOptions& options) {
  const bool asks = !options.dryRun && !options.yes;
  if (asks && context.json) throw notConfirmed();
}

Failure cancelledFailure(const std::string& what) {
  return {ExitCode::Failed, "cancelled", what + " was cancelled. Nothing was changed."};
}

bool hasProblems(const std::vector<RestoreItem>& items) {
  return std::ranges::any_of(
      items, [](const RestoreItem& item) { return !item.restorable || !item.problems.empty(); });
}

std::size_t printItems(Context& context, const std::vector<RestoreItem>& items) {
  RestoreList list(context);
  for (const RestoreItem& item : items) {
    for (const std::string& problem : item.problems) {
      context.note(fmt::format("{}: {}", printable(item.caption), printable(problem)));
    }
    if (!context.json) {
      std::string state = changesText(item.changeCount);
      if (!item.restorable) state = "cannot be restored";
      context.out << fmt::format("{}: {}\n", printable(item.caption), state);
    }
    if (!item.restorable) continue;
    for (const backup::RestoreChange& change : item.changes) list.add(change);
    list.addCount(item.changeCount - item.changes.size());
  }
  list.end();
  return list.count();
}

Json itemsJson(const std::vector<RestoreItem>& items) {
  Json result = Json::array();
  for (const RestoreItem& item : items) {
    Json changes = Json::array();
    for (const backup::RestoreChange& change : item.changes) changes.push_back(changeJson(change));
    result.push_back({{"name", item.name},
                      {"caption", item.caption},
                      {"restorable", item.restorable},
                      {"problems", item.problems},
                      {"changeCount", item.changeCount},
                      {"changes", std::move(changes)}});
  }
  return result;
}

ExitCode runOffer(Context& context, backup::RestoreOffer& offer, const OfferOptions& options,
                  Json json) {
  const std::vector<RestoreItem>& items = offer.items();
  const std::size_t count = printItems(context, items);
  const ExitCode code = hasProblems(items) ? ExitCode::Differences : ExitCode::Done;
  if (options.dryRun || count == 0) {
    printEnd(context, items, nullptr, std::move(json));
    return options.dryRun && count > 0 ? ExitCode::Differences : code;
  }
  if (!options.yes) {
    if (!personIsThere(context)) throw notConfirmed();
    if (!confirmed(context, offer.question())) {
      throw Failure(ExitCode::Failed, "declined", "Nothing was changed.");
    }
  }
  const Interrupt interrupt;
  const backup::RestoreOutcome outcome =
      offer.restore(std::vector<bool>(items.size(), true), interrupt.progress());
  if (outcome.cancelled) throw cancelledFailure("The restore");
  if (outcome.status != platform::ERROR_SUCCESS) {
    throw machineFailure(outcome.status, oneLine(outcome.message));
  }
  printEnd(context, items, &outcome, std::move(json));
  return code;
}

}  // namespace korvex::cli

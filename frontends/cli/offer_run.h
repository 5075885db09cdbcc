// A restore that is offered item by item (the categories of a set, file types): shown, confirmed
// and carried out.
#pragma once

#include <string>
#include <vector>

#include "backup/restore_offer.h"
#include "cli/context.h"
#include "cli/output.h"

namespace korvex::cli {

struct OfferOptions {
  bool dryRun = false;
  bool yes = false;  // nobody is asked
};

// Prints the items with what each would change, at most RestoreList::kMostLines lines of that, and
// what is wrong with them on the error stream. How many changes there are.
std::size_t printItems(Context& context, const std::vector<backup::RestoreItem>& items);
bool hasProblems(const std::vector<backup::RestoreItem>& items);

// [{"name","caption","restorable","problems","changeCount","changes"}]
Json itemsJson(const std::vector<backup::RestoreItem>& items);

// All items of the offer. json holds what the caller tells of them. Exit code: 1 for problems, and
// where a dry run finds changes.
ExitCode runOffer(Context& context, backup::RestoreOffer& offer, const OfferOptions& options,
                  Json json);

// Throws Failure (Usage) where nobody can be asked and the options do not say --yes. To be called
// before anything is done for an answer that is told as JSON.
void expectConfirmable(const Context& context, const OfferOptions& options);

Failure cancelledFailure(const std::string& what);

}  // namespace korvex::cli

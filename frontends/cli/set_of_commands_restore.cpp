// set-of restore.
#include <fmt/format.h>

#include <algorithm>

#include "backup/categories.h"
#include "cli/interrupt.h"
#include "cli/set_of_commands.h"

namespace korvex::cli {
namespace {

struct RestoreOptions {
  std::string name;
  std::vector<std::string> only;
  OfferOptions offer;
};

// The set without the categories that were not asked for.
void keepOnly(backup::ConfigSet& set, const std::vector<std::string>& tags) {
  if (tags.empty()) return;
  for (const std::string& tag : tags) {
    if (!set.holds(tag)) {
      throw Failure(ExitCode::Failed, "not-in-set",
                    fmt::format("The save {} does not hold {}. Nothing was changed.",
                                printable(set.name), tag));
    }
  }
  const auto unwanted = [&tags](const std::string& tag) {
    return std::ranges::find(tags, tag) == tags.end();
  };
  std::erase_if(set.tags, unwanted);
  std::erase_if(set.entries,
                [&set](const backup::SetEntry& entry) { return !set.holds(entry.tag); });
}

ExitCode restore(Context& context, const RestoreOptions& options) {
  expectConfirmable(context, options.offer);
  const std::vector<std::string> tags = categoryTags(options.only);
  BackupMachine machine(context, options.offer.dryRun ? Access::Pretend : Access::Write);
  backup::ConfigSets sets(machine.session(), machine.backer());
  backup::ConfigSet set = findSet(machine, options.name);
  if (!sets.isAvailable(set)) {
    throw Failure(ExitCode::Failed, "not-available",
                  fmt::format("The current save cannot be located on disk. ({}) Locate the proper "
                              "disk and try again.",
                              printable(set.folder)));
  }
  keepOnly(set, tags);
  std::unique_ptr<backup::RestoreOffer> offer;
  {
    const Interrupt interrupt;
    offer = sets.offer(set, interrupt.progress());
    if (interrupt.asked()) throw cancelledFailure("The restore");
  }
  Json json = document();
  json["set"] = setJson(machine.session(), set, true);
  return runOffer(context, *offer, options.offer, std::move(json));
}

}  // namespace

void addSetOfRestore(CLI::App& group, Run& run) {
  const auto options = std::make_shared<RestoreOptions>();
  CLI::App* command = addCommand(
      group, "restore", "Put a saved set back",
      "  korvex set-of restore Work --dry-run\n"
      "  korvex set-of restore Look --only Color --yes\n"
      "  korvex set-of restore ~/saves/Work/profile.kvx\n"
      "\n"
      "Prints what would change and asks. What is overwritten is saved first, as a set of its own\n"
      "beside it. What is damaged, or does not fit this Windows, is named and left out (exit code\n"
      "1). A set that lies outside the machine is copied to it. With --dry-run the exit code is 1\n"
      "where something would change.");
  command->add_option("NAME", options->name, "Its name, or its profile.kvx, C:\\... or on the host")
      ->required()
      ->type_name("");
  command
      ->add_option("--only", options->only,
                   "Only these categories: ColorConfig, or Color; with commas between them")
      ->delimiter(',')
      ->allow_extra_args(false)
      ->type_name("TAG,...");
  command->add_flag("--dry-run", options->offer.dryRun, "Only print what would change");
  command->add_flag("--yes", options->offer.yes, "Do not ask");
  command->callback([&run, options] {
    run = [options](Context& context) { return restore(context, *options); };
  });
}

}  // namespace korvex::cli

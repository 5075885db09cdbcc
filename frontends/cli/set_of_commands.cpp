// Finding sets and categories, and the group of commands.
#include "cli/set_of_commands.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>

#include "backup/categories.h"
#include "cli/tweak_names.h"
#include "platform/text/text.h"
#include "program/host_set.h"

namespace korvex::cli {
namespace {

using platform::ERROR_SUCCESS;
using platform::Status;

constexpr std::string_view kEnding = "Config";

const backup::Category& categoryNamed(const std::string& typed) {
  std::vector<std::string> names;
  for (const backup::Category& category : backup::categories()) {
    const std::string_view tag = category.tag;
    const std::string_view shortName = tag.substr(0, tag.size() - kEnding.size());
    if (platform::sameName(tag, typed) || platform::sameName(shortName, typed)) return category;
    names.emplace_back(tag);
  }
  throw Failure(ExitCode::Usage, "unknown-category",
                fmt::format("There is no category named '{}'.{} There are: {}.", printable(typed),
                            suggestion(typed, names), fmt::join(names, ", ")));
}

// A name is no path, and a path has a separator or the ending of a profile.
bool isProfile(const std::string& text) {
  constexpr std::string_view ending = ".kvx";
  return text.find_first_of("\\/") != std::string::npos || isMachinePath(text) ||
         (text.size() > ending.size() &&
          platform::sameName(text.substr(text.size() - ending.size()), ending));
}

}  // namespace

std::vector<std::string> categoryTags(const std::vector<std::string>& typed) {
  std::vector<std::string> tags;
  for (const std::string& word : typed) {
    const std::string tag(categoryNamed(word).tag);
    if (std::ranges::find(tags, tag) == tags.end()) tags.push_back(tag);
  }
  return tags;
}

backup::ConfigSet findSet(BackupMachine& machine, const std::string& nameOrProfile) {
  std::string wanted = nameOrProfile;
  if (isProfile(wanted) && !isMachinePath(wanted)) {
    const program::HostSet taken = program::takeHostSet(machine.session(), wanted);
    if (taken.status != ERROR_SUCCESS) {
      throw machineFailure(taken.status, oneLine(taken.message));
    }
    wanted = taken.profile;
  }
  backup::ConfigSets sets(machine.session(), machine.backer());
  backup::ConfigSet set;
  std::string message;
  const Status status = sets.find(wanted, set, message);
  if (status == ERROR_SUCCESS) return set;
  const bool missing =
      status == platform::ERROR_FILE_NOT_FOUND || status == platform::ERROR_PATH_NOT_FOUND;
  const std::string hint = missing && !isProfile(nameOrProfile)
                               ? suggestion(nameOrProfile, backup::savedSets(machine.session()))
                               : std::string();
  throw Failure(ExitCode::Failed, missing ? "not-found" : "damaged", oneLine(message) + hint);
}

std::vector<std::string> captionsOf(const foundation::Session& session,
                                    const backup::ConfigSet& set) {
  std::vector<std::string> captions;
  for (const std::string& tag : set.tags) {
    const backup::Category* category = backup::findCategory(tag);
    if (category == nullptr) continue;
    captions.push_back(fmt::format("{} ({})", category->tag, category->captionFor(session)));
  }
  return captions;
}

Json setJson(const foundation::Session& session, const backup::ConfigSet& set, bool available) {
  Json json{{"name", set.name},   {"folder", set.folder},       {"available", available},
            {"saved", set.saved}, {"windows", set.windows},     {"computer", set.computer},
            {"user", set.user},   {"categories", Json::array()}};
  for (const std::string& tag : set.tags) {
    const backup::Category* category = backup::findCategory(tag);
    if (category == nullptr) continue;
    json["categories"].push_back(
        {{"tag", category->tag}, {"caption", category->captionFor(session)}});
  }
  return json;
}

void addSetOfCommands(CLI::App& app, Run& run) {
  CLI::App* group =
      addGroup(app, "set-of", "Save and restore sets of configuration: colours, desktop, ...");
  addSetOfSave(*group, run);
  addSetOfShow(*group, run);
  addSetOfRestore(*group, run);
}

}  // namespace korvex::cli

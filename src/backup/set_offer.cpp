// Comparing a set with its machine, and putting it back.
#include "backup/set_offer.h"

#include <fmt/format.h>

#include <algorithm>
#include <set>
#include <utility>

#include "backup/associations.h"
#include "backup/category_files.h"
#include "backup/folder_tree.h"
#include "backup/key_restore.h"
#include "backup/password_lists.h"
#include "backup/set_writer.h"
#include "platform/file_change.h"
#include "platform/text/reg_names.h"
#include "platform/text/text.h"

namespace korvex::backup {

using foundation::kCrLf;
using foundation::Session;
using namespace platform;

namespace {

using Kind = SetEntry::Kind;

constexpr std::string_view kBefore = " (before restore)";
constexpr std::string_view kBeforeTakingBack = " (before taking back)";
constexpr std::uint32_t kComparedAttributes =
    FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM;

// One step of a restore, ready to be done.
struct Step {
  enum class Kind { RestoreKey, PutFile, DeleteFile, MakeFolder, WritePasswordLists };
  Kind kind = Kind::RestoreKey;
  KeyRestore key;
  std::string file;   // in the set, in full
  std::string place;  // of a file
  std::string name;   // in the set, for the keeper
  std::uint32_t attributes = 0;
};

struct Plan {
  const Category* category = nullptr;
  std::vector<Step> steps;
};

class SetOffer : public RestoreOffer {
 public:
  SetOffer(Session& session, RegistryBacker& backer, const ConfigSet& set)
      : session_(session), files_(session.files()), backer_(backer), set_(set) {}

  void compare(const Progress& progress) {
    for (std::size_t i = 0; i < set_.tags.size(); ++i) {
      if (progress && !progress(static_cast<int>(100 * i / set_.tags.size()))) {
        items_.clear();
        return;
      }
      compareCategory(set_.tags[i]);
    }
  }

  std::string question() const override {
    return fmt::format("Restore the selected settings for {}?", set_.name);
  }
  const std::vector<RestoreItem>& items() const override { return items_; }
  RestoreOutcome restore(const std::vector<bool>& chosen, const Progress& progress) override;

 private:
  void compareCategory(const std::string& tag);
  void compareEntry(const SetEntry& entry, RestoreItem& item, Plan& plan);
  void compareKey(const SetEntry& entry, RestoreItem& item, Plan& plan);
  void compareFile(const SetEntry& entry, RestoreItem& item, Plan& plan);
  void comparePasswordLists(const SetEntry& entry, RestoreItem& item, Plan& plan);
  void findExtraFiles(RestoreItem& item, Plan& plan);
  bool keyFor(const SetEntry& entry, const Category& category, KeyRestore& key, std::string& why);
  bool isWhole(const SetEntry& entry, RestoreItem& item);
  std::string inFolder(std::string_view file) const {
    return fmt::format("{}\\{}", set_.folder, file);
  }

  static void addTargets(const std::vector<Step>& steps, std::vector<SourceFile>& files);
  SaveOutcome keep(const std::vector<bool>& chosen, const Progress& progress);
  Status doStep(const Step& step, Files& files, std::string& message);
  Status carryOut(const std::vector<bool>& chosen, const Progress& progress, std::string& message);
  Status takeBack();

  Session& session_;
  Files& files_;
  RegistryBacker& backer_;
  ConfigSet set_;
  std::vector<RestoreItem> items_;
  std::vector<Plan> plans_;
};

void SetOffer::compareCategory(const std::string& tag) {
  RestoreItem item;
  Plan plan;
  item.name = tag;
  plan.category = findCategory(tag);
  item.caption = plan.category->captionFor(session_);
  for (const SetEntry& entry : set_.entries) {
    if (sameName(entry.tag, tag)) compareEntry(entry, item, plan);
  }
  if (item.restorable) findExtraFiles(item, plan);
  if (plan.steps.empty() && !item.problems.empty()) item.restorable = false;
  items_.push_back(std::move(item));
  plans_.push_back(std::move(plan));
}

// Damage makes the whole category stay as it is: a half restored one is nobody's state. What only
// does not fit this Windows is left out and named.
bool SetOffer::isWhole(const SetEntry& entry, RestoreItem& item) {
  std::uint64_t size = 0;
  std::uint64_t checksum = 0;
  const Status status = measure(files_, inFolder(entry.file), size, checksum);
  if (status == ERROR_SUCCESS && size == entry.size && checksum == entry.checksum) return true;
  item.restorable = false;
  const bool missing = status == ERROR_FILE_NOT_FOUND || status == ERROR_PATH_NOT_FOUND;
  item.problems.push_back(status == ERROR_SUCCESS
                              ? fmt::format("{}: it is not what was saved.", entry.file)
                          : missing ? fmt::format("{}: it is missing.", entry.file)
                                    : fmt::format("{}: {}.", entry.file, describeStatus(status)));
  return false;
}

void SetOffer::compareEntry(const SetEntry& entry, RestoreItem& item, Plan& plan) {
  switch (entry.kind) {
    case Kind::Key:
    case Kind::NoKey:
      return compareKey(entry, item, plan);
    default:
      if (plan.category->copies == FileCopies::DialUp && sameName(entry.file, kPasswordsFile)) {
        return comparePasswordLists(entry, item, plan);
      }
      return compareFile(entry, item, plan);
  }
}

// The key that the entry may go to on this machine: that of its row, or one file type.
bool SetOffer::keyFor(const SetEntry& entry, const Category& category, KeyRestore& key,
                      std::string& why) {
  const auto place = parseKeyPath(entry.place);
  if (category.copies == FileCopies::FileTypes) {
    const bool isType = place && place->root == HKEY_CLASSES_ROOT && !place->path.empty() &&
                        place->path.find('\\') == std::string_view::npos &&
                        sameName(entry.file, "FA\\" + associationFile(place->path));
    if (!isType) {
      why = fmt::format("{}: {} is no file type.", entry.file, entry.place);
      return false;
    }
    key.root = place->root;
    key.key = place->path;
    return true;
  }
  for (const CategoryKey& row : categoryKeys(session_, category.tag)) {
    if (!sameName(row.file, entry.file)) continue;
    key.root = row.root;
    key.key = row.key;
    if (place && place->root == row.root && sameName(place->path, row.key)) return true;
    why = fmt::format("{}: saved from {} of {}; this Windows keeps it in {}.", entry.file,
                      entry.place, set_.windows.empty() ? "another Windows" : set_.windows,
                      fullKeyName(row.root, row.key));
    return false;
  }
  why = fmt::format("{}: this Windows has nothing of the kind.", entry.file);
  return false;
}

void SetOffer::compareKey(const SetEntry& entry, RestoreItem& item, Plan& plan) {
  Step step;
  std::string why;
  if (!keyFor(entry, *plan.category, step.key, why)) {
    // That there was none of something that this Windows has not is no loss.
    if (entry.kind == Kind::Key) item.problems.push_back(why);
    return;
  }
  if (entry.kind == Kind::Key) {
    if (!isWhole(entry, item)) return;
    step.key.file = inFolder(entry.file);
  }
  if (compareSavedKey(session_, step.key, entry.file, item)) plan.steps.push_back(std::move(step));
}

void SetOffer::compareFile(const SetEntry& entry, RestoreItem& item, Plan& plan) {
  Step step;
  std::string why;
  if (!placeFor(session_, *plan.category, entry, step.place, why)) {
    item.problems.push_back(why);
    return;
  }
  step.name = entry.file;
  step.file = inFolder(entry.file);
  std::uint32_t present = 0;
  const bool there = files_.attributes(step.place, present) == ERROR_SUCCESS;
  if (entry.kind == Kind::Folder) {
    step.kind = Step::Kind::MakeFolder;
    step.attributes = static_cast<std::uint32_t>(entry.size) & kComparedAttributes;
    if (there && (present & kComparedAttributes) == step.attributes) return;
    addChange(item, {there ? RestoreChange::Kind::ChangedFile : RestoreChange::Kind::NewFile,
                     step.place, "", "", ""});
  } else if (entry.kind == Kind::NoFile) {
    step.kind = Step::Kind::DeleteFile;
    if (!there) return;
    addChange(item, {RestoreChange::Kind::DeletedFile, step.place, "", "", ""});
  } else {
    step.kind = Step::Kind::PutFile;
    if (!isWhole(entry, item)) return;
    std::uint64_t size = 0;
    std::uint64_t checksum = 0;
    std::uint32_t wanted = 0;
    files_.attributes(step.file, wanted);
    const bool same = there && measure(files_, step.place, size, checksum) == ERROR_SUCCESS &&
                      size == entry.size && checksum == entry.checksum &&
                      ((present ^ wanted) & kComparedAttributes) == 0;
    if (same) return;
    addChange(item, {there ? RestoreChange::Kind::ChangedFile : RestoreChange::Kind::NewFile,
                     step.place, "", "", ""});
  }
  plan.steps.push_back(std::move(step));
}

void SetOffer::comparePasswordLists(const SetEntry& entry, RestoreItem& item, Plan& plan) {
  if (session_.g_bNT) {
    item.problems.push_back(fmt::format("{}: this Windows keeps no password lists.", entry.file));
    return;
  }
  if (!isWhole(entry, item)) return;
  if (hasPasswordLists(session_, inFolder(entry.file))) return;
  Step step;
  step.kind = Step::Kind::WritePasswordLists;
  step.name = entry.file;
  step.file = inFolder(entry.file);
  step.place = session_.g_sWinDir + "system.ini";
  addChange(item, {RestoreChange::Kind::ChangedFile, step.place, "", "", ""});
  plan.steps.push_back(std::move(step));
}

// Where the set holds all there was of a kind, what came since is to go.
void SetOffer::findExtraFiles(RestoreItem& item, Plan& plan) {
  std::vector<SourceFile> present;
  if (findFiles(session_, *plan.category, present) != ERROR_SUCCESS) return;
  std::set<std::string> known;
  for (const SetEntry& entry : set_.entries) {
    if (sameName(entry.tag, item.name)) known.insert(foldName(entry.file));
  }
  for (auto file = present.rbegin(); file != present.rend(); ++file) {
    if (!ownsItsFolder(*plan.category, *file) || known.contains(foldName(file->file))) continue;
    Step step;
    step.kind = Step::Kind::DeleteFile;
    step.name = file->file;
    step.place = file->place;
    step.attributes = file->attributes;
    addChange(item, {RestoreChange::Kind::DeletedFile, step.place, "", "", ""});
    plan.steps.push_back(std::move(step));
  }
}

// The files that the steps touch, where they are not among the category's own now.
void SetOffer::addTargets(const std::vector<Step>& steps, std::vector<SourceFile>& files) {
  std::set<std::string> places;
  std::set<std::string> names;
  for (const SourceFile& file : files) {
    places.insert(foldName(file.place));
    names.insert(foldName(file.file));
  }
  for (const Step& step : steps) {
    const bool isFile = step.kind == Step::Kind::PutFile || step.kind == Step::Kind::DeleteFile;
    if (!isFile || !places.insert(foldName(step.place)).second) continue;
    std::string name = step.name;
    const std::string folder = parentFolder(name).empty() ? "" : parentFolder(name) + '\\';
    for (int number = 2; !names.insert(foldName(name)).second; ++number) {
      name = fmt::format("{}{}_{}", folder, number, fileName(step.name));
    }
    files.push_back({step.place, name, step.attributes, 0});
  }
}

// Saves the present state of all that the chosen steps touch, as a set of its own.
SaveOutcome SetOffer::keep(const std::vector<bool>& chosen, const Progress& progress) {
  SaveJob job;
  job.name = keeperName(set_.name);
  job.folder = parentFolder(set_.folder) + '\\' + job.name;
  if (parentFolder(set_.folder).back() == '\\') job.folder = parentFolder(set_.folder) + job.name;
  job.allOrNothing = true;
  for (std::size_t i = 0; i < items_.size(); ++i) {
    if (!chosen[i] || plans_[i].steps.empty()) continue;
    CategoryJob category;
    Status status = jobFor(session_, *plans_[i].category, category);
    if (status != ERROR_SUCCESS) {
      SaveOutcome failed;
      failed.status = status;
      failed.message = describeStatus(status) + '.';
      return failed;
    }
    category.fileTypes = false;
    category.mayBeEmpty = true;
    for (const SetEntry& entry : set_.entries) {
      KeyRestore key;
      std::string why;
      const bool isType = plans_[i].category->copies == FileCopies::FileTypes;
      if (isType && sameName(entry.tag, items_[i].name) &&
          keyFor(entry, *plans_[i].category, key, why)) {
        category.keys.push_back({key.root, key.key, entry.file});
      }
    }
    addTargets(plans_[i].steps, category.files);
    job.categories.push_back(std::move(category));
  }
  return writeSet(session_, backer_, job, progress);
}

Status SetOffer::doStep(const Step& step, Files& files, std::string& message) {
  Status status = ERROR_SUCCESS;
  switch (step.kind) {
    case Step::Kind::RestoreKey: {
      // Compared once more: time has passed since the offer was made.
      KeyRestore key = step.key;
      RestoreItem now;
      const bool differs = compareSavedKey(session_, key, step.name, now);
      if (!now.restorable) {
        message = now.problems.front();
        return ERROR_INVALID_DATA;
      }
      return differs ? restoreSavedKey(session_, backer_, key, message) : ERROR_SUCCESS;
    }
    case Step::Kind::PutFile:
      status = copyOver(files, step.file, step.place);
      break;
    case Step::Kind::DeleteFile:
      if ((step.attributes & FILE_ATTRIBUTE_DIRECTORY) != 0) {
        files.setAttributes(step.place, 0);
        status = files.removeFolder(step.place);
      } else {
        status = removeFile(files, step.place);
      }
      break;
    case Step::Kind::MakeFolder:
      if (!files.exists(step.place)) status = files.createFolder(step.place);
      if (status == ERROR_SUCCESS) status = files.setAttributes(step.place, step.attributes);
      break;
    case Step::Kind::WritePasswordLists:
      status = writePasswordLists(session_, files, step.file);
      break;
  }
  if (status != ERROR_SUCCESS) {
    message = fmt::format("{}: {}.", step.place, describeStatus(status));
  }
  return status;
}

// One change: all of it or nothing.
Status SetOffer::carryOut(const std::vector<bool>& chosen, const Progress& progress,
                          std::string& message) {
  std::size_t total = 0;
  for (std::size_t i = 0; i < items_.size(); ++i) {
    if (chosen[i]) total += plans_[i].steps.size();
  }
  RegistryChange change(session_.registry());
  FileChange files(files_);
  Status status = change.status();
  std::size_t done = 0;
  for (std::size_t i = 0; i < items_.size(); ++i) {
    for (const Step& step : plans_[i].steps) {
      if (!chosen[i] || status != ERROR_SUCCESS) break;
      status = doStep(step, files, message);
      const auto percent = static_cast<int>(100 * ++done / total);
      if (status == ERROR_SUCCESS && progress && !progress(percent)) status = ERROR_CANCELLED;
    }
  }
  session_.trace.dump("lRetVal&", status);
  if (status == ERROR_SUCCESS) status = change.commit();
  if (status == ERROR_SUCCESS) files.commit();
  return status;
}

// After what was committed could not be brought to the disk: it would go there with a later change.
Status SetOffer::takeBack() {
  ConfigSet before;
  std::string message;
  const std::string folder = parentFolder(set_.folder);
  const Status status =
      readProfile(session_,
                  fmt::format("{}{}{}\\{}", folder, folder.ends_with('\\') ? "" : "\\",
                              keeperName(set_.name), kProfileFile),
                  before, message);
  if (status != ERROR_SUCCESS) return status;
  SetOffer back(session_, backer_, before);
  back.compare({});
  return back.carryOut(std::vector<bool>(back.items_.size(), true), {}, message);
}

RestoreOutcome SetOffer::restore(const std::vector<bool>& chosenItems, const Progress& progress) {
  session_.trace.enter("[cmdRestore]");
  RestoreOutcome outcome;
  std::vector<bool> chosen = chosenItems;
  chosen.resize(items_.size(), false);
  bool any = false;
  for (std::size_t i = 0; i < items_.size(); ++i) {
    if (!items_[i].restorable) chosen[i] = false;
    any = any || (chosen[i] && !plans_[i].steps.empty());
  }
  if (!any) return outcome;
  const auto half = [&progress](int from) {
    return [&progress, from](int percent) { return !progress || progress(from + percent / 2); };
  };
  std::string message;
  std::string unchanged = "Nothing was changed. Put the cause right and try again.";
  const SaveOutcome kept = keep(chosen, half(0));
  outcome.status = kept.status;
  if (kept.status != ERROR_SUCCESS) {
    message =
        fmt::format("What would be overwritten could not be saved first.{}{}", kCrLf, kept.message);
  } else {
    outcome.status = carryOut(chosen, half(50), message);
    if (outcome.status == ERROR_SUCCESS) {
      outcome.status = session_.registry().flush();
      if (outcome.status == ERROR_SUCCESS) {
        session_.g_bRebootNeeded = true;
        outcome.savedAs = keeperName(set_.name);
        return outcome;
      }
      message = session_.registry().lastRefusal();
      if (takeBack() != ERROR_SUCCESS) {
        unchanged = fmt::format("It waits to be written; what stood there before is saved as {}.",
                                keeperName(set_.name));
      }
    }
    if (message.empty()) message = session_.registry().lastRefusal();
    if (message.empty()) message = describeStatus(outcome.status) + '.';
  }
  outcome.cancelled = outcome.status == ERROR_CANCELLED;
  outcome.message = outcome.cancelled ? "The restore was cancelled. Nothing was changed."
                                      : fmt::format("{}{}{}", message, kCrLf, unchanged);
  return outcome;
}

}  // namespace

std::string keeperName(const std::string& name) {
  for (const auto& [ending, other] :
       {std::pair{kBefore, kBeforeTakingBack}, std::pair{kBeforeTakingBack, kBefore}}) {
    if (name.size() > ending.size() && name.ends_with(ending)) {
      return name.substr(0, name.size() - ending.size()) + std::string(other);
    }
  }
  return name + std::string(kBefore);
}

std::unique_ptr<RestoreOffer> offerSet(Session& session, RegistryBacker& backer,
                                       const ConfigSet& set, const Progress& progress) {
  auto offer = std::make_unique<SetOffer>(session, backer, set);
  offer->compare(progress);
  return offer;
}

}  // namespace korvex::backup

// What restoring saved file types would change, and doing it.
#include <fmt/format.h>

#include <algorithm>
#include <set>
#include <utility>

#include "backup/association_files.h"
#include "backup/associations.h"
#include "backup/folder_tree.h"
#include "backup/key_batches.h"
#include "backup/key_restore.h"
#include "platform/text/text.h"

namespace korvex::backup {

using foundation::kCrLf;
using foundation::Session;
using namespace platform;

namespace {

constexpr std::string_view kBefore = "Before restore";
constexpr std::string_view kBeforeTakingBack = "Before taking back";

class AssociationOffer : public RestoreOffer {
 public:
  AssociationOffer(Session& session, RegistryBacker& backer, std::string folder)
      : session_(session), backer_(backer), folder_(std::move(folder)) {}

  void compare(std::span<const std::string> extensions, const Progress& progress) {
    const std::vector<FileType> saved = savedAssociations(session_, folder_);
    absent_ = listedKeys(session_, folder_, "Absent");
    kept_ = listedKeys(session_, folder_, "Kept");
    for (std::size_t i = 0; i < extensions.size(); ++i) {
      if (progress && !progress(static_cast<int>(100 * i / extensions.size()))) {
        items_.clear();
        return;
      }
      const auto same = [&](const FileType& type) {
        return sameName(type.extension, extensions[i]);
      };
      const auto type = std::ranges::find_if(saved, same);
      compareType(type == saved.end() ? FileType{extensions[i], "", ""} : *type);
    }
  }

  std::string question() const override {
    return fmt::format("Restore the selected file associations from {}?", folder_);
  }
  const std::vector<RestoreItem>& items() const override { return items_; }
  RestoreOutcome restore(const std::vector<bool>& chosen, const Progress& progress) override;

 private:
  // What restoring does, and the keys that it saves first with the types they belong to.
  struct Work {
    std::vector<KeyRestore> steps;
    std::vector<KeyBackup> keys;
    std::vector<std::string> extensions;
  };

  void compareType(const FileType& type);
  void compareKey(const std::string& key, bool wasThere, RestoreItem& item,
                  std::vector<KeyRestore>& steps);
  void compareClass(const std::string& className, RestoreItem& item,
                    std::vector<KeyRestore>& steps);
  Status keep(const std::vector<KeyBackup>& keys, const std::vector<std::string>& extensions,
              const std::string& folder, const Progress& progress, std::string& message);
  Work workFor(const std::vector<bool>& chosen) const;
  Status carryOut(std::vector<KeyRestore>& steps, const Progress& progress, std::string& message);
  Status putBack(std::vector<KeyRestore> steps, const std::string& keeper);

  Session& session_;
  RegistryBacker& backer_;
  std::string folder_;
  std::vector<RestoreItem> items_;
  std::vector<std::vector<KeyRestore>> plans_;
  std::vector<ListedKey> absent_;
  std::vector<ListedKey> kept_;
};

void AssociationOffer::compareKey(const std::string& key, bool wasThere, RestoreItem& item,
                                  std::vector<KeyRestore>& steps) {
  KeyRestore step;
  step.root = HKEY_CLASSES_ROOT;
  step.key = key;
  const std::string file = associationFile(key);
  if (wasThere) {
    step.file = folder_ + '\\' + file;
    std::uint32_t attributes = 0;
    const Status status = session_.files().attributes(step.file, attributes);
    if (status != ERROR_SUCCESS) {
      item.restorable = false;
      item.problems.push_back(fmt::format(
          "{}: {}", file,
          status == ERROR_FILE_NOT_FOUND ? "it is missing." : describeStatus(status) + '.'));
      return;
    }
  }
  if (compareSavedKey(session_, step, file, item)) steps.push_back(std::move(step));
}

// A class that was not there when its type was saved has no file, and none to be restored.
void AssociationOffer::compareClass(const std::string& className, RestoreItem& item,
                                    std::vector<KeyRestore>& steps) {
  const std::string file = associationFile(className);
  if (session_.files().exists(folder_ + '\\' + file)) {
    compareKey(className, true, item, steps);
    return;
  }
  const OpenKey opened(session_.registry(), HKEY_CLASSES_ROOT, className, KEY_READ);
  if (!steps.empty() || opened.status() != ERROR_FILE_NOT_FOUND) {
    item.problems.push_back(
        fmt::format("{}: it is not there; {} stays as it is.", file, className));
  }
}

void AssociationOffer::compareType(const FileType& type) {
  RestoreItem item;
  item.name = type.extension;
  item.caption = type.className.empty() ? type.extension
                                        : fmt::format("{} ({})", type.extension, type.className);
  std::vector<KeyRestore> steps;
  bool isListed = false;
  for (const auto& [keys, wasThere] : {std::pair{&kept_, true}, std::pair{&absent_, false}}) {
    for (const auto& [key, extension] : *keys) {
      if (!sameName(extension, type.extension)) continue;
      isListed = true;
      compareKey(key, wasThere, item, steps);
    }
  }
  if (!isListed) {
    compareKey(type.extension, true, item, steps);
    // A class by which nothing is saved of a type is none that a restore may touch.
    if (type.canBeSaved()) compareClass(type.className, item, steps);
  }
  items_.push_back(std::move(item));
  plans_.push_back(std::move(steps));
}

// All of the keys as they stand now, in place of what the folder held.
Status AssociationOffer::keep(const std::vector<KeyBackup>& keys,
                              const std::vector<std::string>& extensions, const std::string& folder,
                              const Progress& progress, std::string& message) {
  Files& files = session_.files();
  const std::string staging = folder + ".kvxnew";
  std::vector<KeyBackupResult> results;
  Status status = backupIntoFolder(session_, backer_, keys, staging, progress, results, message);
  if (status != ERROR_SUCCESS) return status;
  std::string kept = "[Kept]\r\n";
  std::string absent = "[Absent]\r\n";
  for (std::size_t i = 0; i < results.size() && status == ERROR_SUCCESS; ++i) {
    const std::string line = keysLine({keys[i].subKey, extensions[i]});
    if (results[i].saved) {
      kept += line;
    } else if (results[i].status == ERROR_FILE_NOT_FOUND) {
      absent += line;
    } else {
      status = results[i].status;
      message = results[i].message;
    }
  }
  if (status == ERROR_SUCCESS) {
    status = files.replace(fmt::format("{}\\{}", staging, kKeysFile), kept + absent);
  }
  if (status == ERROR_SUCCESS) status = takeNameOf(files, staging, folder);
  if (status != ERROR_SUCCESS) {
    if (message.empty()) message = fmt::format("{}: {}.", folder, describeStatus(status));
    removeTree(files, staging);
  }
  return status;
}

AssociationOffer::Work AssociationOffer::workFor(const std::vector<bool>& chosen) const {
  Work work;
  std::set<std::string> seen;
  for (std::size_t i = 0; i < items_.size(); ++i) {
    if (i >= chosen.size() || !chosen[i] || !items_[i].restorable) continue;
    for (const KeyRestore& step : plans_[i]) {
      // A class that several types share is restored once.
      if (!seen.insert(foldName(step.key)).second) continue;
      work.steps.push_back(step);
      work.keys.push_back({step.root, step.key, associationFile(step.key)});
      work.extensions.push_back(items_[i].name);
    }
  }
  return work;
}

// One change of the registry; compared once more, as time has passed since the offer was made.
Status AssociationOffer::carryOut(std::vector<KeyRestore>& steps, const Progress& progress,
                                  std::string& message) {
  RegistryChange change(session_.registry());
  Status status = change.status();
  for (std::size_t i = 0; i < steps.size() && status == ERROR_SUCCESS; ++i) {
    RestoreItem item;
    const bool differs = compareSavedKey(session_, steps[i], associationFile(steps[i].key), item);
    if (!item.restorable) {
      status = ERROR_INVALID_DATA;
      message = item.problems.front();
    } else if (differs) {
      status = restoreSavedKey(session_, backer_, steps[i], message);
    }
    const auto percent = static_cast<int>(100 * (i + 1) / steps.size());
    if (status == ERROR_SUCCESS && progress && !progress(percent)) status = ERROR_CANCELLED;
  }
  session_.trace.dump("lRetVal&", status);
  return status == ERROR_SUCCESS ? change.commit() : status;
}

// After what was committed could not be brought to the disk: it would go there with a later change.
Status AssociationOffer::putBack(std::vector<KeyRestore> steps, const std::string& keeper) {
  for (KeyRestore& step : steps) {
    step.file = keeper + '\\' + associationFile(step.key);
    if (!session_.files().exists(step.file)) step.file.clear();
  }
  std::string ignored;
  return carryOut(steps, {}, ignored);
}

RestoreOutcome AssociationOffer::restore(const std::vector<bool>& chosen,
                                         const Progress& progress) {
  session_.trace.enter("[frmFA.cmdRestore]");
  RestoreOutcome outcome;
  Work work = workFor(chosen);
  if (work.steps.empty()) return outcome;
  const auto half = [&progress](int from) {
    return [&progress, from](int percent) { return !progress || progress(from + percent / 2); };
  };
  std::string message;
  std::string unchanged = "Nothing was changed. Put the cause right and try again.";
  const std::string keeper = keeperFolder(session_, folder_);
  outcome.status = keep(work.keys, work.extensions, keeper, half(0), message);
  if (outcome.status != ERROR_SUCCESS) {
    message = "What would be overwritten could not be saved first." + std::string(kCrLf) + message;
  } else {
    outcome.status = carryOut(work.steps, half(50), message);
    if (outcome.status == ERROR_SUCCESS) {
      outcome.status = session_.registry().flush();
      if (outcome.status == ERROR_SUCCESS) {
        outcome.savedAs = keeper;
        return outcome;
      }
      message = session_.registry().lastRefusal();
      if (putBack(work.steps, keeper) != ERROR_SUCCESS) {
        unchanged =
            fmt::format("It waits to be written; what stood there before is in {}.", keeper);
      }
    }
    if (message.empty()) message = session_.registry().lastRefusal();
    if (message.empty()) message = describeStatus(outcome.status) + '.';
  }
  outcome.cancelled = outcome.status == ERROR_CANCELLED;
  outcome.message = outcome.cancelled ? "The restore was cancelled. Nothing was changed."
                                      : message + std::string(kCrLf) + unchanged;
  return outcome;
}

}  // namespace

std::string keeperFolder(const Session& session, const std::string& folder) {
  const bool takesBack = sameName(fileName(folder), kBefore);
  return fmt::format("{}\\{}", associationFolder(session), takesBack ? kBeforeTakingBack : kBefore);
}

std::unique_ptr<RestoreOffer> offerAssociations(Session& session, RegistryBacker& backer,
                                                const std::string& folder,
                                                std::span<const std::string> extensions,
                                                const Progress& progress) {
  auto offer = std::make_unique<AssociationOffer>(session, backer, folder);
  offer->compare(extensions, progress);
  return offer;
}

}  // namespace korvex::backup

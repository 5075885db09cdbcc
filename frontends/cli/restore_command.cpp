// restore: a registry-editor file put back, after what it overwrites has been saved.
#include <fmt/format.h>

#include <array>
#include <optional>
#include <ostream>

#include "backup/key_restore.h"
#include "backup/undo_text.h"
#include "cli/backup_commands.h"
#include "cli/backup_files.h"
#include "cli/registry_access.h"
#include "cli/restore_list.h"
#include "cli/restore_source.h"
#include "platform/common/reg_tree.h"
#include "platform/text/text.h"

namespace korvex::cli {
namespace {

using namespace platform;
using backup::RegChange;

constexpr std::string_view kUndoEnding = ".undo.reg";
constexpr std::string_view kHint = "--undo names another file, --no-undo does without one.";
constexpr std::string_view kWhat = "The file that takes the restore back";

struct RestoreOptions {
  std::string file;
  std::string undo;
  bool noUndo = false;
  bool overwrite = false;
  bool exact = false;
  bool dryRun = false;
};

class Restore {
 public:
  Restore(Context& context, const RestoreOptions& options)
      : context_(context),
        options_(options),
        machine_(context, options.dryRun ? Access::Read : Access::Write),
        source_(machine_, options.file, interrupt_),
        list_(context),
        undoPath_(options.undo.empty() ? options.file + std::string(kUndoEnding) : options.undo) {}

  ExitCode run() {
    // From the comparison to the end nobody else changes anything.
    std::optional<RegistryChange> change;
    if (!options_.dryRun) {
      change.emplace(machine_.registry());
      if (change->status() != ERROR_SUCCESS) {
        throw registryFailure(change->status(), "The machine's registry",
                              machine_.registry().lastRefusal());
      }
    }
    compare();
    list_.end();
    const bool restores = !options_.dryRun && list_.count() > 0;
    if (restores) carryOut(*change);
    printResult(restores);
    if (!problems_.empty() || refused_ > 0) return ExitCode::Differences;
    return options_.dryRun && list_.count() > 0 ? ExitCode::Differences : ExitCode::Done;
  }

 private:
  void compare() {
    backup::CompareOptions how;
    if (options_.exact) how = source_.onlyKey();
    how.codePage = machine_.codePage();
    how.source = options_.file;
    const backup::RegDifference difference =
        backup::compareRegText(machine_.registry(), source_.pieces(), how,
                               [this](const RegChange& change) { take(change); });
    if (interrupt_.asked()) throw cancelled();
    if (difference.status != ERROR_SUCCESS) {
      throw Failure(ExitCode::Failed, "failed",
                    fmt::format("{}: {}. Nothing was changed.", printable(options_.file),
                                printable(difference.message)));
    }
    problems_ = difference.problems;
  }

  static Failure cancelled() {
    return {ExitCode::Failed, "cancelled", "The restore was cancelled. Nothing was changed."};
  }

  void take(const RegChange& change) {
    const bool keeps = !options_.dryRun && !options_.noUndo;
    if (keeps && !undo_) beginUndo();
    ++counts_[static_cast<std::size_t>(change.kind)];
    const backup::RestoreChange shown = backup::forPeople(change);
    list_.add(shown);
    if (context_.json && changes_.size() < backup::RestoreItem::kMostChanges) {
      changes_.push_back(changeJson(shown));
    }
    if (options_.dryRun) return;
    if (change.extra) {
      extras_.push_back(change);
      extras_.back().before.clear();
    }
    if (undo_) undo_->add(change);
  }

  void beginUndo() {
    const CodePage* codePage = CodePage::find(machine_.codePage());
    if (codePage == nullptr) codePage = CodePage::find(1252);
    try {
      undoFile_ =
          makeFile(machine_, undoPath_, options_.overwrite ? Overwrite::Yes : Overwrite::No, kWhat);
    } catch (const Failure& failure) {
      throw Failure(failure.code(), failure.kind(), fmt::format("{} {}", failure.what(), kHint));
    }
    undo_.emplace(machine_.registry(), machine_.regFormat(), *codePage,
                  [this](std::string_view piece) { return undoFile_->write(piece); });
  }

  void carryOut(RegistryChange& change) {
    if (undo_ && undo_->finish() != ERROR_SUCCESS) undoFailed(undo_->message());
    if (interrupt_.asked()) throw cancelled();
    removeExtras();
    const RestoreSource::Import import = source_.import();
    if (import.status != ERROR_SUCCESS) {
      throw machineFailure(import.status, printable(import.message) + ". Nothing was changed.");
    }
    refused_ = import.refused;
    for (const std::string& message : import.messages) problems_.push_back(message);
    // Before the registry: whatever comes then, there is a way back.
    if (undo_) {
      const Status status = undoFile_->commit();
      if (status != ERROR_SUCCESS) undoFailed(describeStatus(status));
    }
    Status status = change.commit();
    if (status == ERROR_SUCCESS) status = machine_.registry().flush();
    if (status != ERROR_SUCCESS) {
      if (undo_) undoFile_->takeBack();
      throw registryFailure(status, "The restore", machine_.registry().lastRefusal());
    }
  }

  [[noreturn]] void undoFailed(const std::string& why) const {
    throw Failure(ExitCode::Failed, "no-undo",
                  fmt::format("{} could not be written: {}: {}. Nothing was changed. {}", kWhat,
                              printable(undoPath_), printable(why), kHint));
  }

  void removeExtras() {
    Registry& registry = machine_.registry();
    for (const RegChange& extra : extras_) {
      Status status = ERROR_SUCCESS;
      if (extra.kind == RegChange::Kind::DeletedKey) {
        status = deleteKeyTree(registry, extra.root, extra.path);
      } else {
        const OpenKey key(registry, extra.root, extra.path, KEY_WRITE);
        status = key.status();
        if (status == ERROR_SUCCESS) status = registry.RegDeleteValueA(key.get(), extra.name);
      }
      if (status != ERROR_SUCCESS && status != ERROR_FILE_NOT_FOUND) {
        throw registryFailure(status, printable(fullKeyName(extra.root, extra.path)) +
                                          " could not be removed, so nothing was changed");
      }
    }
  }

  void printResult(bool restored) {
    for (const std::string& problem : problems_) context_.note(printable(problem));
    if (context_.json) {
      printJson(restored);
    } else if (restored) {
      context_.out << fmt::format("Restored {}: {}.{}\n", printable(options_.file),
                                  changesText(list_.count()),
                                  undo_ ? " " + printable(undoPath_) + " takes them back." : "");
    } else if (list_.count() == 0) {
      context_.out << "Nothing would change.\n";
    }
  }

  void printJson(bool restored) {
    const auto count = [this](RegChange::Kind kind) {
      return counts_[static_cast<std::size_t>(kind)];
    };
    Json json = document();
    json["file"] = options_.file;
    json["restored"] = restored;
    json["undo"] = restored && undo_ ? Json(undoPath_) : Json(nullptr);
    json["newKeys"] = count(RegChange::Kind::NewKey);
    json["deletedKeys"] = count(RegChange::Kind::DeletedKey);
    json["newValues"] = count(RegChange::Kind::NewValue);
    json["changedValues"] = count(RegChange::Kind::ChangedValue);
    json["deletedValues"] = count(RegChange::Kind::DeletedValue);
    json["changeCount"] = list_.count();
    json["changes"] = std::move(changes_);
    json["problems"] = problems_;
    print(context_.out, json);
  }

  Context& context_;
  const RestoreOptions& options_;
  Interrupt interrupt_;
  BackupMachine machine_;
  RestoreSource source_;
  RestoreList list_;
  std::string undoPath_;
  std::unique_ptr<OutputFile> undoFile_;
  std::optional<backup::UndoText> undo_;
  std::vector<RegChange> extras_;  // without their data
  std::array<std::size_t, 5> counts_{};
  Json changes_ = Json::array();
  std::vector<std::string> problems_;
  std::size_t refused_ = 0;
};

ExitCode restore(Context& context, const RestoreOptions& options) {
  if (options.file == "-") {
    throw Failure(ExitCode::Usage, "usage",
                  "The file is read twice, so it cannot be the standard input. Name a file.");
  }
  return Restore(context, options).run();
}

}  // namespace

void addRestoreCommand(CLI::App& app, Run& run) {
  const auto options = std::make_shared<RestoreOptions>();
  CLI::App* command = addCommand(
      app, "restore", "Put a saved key back, and keep what that overwrites",
      "  korvex restore panel.reg --dry-run\n"
      "  korvex restore panel.reg --exact\n"
      "  korvex restore 'C:\\backup\\test.reg' --undo before.reg\n"
      "\n"
      "Prints each change. What is overwritten is first written to FILE.undo.reg; restoring that\n"
      "file takes the restore back. What is in the registry and not in the file stays, but for\n"
      "--exact. The restore is one change: all of it or nothing. With --dry-run the exit code is\n"
      "1 where something would change.");
  command->add_option("FILE", options->file, "A registry-editor file; C:\\... is on the machine")
      ->required()
      ->type_name("");
  command->add_flag("--dry-run", options->dryRun, "Only print what would change");
  command->add_flag("--exact", options->exact,
                    "Also remove what is below the file's key and not in the file");
  CLI::Option* undo =
      command->add_option("--undo", options->undo, "Where to save what is overwritten")
          ->type_name("FILE");
  command->add_flag("--no-undo", options->noUndo, "Do not save what is overwritten")
      ->excludes(undo);
  command->add_flag("--overwrite", options->overwrite,
                    "Replace a file of an earlier restore that is there already");
  command->callback([&run, options] {
    run = [options](Context& context) { return restore(context, *options); };
  });
}

}  // namespace korvex::cli

// A set on its way to the disk.
#include "backup/set_writer.h"

#include <fmt/format.h>

#include <algorithm>
#include <ctime>
#include <set>
#include <utility>

#include "backup/associations.h"
#include "backup/folder_tree.h"
#include "backup/password_lists.h"
#include "platform/text/reg_names.h"
#include "platform/text/text.h"

namespace korvex::backup {

using foundation::kCrLf;
using foundation::Session;
using namespace platform;

namespace {

constexpr std::string_view kNew = ".kvxnew";
constexpr std::string_view kOld = ".kvxold";
constexpr std::size_t kKeysAtOnce = 16;
// One more than a file: what the export of all types is worth in the progress.
constexpr std::size_t kFileTypesWeight = 60;

std::string localTime() {
  const std::time_t now = std::time(nullptr);
  std::tm parts{};
  localtime_r(&now, &parts);
  char text[32];
  const std::size_t length = std::strftime(text, sizeof text, "%Y-%m-%d %H:%M:%S", &parts);
  return {text, length};
}

bool isProfile(Files& files, const std::string& folder) {
  return files.exists(fmt::format("{}\\{}", folder, kProfileFile));
}

class SetWriter {
 public:
  SetWriter(Session& session, RegistryBacker& backer, const SaveJob& job, const Progress& progress)
      : session_(session),
        files_(session.files()),
        backer_(backer),
        job_(job),
        progress_(progress),
        folder_(job.folder + std::string(kNew)) {
    for (const CategoryJob& category : job.categories) units_ += weightOf(category);
    backer_.doEvents = [this] { return report(0) == ERROR_SUCCESS; };
  }
  ~SetWriter() { backer_.doEvents = nullptr; }
  SetWriter(const SetWriter&) = delete;
  SetWriter& operator=(const SetWriter&) = delete;

  SaveOutcome run() {
    session_.trace.enter("[cmdSave]");
    session_.trace.dump("sFolder$", job_.folder);
    Status status = makeFolder();
    for (const CategoryJob& category : job_.categories) {
      if (status == ERROR_SUCCESS) status = saveCategory(category);
    }
    if (status == ERROR_SUCCESS) status = judge();
    if (status == ERROR_SUCCESS) status = keepForeignFiles();
    if (status == ERROR_SUCCESS) status = finish();
    session_.trace.dump("lRetVal&", status);
    if (status != ERROR_SUCCESS) {
      removeTree(files_, folder_);
      outcome_.status = status;
      outcome_.cancelled = status == ERROR_CANCELLED;
      if (outcome_.message.empty()) {
        outcome_.message = outcome_.cancelled
                               ? "The save was cancelled. Nothing was saved."
                               : fmt::format("{}: {}.{}Nothing was saved.", job_.folder,
                                             describeStatus(status), kCrLf);
      }
    }
    return std::move(outcome_);
  }

 private:
  static std::size_t weightOf(const CategoryJob& job) {
    return job.keys.size() + job.files.size() + (job.fileTypes ? kFileTypesWeight : 1);
  }

  Status report(std::size_t units) {
    done_ += units;
    const auto percent =
        static_cast<int>(100 * std::min(done_, units_) / std::max<std::size_t>(1, units_));
    return !progress_ || progress_(percent) ? ERROR_SUCCESS : ERROR_CANCELLED;
  }

  Status fail(Status status, std::string message) {
    if (outcome_.message.empty()) outcome_.message = std::move(message);
    return status;
  }

  // The folder in which the set is made; refuses one that belongs to something else.
  Status makeFolder() {
    Status status = healSet(files_, job_.folder);
    if (status != ERROR_SUCCESS) return status;
    if (files_.exists(job_.folder)) {
      status =
          readProfile(session_, fmt::format("{}\\{}", job_.folder, kProfileFile), old_, ignored_);
      replaces_ = status == ERROR_SUCCESS;
      std::vector<TreeEntry> entries;
      if (!replaces_) status = listTree(files_, job_.folder, entries);
      if (status != ERROR_SUCCESS) return status;
      if (!replaces_ && !entries.empty()) {
        return fail(ERROR_ALREADY_EXISTS,
                    fmt::format("The folder {} holds files, and no save of Korvex's.{}Choose "
                                "another name, or move them away.",
                                job_.folder, kCrLf));
      }
    }
    status = files_.createFolder(folder_);
    if (status == ERROR_SUCCESS) return status;
    if (status == ERROR_NOT_READY) return fail(status, "The disk is not ready.");
    return fail(status, fmt::format("{0}An error occurred creating the path:{0}{1}{0}Processing "
                                    "cannot continue.{0}{2}.",
                                    kCrLf, job_.folder, describeStatus(status)));
  }

  // A full disk and a cancel end the save; anything else costs one category.
  Status saveCategory(const CategoryJob& job) {
    const std::size_t before = set_.entries.size();
    std::string reason;
    Status status = saveKeys(job, reason);
    if (status == ERROR_SUCCESS) status = saveFiles(job, reason);
    if (status == ERROR_SUCCESS && job.fileTypes) status = saveFileTypes(job, reason);
    const auto kept = [](const SetEntry& entry) {
      return entry.kind != SetEntry::Kind::NoKey && entry.kind != SetEntry::Kind::NoFile;
    };
    const bool empty = std::none_of(set_.entries.begin() + static_cast<std::ptrdiff_t>(before),
                                    set_.entries.end(), kept);
    if (status == ERROR_SUCCESS && empty && !job.mayBeEmpty) {
      status = ERROR_FILE_NOT_FOUND;
      reason = "there is nothing of this kind on this machine.";
    }
    if (status == ERROR_SUCCESS) {
      set_.tags.emplace_back(job.category->tag);
      return report(1);
    }
    if (status == ERROR_CANCELLED || status == ERROR_DISK_FULL || status == ERROR_WRITE_PROTECT) {
      return status;
    }
    for (std::size_t i = before; i < set_.entries.size(); ++i) {
      const SetEntry& entry = set_.entries[i];
      if (entry.kind == SetEntry::Kind::Key || entry.kind == SetEntry::Kind::File) {
        removeFile(files_, inFolder(entry.file));
      }
    }
    set_.entries.resize(before);
    if (reason.empty()) reason = describeStatus(status) + '.';
    outcome_.failed.push_back({std::string(job.category->captionFor(session_)), reason});
    return ERROR_SUCCESS;
  }

  std::string inFolder(std::string_view file) const { return fmt::format("{}\\{}", folder_, file); }

  // Measures what lies in the folder now and lists it.
  Status record(const CategoryJob& job, SetEntry::Kind kind, const std::string& file,
                const std::string& place) {
    SetEntry entry{kind, std::string(job.category->tag), file, 0, 0, place};
    Status status = ERROR_SUCCESS;
    if (kind == SetEntry::Kind::Key || kind == SetEntry::Kind::File) {
      status = measure(files_, inFolder(file), entry.size, entry.checksum);
    }
    set_.entries.push_back(std::move(entry));
    return status;
  }

  Status saveKeys(const CategoryJob& job, std::string& reason) {
    for (std::size_t i = 0; i < job.keys.size(); i += kKeysAtOnce) {
      const std::size_t count = std::min(kKeysAtOnce, job.keys.size() - i);
      std::vector<KeyBackup> batch;
      for (std::size_t k = i; k < i + count; ++k) {
        batch.push_back({job.keys[k].root, job.keys[k].subKey, inFolder(job.keys[k].file)});
        const Status made = makeFolderOf(batch.back().file);
        if (made != ERROR_SUCCESS) return made;
      }
      const std::vector<KeyBackupResult> results = backer_.backupKeys(batch);
      for (std::size_t k = 0; k < count; ++k) {
        const KeyBackup& key = job.keys[i + k];
        const Status status = recordKey(job, key, results[k], reason);
        if (status != ERROR_SUCCESS) return status;
      }
      const Status status = report(count);
      if (status != ERROR_SUCCESS) return status;
    }
    return ERROR_SUCCESS;
  }

  Status recordKey(const CategoryJob& job, const KeyBackup& key, const KeyBackupResult& result,
                   std::string& reason) {
    const std::string place = fullKeyName(key.root, key.subKey);
    if (result.saved) return record(job, SetEntry::Kind::Key, key.file, place);
    const OpenKey opened(session_.registry(), key.root, key.subKey, KEY_READ);
    if (opened.status() == ERROR_FILE_NOT_FOUND) {
      return record(job, SetEntry::Kind::NoKey, key.file, place);
    }
    reason = result.message;
    return result.status;
  }

  Status makeFolderOf(const std::string& file) {
    const std::string folder = parentFolder(file);
    if (files_.exists(folder)) return ERROR_SUCCESS;
    const Status status = files_.createFolder(folder);
    return status == ERROR_ALREADY_EXISTS ? ERROR_SUCCESS : status;
  }

  Status saveFiles(const CategoryJob& job, std::string& reason) {
    for (const SourceFile& source : job.files) {
      Status status = saveFile(job, source);
      if (status != ERROR_SUCCESS) {
        reason = fmt::format("{}: {}.", source.place, describeStatus(status));
        return status;
      }
      status = report(1);
      if (status != ERROR_SUCCESS) return status;
    }
    Status status = ERROR_SUCCESS;
    if (job.category->copies == FileCopies::DialUp) status = savePasswordLists(job);
    if (job.category->copies == FileCopies::Bookmarks && !job.files.empty()) {
      const std::string text =
          fmt::format("[NETSCAPE]\r\nBookPath={}\r\n", job.files.front().place);
      status = files_.replace(inFolder(kBookmarksFile), text);
    }
    return status;
  }

  Status saveFile(const CategoryJob& job, const SourceFile& source) {
    const std::string target = inFolder(source.file);
    if (source.isFolder()) {
      Status status = files_.createFolder(target);
      if (status == ERROR_ALREADY_EXISTS) status = ERROR_SUCCESS;
      set_.entries.push_back({SetEntry::Kind::Folder, std::string(job.category->tag), source.file,
                              source.attributes, 0, source.place});
      return status;
    }
    if (!files_.exists(source.place)) {
      return record(job, SetEntry::Kind::NoFile, source.file, source.place);
    }
    const Status status = copyOver(files_, source.place, target);
    return status == ERROR_SUCCESS ? record(job, SetEntry::Kind::File, source.file, source.place)
                                   : status;
  }

  Status savePasswordLists(const CategoryJob& job) {
    const bool empty = passwordLists(session_).empty();
    if (session_.g_bNT || (empty && !job.mayBeEmpty)) return ERROR_SUCCESS;
    const std::string file(kPasswordsFile);
    const Status status = files_.replace(inFolder(file), passwordListsText(session_));
    return status == ERROR_SUCCESS
               ? record(job, SetEntry::Kind::File, file, session_.g_sWinDir + "system.ini")
               : status;
  }

  Status saveFileTypes(const CategoryJob& job, std::string& reason) {
    std::vector<std::string> extensions = job.extensions;
    if (extensions.empty()) {
      std::vector<FileType> types;
      const Status status = listTypes(session_, types);
      if (status != ERROR_SUCCESS) return status;
      for (const FileType& type : types) extensions.push_back(type.extension);
    }
    const std::size_t before = done_;
    const Progress progress = [&](int percent) {
      done_ = before + kFileTypesWeight * static_cast<std::size_t>(std::max(percent, 0)) / 100;
      return report(0) == ERROR_SUCCESS;
    };
    const AssociationOutcome result =
        exportAssociations(session_, backer_, extensions, folder_ + "\\FA", progress);
    done_ = before + kFileTypesWeight;
    if (result.cancelled) return ERROR_CANCELLED;
    if (result.status != ERROR_SUCCESS) {
      reason = result.message;
      return result.status;
    }
    if (!result.failed.empty()) {
      reason = fmt::format("{}: {}", result.failed.front().extension, result.failed.front().reason);
      return ERROR_GEN_FAILURE;
    }
    for (const auto& [kind, keys] : {std::pair{SetEntry::Kind::Key, &result.keys},
                                     std::pair{SetEntry::Kind::NoKey, &result.missing}}) {
      for (const KeyBackup& key : *keys) {
        const Status status =
            record(job, kind, "FA\\" + fileName(key.file), fullKeyName(key.root, key.subKey));
        if (status != ERROR_SUCCESS) return status;
      }
    }
    return ERROR_SUCCESS;
  }

  // Whether what could be saved is worth to take the place of what is there.
  Status judge() {
    if (outcome_.failed.empty()) return ERROR_SUCCESS;
    const bool nothing = set_.tags.empty();
    if (!nothing && !replaces_ && !job_.allOrNothing) return ERROR_SUCCESS;
    std::string message = "The following items could not be saved.";
    for (const SaveOutcome::Failed& failed : outcome_.failed) {
      message += fmt::format("{}{}: {}", kCrLf, failed.caption, failed.reason);
    }
    message += fmt::format(
        "{}{}", kCrLf,
        replaces_ ? "The earlier save of this name was left as it is." : "Nothing was saved.");
    return fail(ERROR_GEN_FAILURE, message);
  }

  // What people put into the folder of an earlier save stays in it.
  Status keepForeignFiles() {
    if (!replaces_) return ERROR_SUCCESS;
    std::vector<TreeEntry> entries;
    Status status = listTree(files_, job_.folder, entries);
    std::set<std::string> known{foldName(kProfileFile), foldName(kContentsFile),
                                foldName(kBookmarksFile)};
    for (const SetEntry& entry : old_.entries) known.insert(foldName(entry.file));
    for (const TreeEntry& entry : entries) {
      const bool own = entry.isFolder() || known.contains(foldName(entry.path));
      if (own || status != ERROR_SUCCESS || files_.exists(inFolder(entry.path))) continue;
      status = copyOver(files_, job_.folder + '\\' + entry.path, inFolder(entry.path));
    }
    return status;
  }

  Status finish() {
    set_.name = job_.name;
    set_.folder = job_.folder;
    set_.saved = localTime();
    set_.windows = session_.g_sOSName;
    set_.computer = session_.machine().systemInfo().GetComputerNameA();
    set_.user = session_.g_sCurrentUser;
    Status status = writeContents(session_, folder_, set_);
    RegistryChange change(session_.registry());
    if (status == ERROR_SUCCESS) status = change.status();
    if (status == ERROR_SUCCESS) status = writeRecord(session_, set_);
    if (status == ERROR_SUCCESS) status = writeProfile();
    if (status == ERROR_SUCCESS) status = report(units_);
    if (status == ERROR_SUCCESS) status = takeName();
    if (status != ERROR_SUCCESS) return status;
    status = change.commit();
    if (status == ERROR_SUCCESS) status = session_.registry().flush();
    if (status != ERROR_SUCCESS) {
      fail(status, session_.registry().lastRefusal());
      giveNameBack();
      return status;
    }
    outcome_.files = set_.entries.size();
    // It is done: what is left of the old one is only in the way.
    removeTree(files_, job_.folder + std::string(kOld));
    return ERROR_SUCCESS;
  }

  Status writeProfile() {
    const std::string exported = inFolder("profile.reg");
    const std::string key = fmt::format("{}\\{}", kSetsKey, job_.name);
    if (!backer_.P_rbBackupRegistryKey(HKEY_LOCAL_MACHINE, key, exported)) {
      return fail(backer_.lastStatus(), backer_.lastMessage());
    }
    return files_.move(exported, inFolder(kProfileFile));
  }

  Status takeName() {
    const std::string old = job_.folder + std::string(kOld);
    const bool there = files_.exists(job_.folder);
    Status status = there ? files_.move(job_.folder, old) : ERROR_SUCCESS;
    if (status != ERROR_SUCCESS) return status;
    status = files_.move(folder_, job_.folder);
    if (status != ERROR_SUCCESS && there) files_.move(old, job_.folder);
    return status;
  }

  void giveNameBack() {
    const std::string old = job_.folder + std::string(kOld);
    if (files_.move(job_.folder, folder_) != ERROR_SUCCESS) return;
    if (files_.exists(old)) files_.move(old, job_.folder);
    if (replaces_) {
      old_.folder = job_.folder;
      writeRecord(session_, old_);
    } else {
      deleteRecord(session_, job_.name);
    }
  }

  Session& session_;
  Files& files_;
  RegistryBacker& backer_;
  const SaveJob& job_;
  const Progress& progress_;
  std::string folder_;  // in which the set is made
  std::size_t units_ = 1;
  std::size_t done_ = 0;
  ConfigSet set_;
  ConfigSet old_;
  std::string ignored_;
  bool replaces_ = false;
  SaveOutcome outcome_;
};

}  // namespace

Status jobFor(Session& session, const Category& category, CategoryJob& job) {
  job.category = &category;
  for (const CategoryKey& row : categoryKeys(session, category.tag)) {
    job.keys.push_back({row.root, std::string(row.key), std::string(row.file)});
  }
  job.fileTypes = category.copies == FileCopies::FileTypes;
  return findFiles(session, category, job.files);
}

SaveOutcome writeSet(Session& session, RegistryBacker& backer, const SaveJob& job,
                     const Progress& progress) {
  return SetWriter(session, backer, job, progress).run();
}

std::string presentFolder(Files& files, const std::string& folder) {
  const std::string old = folder + std::string(kOld);
  return !isProfile(files, folder) && isProfile(files, old) ? old : folder;
}

Status healSet(Files& files, const std::string& folder) {
  const std::string old = folder + std::string(kOld);
  Status status = removeTree(files, folder + std::string(kNew));
  if (status != ERROR_SUCCESS || !files.exists(old)) {
    const bool noFolder = status == ERROR_PATH_NOT_FOUND || status == ERROR_NOT_READY;
    return noFolder ? ERROR_SUCCESS : status;
  }
  if (isProfile(files, folder)) return removeTree(files, old);
  return files.exists(folder) ? ERROR_SUCCESS : files.move(old, folder);
}

}  // namespace korvex::backup

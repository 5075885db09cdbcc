// Listing and moving files.
#include "dialogs/shell/startup_folders.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>

#include "dialogs/shell/shell_link.h"
#include "engine/at_once.h"
#include "platform/text/text.h"

namespace korvex::dialogs {

using engine::TakenAway;
using platform::ERROR_ALREADY_EXISTS;
using platform::ERROR_FILE_NOT_FOUND;
using platform::ERROR_PATH_NOT_FOUND;
using platform::ERROR_SUCCESS;
using platform::FileEntry;
using platform::sameName;
using platform::Status;

namespace {

constexpr const char* kBackup = "Startup\\Backup";
constexpr const char* kDeleted = "Startup\\Deleted";
constexpr std::array kEarlierVersions{"v1.3", "v1.2"};
constexpr std::array kEarlierFolders{"\\Startup\\Backup", "\\Startup"};

std::string withoutSlash(std::string folder) {
  while (folder.size() > 3 && folder.ends_with('\\')) folder.pop_back();
  return folder;
}

std::string parentOf(const std::string& path) { return path.substr(0, path.rfind('\\')); }

bool isShortcut(const std::string& path) {
  return path.size() > 4 && sameName(path.substr(path.size() - 4), ".lnk");
}

// Where nothing is, nothing is listed.
Status isMissingFine(Status status) {
  return status == ERROR_FILE_NOT_FOUND || status == ERROR_PATH_NOT_FOUND ? ERROR_SUCCESS : status;
}

Status isThere(platform::Files& files, const std::string& path, bool& there) {
  std::uint32_t attributes = 0;
  const Status status = files.attributes(path, attributes);
  there = status == ERROR_SUCCESS;
  return isMissingFine(status);
}

Status listFiles(platform::Files& files, const std::string& folder,
                 std::vector<FileEntry>& entries) {
  entries.clear();
  const Status status = files.list(folder + "\\*.*", entries);
  std::erase_if(entries, [](const FileEntry& entry) {
    return (entry.attributes & platform::FILE_ATTRIBUTE_DIRECTORY) != 0;
  });
  return isMissingFine(status);
}

std::vector<std::string> earlierFolders(const std::string& root) {
  std::vector<std::string> result;
  for (const char* version : kEarlierVersions) {
    for (const char* folder : kEarlierFolders) {
      result.push_back(
          fmt::format("{}Program Files\\Korvex...for Power Users {}{}", root, version, folder));
    }
  }
  return result;
}

Status makeFolder(platform::Files& files, const std::string& folder) {
  const Status status = files.exists(folder) ? ERROR_SUCCESS : files.createFolder(folder);
  return status == ERROR_ALREADY_EXISTS ? ERROR_SUCCESS : status;
}

}  // namespace

StartupFolders::StartupFolders(foundation::Session& session, std::string_view name)
    : StartupPlace(session, StartupArea::StartUp, name, platform::HKEY_LOCAL_MACHINE),
      user_(withoutSlash(session.pd.StartUpPath)),
      common_(withoutSlash(session.pd.CommStartUpPath)) {}

bool StartupFolders::isOneFolder() const { return sameName(user_, common_); }

std::string StartupFolders::ownFolder(const char* folder) const {
  return fmt::format("{}\\{}", session_.g_sAppPath, folder);
}

std::string StartupFolders::path(const char* folder, const std::string& fileName) const {
  return fmt::format("{}\\{}", ownFolder(folder), fileName);
}

bool StartupFolders::isOfAllUsers(const std::string& cameFrom) const {
  return platform::foldName(cameFrom).find("ALL USERS") != std::string::npos ||
         sameName(parentOf(cameFrom), common_);
}

Status StartupFolders::listFolder(const std::string& folder, bool allUsers,
                                  StartupEntries& entries) {
  session_.trace.enter(allUsers ? "[p_ParseStartupDir_ALL USERS]"
                                : "[p_ParseStartupDir_CURRENT USER]");
  std::vector<FileEntry> files;
  const Status status = listFiles(session_.files(), folder, files);
  for (const FileEntry& file : files) {
    // Windows does not start hidden files: every folder may hold a desktop.ini.
    if ((file.attributes & platform::FILE_ATTRIBUTE_HIDDEN) != 0) continue;
    session_.trace.dump("sSGExe$", file.name);
    StartupEntry entry;
    entry.area = area_;
    entry.name = entry.text = file.name;
    entry.command = entry.path = folder + '\\' + file.name;
    entry.origin = folder;
    entry.allUsers = allUsers;
    entry.isFile = true;
    entries.push_back(entry);
  }
  return status;
}

Status StartupFolders::p_ParseStartupDir(StartupEntries& entries) {
  session_.trace.enter("[p_ParseStartupDir] - ");
  session_.trace.dump("g_bProfile", session_.g_bProfile);
  Status status = listFolder(user_, false, entries);
  if (status == ERROR_SUCCESS && !isOneFolder()) status = listFolder(common_, true, entries);
  if (status != ERROR_SUCCESS) session_.trace.add("ERROR - p_ParseStartupDir");
  return status;
}

StartupEntry StartupFolders::switchedOffEntry(const std::string& fileName,
                                              const std::string& cameFrom) const {
  StartupEntry entry;
  entry.area = area_;
  entry.on = false;
  entry.record = fileName;
  entry.name = entry.text = cameFrom.empty() ? fileName : lastPart(cameFrom);
  entry.allUsers = !isOneFolder() && isOfAllUsers(cameFrom);
  entry.origin = entry.allUsers ? common_ : user_;
  entry.command = entry.origin + '\\' + entry.name;
  entry.isFile = true;
  return entry;
}

Status StartupFolders::listBackup(const std::string& folder, const std::vector<NamedValue>& records,
                                  StartupEntries& entries) {
  std::vector<FileEntry> files;
  const Status status = listFiles(session_.files(), folder, files);
  for (const FileEntry& file : files) {
    const auto record = std::ranges::find_if(
        records, [&](const NamedValue& one) { return sameName(one.name, file.name); });
    const bool known = record != records.end();
    StartupEntry entry =
        switchedOffEntry(known ? record->name : file.name, known ? shownText(record->value) : "");
    entry.path = folder + '\\' + file.name;
    entries.push_back(entry);
  }
  return status;
}

Status StartupFolders::switchedOff(StartupEntries& entries) {
  std::vector<NamedValue> records;
  Status status = store_.list(records);
  StartupEntries found;
  if (status == ERROR_SUCCESS) status = listBackup(ownFolder(kBackup), records, found);
  for (const std::string& folder : earlierFolders(session_.g_sRoot)) {
    if (status == ERROR_SUCCESS) status = listBackup(folder, records, found);
  }
  // A record whose file somebody took away can still be deleted.
  for (const NamedValue& record : records) {
    const bool hasFile = std::ranges::any_of(
        found, [&](const StartupEntry& entry) { return sameName(entry.record, record.name); });
    if (!hasFile) found.push_back(switchedOffEntry(record.name, shownText(record.value)));
  }
  std::stable_partition(found.begin(), found.end(),
                        [](const StartupEntry& entry) { return !entry.allUsers; });
  entries.insert(entries.end(), found.begin(), found.end());
  return status;
}

std::string StartupFolders::freeFileName(const std::string& wanted) const {
  const std::size_t dot = std::min(wanted.rfind('.'), wanted.size());
  std::string name = wanted;
  const auto isTaken = [this](const std::string& candidate) {
    engine::RawValue record;
    return session_.files().exists(path(kBackup, candidate)) ||
           session_.files().exists(path(kDeleted, candidate)) ||
           store_.find(candidate, record) == ERROR_SUCCESS;
  };
  for (int number = 2; isTaken(name); ++number) {
    name = fmt::format("{} ({}){}", wanted.substr(0, dot), number, wanted.substr(dot));
  }
  return name;
}

Status StartupFolders::records(const PendingMove& pending) {
  if (pending.step == kStepOff) return store_.keep(pending.name, textValue(pending.data));
  if (pending.step == kStepOn) return engine::missingIsFine(store_.drop(pending.name));
  if (pending.step == kStepTakeBack) {
    for (const TakenAway::Item& item : store_.deleted().items()) {
      if (item.id == pending.id) return store_.deleted().takeBack(item);
    }
    return ERROR_FILE_NOT_FOUND;
  }
  // Under the name of the file as it is kept; what earlier versions left may have no record.
  const std::string kept = lastPart(pending.to);
  Status status = engine::missingIsFine(store_.drop(pending.name));
  if (status == ERROR_SUCCESS) status = store_.keep(kept, textValue(pending.data));
  return status == ERROR_SUCCESS ? store_.forget(kept, lastPart(pending.data)) : status;
}

Status StartupFolders::move(const PendingMove& pending) {
  return PendingMoves(session_).carryOut(
      pending,
      [&](platform::FileChange& files) {
        Status status = makeFolder(files, parentOf(pending.to));
        if (status != ERROR_SUCCESS) return status;
        if (!files.exists(pending.to)) return files.move(pending.from, pending.to);
        bool same = false;
        status = sameFiles(pending.from, pending.to, same);
        if (status != ERROR_SUCCESS) return status;
        return same ? files.remove(pending.from) : ERROR_ALREADY_EXISTS;
      },
      [&] { return records(pending); });
}

Status StartupFolders::sameFiles(const std::string& one, const std::string& other,
                                 bool& same) const {
  std::string left;
  std::string right;
  Status status = session_.files().read(one, left);
  if (status == ERROR_SUCCESS) status = session_.files().read(other, right);
  same = left == right;
  return status;
}

Status StartupFolders::switchOff(const StartupEntry& entry) {
  bool there = false;
  const Status status = isThere(session_.files(), entry.path, there);
  if (status != ERROR_SUCCESS || !there) return there ? status : ERROR_FILE_NOT_FOUND;
  const std::string name = freeFileName(entry.name);
  return move({name_, kStepOff, name, entry.path, entry.path, path(kBackup, name), ""});
}

Status StartupFolders::switchOn(const StartupEntry& entry, Replace replace) {
  bool there = false;
  Status status = isThere(session_.files(), entry.path, there);
  if (status != ERROR_SUCCESS || !there) return there ? status : ERROR_FILE_NOT_FOUND;
  bool taken = false;
  bool same = false;
  status = isThere(session_.files(), entry.command, taken);
  if (status == ERROR_SUCCESS && taken) status = sameFiles(entry.path, entry.command, same);
  if (status != ERROR_SUCCESS) return status;
  if (taken && !same) {
    if (replace == Replace::No) return ERROR_ALREADY_EXISTS;
    StartupEntry other = entry;
    other.path = entry.command;
    status = switchOff(other);
    if (status != ERROR_SUCCESS) return status;
  }
  return move({name_, kStepOn, entry.record, entry.command, entry.path, entry.command, ""});
}

Status StartupFolders::forget(const StartupEntry& entry) {
  if (entry.path.empty()) {
    return inOneChange(session_, [&] { return store_.forget(entry.record, entry.name); });
  }
  bool there = false;
  const Status status = isThere(session_.files(), entry.path, there);
  if (status != ERROR_SUCCESS || !there) return there ? status : ERROR_FILE_NOT_FOUND;
  std::string name = entry.record;
  if (session_.files().exists(path(kDeleted, name))) name = freeFileName(name);
  return move(
      {name_, kStepDelete, entry.record, entry.command, entry.path, path(kDeleted, name), ""});
}

Status StartupFolders::takeBack(const TakenAway::Item& item) {
  const std::string from = path(kDeleted, item.value);
  const std::string to = path(kBackup, item.value);
  bool there = false;
  bool taken = false;
  Status status = isThere(session_.files(), from, there);
  if (status == ERROR_SUCCESS) status = isThere(session_.files(), to, taken);
  if (status != ERROR_SUCCESS) return status;
  if (taken) return ERROR_ALREADY_EXISTS;
  // One that had no file when it was deleted.
  if (!there) return StartupPlace::takeBack(item);
  return move({name_, kStepTakeBack, item.value, "", from, to, item.id});
}

Status StartupFolders::finish(const PendingMove& pending) {
  bool from = false;
  bool to = false;
  bool same = false;
  Status status = isThere(session_.files(), pending.from, from);
  if (status == ERROR_SUCCESS) status = isThere(session_.files(), pending.to, to);
  if (status == ERROR_SUCCESS && from && to) status = sameFiles(pending.from, pending.to, same);
  if (status == ERROR_SUCCESS && same) status = session_.files().remove(pending.from);
  if (status != ERROR_SUCCESS) return status;
  return PendingMoves(session_).end(to && (!from || same), [&] { return records(pending); });
}

Status StartupFolders::linkTo(const std::string& target, const std::string& shortPath,
                              std::string& bytes) const {
  // A shortcut to a shortcut starts what that one starts.
  if (isShortcut(target)) return session_.files().read(target, bytes);
  ShellLink link;
  std::vector<FileEntry> found;
  const Status status = session_.files().list(target, found);
  if (status != ERROR_SUCCESS || found.empty()) return status;
  link.size = static_cast<std::uint32_t>(found.front().size);
  const auto* page = platform::CodePage::find(session_.machine().describe().codePage);
  if (page == nullptr || !page->encode(shortPath, link.shortTarget)) link.shortTarget = shortPath;
  // What the code page cannot hold has a short name all the same.
  if (page == nullptr || !page->encode(target, link.target)) link.target = link.shortTarget;
  bytes = encodeShellLink(link);
  return status;
}

Status StartupFolders::add(const std::string& shortPath, const std::string& longPath) {
  const std::string name = "Shortcut to " + lastPart(longPath);
  const std::string file = user_ + '\\' + name + (isShortcut(name) ? "" : ".lnk");
  bool taken = false;
  Status status = isThere(session_.files(), file, taken);
  if (status == ERROR_SUCCESS && taken) return ERROR_ALREADY_EXISTS;
  std::string bytes;
  if (status == ERROR_SUCCESS) status = linkTo(longPath, shortPath, bytes);
  platform::FileChange files(session_.files());
  if (status == ERROR_SUCCESS) status = makeFolder(files, user_);
  if (status == ERROR_SUCCESS) status = files.replace(file, bytes);
  if (status == ERROR_SUCCESS) files.commit();
  return status;
}

void StartupFolders::p_ConsolidateStartupBackup() {
  session_.trace.enter("[p_ConsolidateStartupBackup]");
  for (const std::string& folder : earlierFolders(session_.g_sRoot)) {
    std::vector<FileEntry> files;
    Status status = listFiles(session_.files(), folder, files);
    for (const FileEntry& file : files) {
      if (status == ERROR_SUCCESS) status = makeFolder(session_.files(), ownFolder(kBackup));
      if (status != ERROR_SUCCESS) break;
      // Where the file's record has its name already, the name is the file's.
      const bool free = !session_.files().exists(path(kBackup, file.name)) &&
                        !session_.files().exists(path(kDeleted, file.name));
      const std::string name = free ? file.name : freeFileName(file.name);
      status = session_.files().move(folder + '\\' + file.name, path(kBackup, name));
    }
    if (status == ERROR_SUCCESS) continue;
    session_.trace.dump("lRetVal&", status);
    session_.trace.add("ERROR - p_ConsolidateStartupBackup");
  }
}

}  // namespace korvex::dialogs

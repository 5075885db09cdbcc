// Saved file types: what is in a folder, what restoring would change, and doing it.
//
// "keys.dat" in a folder that a restore has made lists the keys that it saved, under "[Kept]", and
// those that were not there then, under "[Absent]", each with its extension: "txtfile=.txt".
#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <set>
#include <utility>

#include "backup/associations.h"
#include "backup/folder_tree.h"
#include "backup/key_batches.h"
#include "backup/key_restore.h"
#include "platform/text/reg_names.h"
#include "platform/text/reg_parser.h"
#include "platform/text/text.h"

namespace korvex::backup {

using foundation::kCrLf;
using foundation::Session;
using namespace platform;

namespace {

constexpr std::string_view kKeysFile = "keys.dat";
constexpr std::string_view kBefore = "Before restore";
constexpr std::string_view kBeforeTakingBack = "Before taking back";

// The default value of the first key of a registry-editor file.
class FirstDefault : public RegTextSink {
 public:
  RegStep beginKey(std::size_t /*line*/, const KeyPath& path) override {
    if (!key.empty()) return RegStep::Stop;
    if (path.root == HKEY_CLASSES_ROOT) key = path.path;
    return RegStep::Done;
  }
  RegStep deleteKey(std::size_t /*line*/, const KeyPath& /*path*/) override {
    return RegStep::Stop;
  }
  RegStep setValue(std::size_t /*line*/, std::string_view name, RegType /*type*/,
                   std::string_view data) override {
    if (name.empty()) text = std::string(data.substr(0, data.find('\0')));
    return RegStep::Done;
  }
  RegStep deleteValue(std::size_t /*line*/, std::string_view /*name*/) override {
    return RegStep::Done;
  }
  void problem(std::size_t /*line*/, std::string_view /*text*/) override {}
  void note(std::size_t /*line*/, std::string_view /*text*/) override {}

  std::string key;
  std::string text;
};

FirstDefault readFirst(Session& session, const std::string& file) {
  FirstDefault sink;
  const CodePage* codePage = CodePage::find(session.machine().describe().codePage);
  if (codePage == nullptr) codePage = CodePage::find(1252);
  RegTextParser parser(sink, *codePage, ShortRoots::No);
  bool wanted = true;
  session.files().readPieces(file, [&](std::string_view piece) {
    if (wanted) wanted = parser.feed(piece);
    return ERROR_SUCCESS;
  });
  if (wanted) parser.finish();
  return sink;
}

// Names in keys.dat: what could end a key of the file, or is no plain text, stands as %XX.
std::string lineName(std::string_view name) {
  std::string line;
  for (const char c : name) {
    const bool plain =
        c > ' ' && c <= '~' && std::string_view("=%;[]").find(c) == std::string_view::npos;
    line += plain ? std::string(1, c) : fmt::format("%{:02X}", static_cast<unsigned char>(c));
  }
  return line;
}

// With the %XX of lines and of file names as what they stand for.
std::string decoded(std::string_view line) {
  std::string name;
  for (std::size_t i = 0; i < line.size(); ++i) {
    unsigned byte = 0;
    const bool isCode = line[i] == '%' && i + 3 <= line.size() &&
                        std::from_chars(line.data() + i + 1, line.data() + i + 3, byte, 16).ptr ==
                            line.data() + i + 3;
    name += isCode ? static_cast<char>(byte) : line[i];
    if (isCode) i += 2;
  }
  return name;
}

std::string keyOfFile(std::string_view file) {
  return decoded(file.substr(0, file.size() - std::string_view(".reg").size()));
}

// A key, and the extension with which it is restored.
using ListedKey = std::pair<std::string, std::string>;

std::vector<ListedKey> listedKeys(Session& session, const std::string& folder,
                                  std::string_view section) {
  std::vector<ListedKey> result;
  const std::string lines = session.machine().initFiles().GetPrivateProfileSectionA(
      section, fmt::format("{}\\{}", folder, kKeysFile));
  for (std::string_view rest = lines; !rest.empty();) {
    const std::string_view line = rest.substr(0, rest.find('\0'));
    rest.remove_prefix(std::min(rest.size(), line.size() + 1));
    const std::size_t equals = line.find('=');
    if (equals == std::string_view::npos || equals == 0) continue;
    const std::string key = decoded(line.substr(0, equals));
    if (key.find('\\') != std::string::npos) continue;
    result.emplace_back(key, decoded(line.substr(equals + 1)));
  }
  return result;
}

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
  void compareType(const FileType& type);
  void compareKey(const std::string& key, bool wasThere, RestoreItem& item,
                  std::vector<KeyRestore>& steps);
  void compareClass(const std::string& className, RestoreItem& item,
                    std::vector<KeyRestore>& steps);
  Status keep(const std::vector<KeyBackup>& keys, const std::vector<std::string>& extensions,
              const std::string& folder, const Progress& progress, std::string& message);

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
    const std::string line =
        fmt::format("{}={}\r\n", lineName(keys[i].subKey), lineName(extensions[i]));
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

RestoreOutcome AssociationOffer::restore(const std::vector<bool>& chosen,
                                         const Progress& progress) {
  session_.trace.enter("[frmFA.cmdRestore]");
  RestoreOutcome outcome;
  std::vector<KeyRestore> steps;
  std::vector<KeyBackup> keys;
  std::vector<std::string> extensions;
  std::set<std::string> seen;
  for (std::size_t i = 0; i < items_.size(); ++i) {
    if (i >= chosen.size() || !chosen[i] || !items_[i].restorable) continue;
    for (const KeyRestore& step : plans_[i]) {
      // A class that several types share is restored once.
      if (!seen.insert(foldName(step.key)).second) continue;
      steps.push_back(step);
      keys.push_back({step.root, step.key, associationFile(step.key)});
      extensions.push_back(items_[i].name);
    }
  }
  if (steps.empty()) return outcome;
  const auto fail = [&](Status status, const std::string& message) {
    outcome.status = status;
    outcome.cancelled = status == ERROR_CANCELLED;
    outcome.message =
        outcome.cancelled
            ? "The restore was cancelled. Nothing was changed."
            : fmt::format("{}{}Nothing was changed. Put the cause right and try again.", message,
                          kCrLf);
    return outcome;
  };
  std::string message;
  const std::string keeper = keeperFolder(session_, folder_);
  const auto half = [&progress](int percent) { return !progress || progress(percent / 2); };
  Status status = keep(keys, extensions, keeper, half, message);
  if (status != ERROR_SUCCESS) {
    return fail(status, fmt::format("What would be overwritten could not be saved first.{}{}",
                                    kCrLf, message));
  }
  RegistryChange change(session_.registry());
  status = change.status();
  for (std::size_t i = 0; i < steps.size() && status == ERROR_SUCCESS; ++i) {
    status = restoreSavedKey(session_, backer_, steps[i], message);
    const auto percent = static_cast<int>(50 + 50 * (i + 1) / steps.size());
    if (status == ERROR_SUCCESS && progress && !progress(percent)) status = ERROR_CANCELLED;
  }
  session_.trace.dump("lRetVal&", status);
  if (status == ERROR_SUCCESS) status = change.commit();
  if (status == ERROR_SUCCESS) status = session_.registry().flush();
  if (status != ERROR_SUCCESS) {
    if (message.empty()) message = session_.registry().lastRefusal();
    return fail(status, message.empty() ? describeStatus(status) + '.' : message);
  }
  outcome.savedAs = keeper;
  return outcome;
}

}  // namespace

std::string keeperFolder(const Session& session, const std::string& folder) {
  const bool takesBack = sameName(fileName(folder), kBefore);
  return fmt::format("{}\\{}", associationFolder(session), takesBack ? kBeforeTakingBack : kBefore);
}

std::vector<FileType> savedAssociations(Session& session, const std::string& folder) {
  std::vector<FileEntry> found;
  session.files().list(folder + "\\*.reg", found);
  std::vector<FileType> types;
  for (const FileEntry& entry : found) {
    if (!entry.name.starts_with('.') || (entry.attributes & FILE_ATTRIBUTE_DIRECTORY) != 0)
      continue;
    const FirstDefault first = readFirst(session, folder + '\\' + entry.name);
    // Its own key decides, not its name; but a damaged file must not go unnoticed.
    const std::string key = first.key.empty() ? keyOfFile(entry.name) : first.key;
    if (!key.starts_with('.') || !sameName(associationFile(key), entry.name)) continue;
    FileType type{key, first.text, ""};
    const std::string classFile = folder + '\\' + associationFile(type.className);
    if (!type.className.empty() && session.files().exists(classFile)) {
      type.description = readFirst(session, classFile).text;
    }
    types.push_back(std::move(type));
  }
  // Of some only the class was saved, or nothing, because nothing was there.
  for (const char* const section : {"Kept", "Absent"}) {
    for (const auto& [key, extension] : listedKeys(session, folder, section)) {
      const auto same = [&](const FileType& type) { return sameName(type.extension, extension); };
      if (std::ranges::none_of(types, same)) types.push_back({extension, "", ""});
    }
  }
  std::ranges::sort(types, {}, [](const FileType& type) { return foldName(type.extension); });
  return types;
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

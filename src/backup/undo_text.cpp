// Writing down what a restore is going to overwrite.
#include "backup/undo_text.h"

#include <fmt/format.h>

#include <limits>
#include <utility>

#include "platform/text/reg_names.h"
#include "platform/text/text.h"

namespace korvex::backup {

using namespace platform;

namespace {

constexpr std::size_t kPiece = std::size_t{64} * 1024;
constexpr std::uint32_t kNoneRepeated = std::numeric_limits<std::uint32_t>::max();

bool liesIn(std::string_view path, std::string_view key) {
  const std::string folded = foldName(path);
  const std::string top = foldName(key);
  return folded == top || folded.starts_with(top + '\\');
}

}  // namespace

UndoText::UndoText(Registry& registry, RegFormat format, const CodePage& codePage, Sink sink)
    : registry_(registry),
      writer_(format, codePage),
      probe_(format, codePage),
      sink_(std::move(sink)) {
  writer_.header();
}

void UndoText::add(const RegChange& change) {
  if (status_ != ERROR_SUCCESS) return;
  switch (change.kind) {
    case RegChange::Kind::NewKey:
      deleteNewKey(change);
      break;
    case RegChange::Kind::DeletedKey:
      keepTree(change);
      break;
    case RegChange::Kind::NewValue:
      deleteNewValue(change);
      break;
    case RegChange::Kind::ChangedValue:
      keepChangedValue(change);
      break;
    case RegChange::Kind::DeletedValue:
      keepDeletedValue(change);
      break;
  }
  handOver(kPiece);
}

Status UndoText::finish() {
  closeSection();
  handOver(1);
  return status_;
}

// The topmost key that is new takes everything beneath it along.
void UndoText::deleteNewKey(const RegChange& change) {
  if (change.root == newRoot_ && liesIn(change.path, newKey_)) return;
  newRoot_ = change.root;
  newKey_ = change.path;
  closeSection();
  expectWritten(writer_.deleteKey(fullKeyName(change.root, change.path)), change, "");
  writer_.endKey();
}

// What the restore makes in place of the key goes first.
void UndoText::keepTree(const RegChange& change) {
  closeSection();
  expectWritten(writer_.deleteKey(fullKeyName(change.root, change.path)), change, "");
  writer_.endKey();
  std::vector<std::string> pending{storedPath(change)};
  while (!pending.empty() && status_ == ERROR_SUCCESS) {
    const std::string path = std::move(pending.back());
    pending.pop_back();
    std::vector<std::string> children;
    keepKey(change, path, children);
    for (auto child = children.rbegin(); child != children.rend(); ++child) {
      pending.push_back(path + '\\' + *child);
    }
    handOver(kPiece);
  }
}

// The path with the last name as the registry has it: the file may have it in another case.
std::string UndoText::storedPath(const RegChange& change) {
  const std::size_t slash = change.path.rfind('\\');
  const std::size_t nameAt = slash == std::string::npos ? 0 : slash + 1;
  const std::string_view wanted = std::string_view(change.path).substr(nameAt);
  const OpenKey parent(registry_, change.root,
                       std::string_view(change.path).substr(0, nameAt == 0 ? 0 : slash), KEY_READ);
  char name[kNameBufferBytes];
  Status status = parent.status();
  for (std::uint32_t i = 0; status == ERROR_SUCCESS; ++i) {
    std::uint32_t length = sizeof name;
    status = registry_.RegEnumKeyExA(parent.get(), i, name, &length);
    if (status == ERROR_SUCCESS && sameName({name, length}, wanted)) {
      return change.path.substr(0, nameAt) + std::string(name, length);
    }
  }
  return change.path;
}

void UndoText::keepKey(const RegChange& top, const std::string& path,
                       std::vector<std::string>& children) {
  RegChange here;
  here.root = top.root;
  here.path = path;
  const OpenKey key(registry_, here.root, path, KEY_READ);
  if (key.status() != ERROR_SUCCESS) {
    fail(key.status(),
         fmt::format("{}: {}", fullKeyName(here.root, path), describeStatus(key.status())));
    return;
  }
  expectWritten(writer_.beginKey(fullKeyName(here.root, path)), here, "");
  Value value;
  for (std::uint32_t i = 0; readValue(key.get(), i, here, value); ++i) {
    expectWritten(writer_.value(value.name, value.type, value.data), here, value.name);
  }
  writer_.endKey();
  char name[kNameBufferBytes];
  Status status = status_;
  for (std::uint32_t i = 0; status == ERROR_SUCCESS; ++i) {
    std::uint32_t length = sizeof name;
    status = registry_.RegEnumKeyExA(key.get(), i, name, &length);
    if (status == ERROR_SUCCESS) children.emplace_back(name, length);
  }
  if (status != ERROR_NO_MORE_ITEMS) {
    fail(status, fmt::format("{}: {}", fullKeyName(here.root, path), describeStatus(status)));
  }
}

void UndoText::deleteNewValue(const RegChange& change) {
  if (openSection(change)) expectWritten(writer_.deleteValue(change.name), change, change.name);
}

void UndoText::keepChangedValue(const RegChange& change) {
  if (!openSection(change)) return;
  expectWritten(writer_.value(change.name, change.typeBefore, change.before), change, change.name);
}

void UndoText::keepDeletedValue(const RegChange& change) {
  if (!openSection(change)) return;
  expectWritten(probe_.value(change.name, change.typeBefore, change.before), change, change.name);
  probe_.clear();
  const OpenKey key(registry_, change.root, change.path, KEY_READ);
  if (status_ != ERROR_SUCCESS) return;
  if (key.status() == ERROR_SUCCESS) {
    repeatFollowing(key.get(), change);
  } else {
    fail(key.status(), fmt::format("{}: {}", fullKeyName(change.root, change.path),
                                   describeStatus(key.status())));
  }
}

// A value that comes back stands at the end of its key, so those behind it are put behind it again.
void UndoText::repeatFollowing(HKEY key, const RegChange& change) {
  Value value;
  std::uint32_t from = 0;
  while (readValue(key, from, change, value) && !sameName(value.name, change.name)) ++from;
  if (status_ != ERROR_SUCCESS || from >= repeatedFrom_) return;
  // A second time all of them: no order of deleting makes it more.
  if (repeatedFrom_ != kNoneRepeated) from = 0;
  repeatedFrom_ = from;
  for (std::uint32_t i = from; readValue(key, i, change, value); ++i) {
    // What the format cannot hold, and is not touched, keeps its place.
    const bool fits = probe_.value(value.name, value.type, value.data) == nullptr;
    probe_.clear();
    if (!fits) continue;
    if (!sameName(value.name, change.name)) {
      expectWritten(writer_.deleteValue(value.name), change, value.name);
    }
    expectWritten(writer_.value(value.name, value.type, value.data), change, value.name);
    handOver(kPiece);
  }
}

// False where there is nothing to write: the key is not there yet, and goes with all it will hold.
bool UndoText::openSection(const RegChange& change) {
  if (change.root == newRoot_ && !newKey_.empty() && liesIn(change.path, newKey_)) return false;
  if (inSection_ && change.root == sectionRoot_ && sameName(change.path, section_)) return true;
  closeSection();
  const OpenKey key(registry_, change.root, change.path, KEY_READ);
  if (key.status() == ERROR_FILE_NOT_FOUND) return false;
  expectWritten(writer_.beginKey(fullKeyName(change.root, change.path)), change, "");
  inSection_ = status_ == ERROR_SUCCESS;
  sectionRoot_ = change.root;
  section_ = change.path;
  repeatedFrom_ = kNoneRepeated;
  return inSection_;
}

void UndoText::closeSection() {
  if (inSection_) writer_.endKey();
  inSection_ = false;
}

// False at the end of the values, and after a failure.
bool UndoText::readValue(HKEY key, std::uint32_t index, const RegChange& change, Value& value) {
  char name[kNameBufferBytes];
  Status status = status_;
  while (status == ERROR_SUCCESS) {
    std::uint32_t length = sizeof name;
    std::uint32_t size = 0;
    status = registry_.RegEnumValueA(key, index, name, &length, &value.type, nullptr, &size);
    if (status != ERROR_SUCCESS) break;
    value.name.assign(name, length);
    value.data.resize(size + 1);  // a null buffer would only ask for the size
    status = registry_.RegQueryValueExA(key, value.name, &value.type, value.data.data(), &size);
    if (status == ERROR_SUCCESS) {
      value.data.resize(size);
      return true;
    }
    if (status == ERROR_MORE_DATA) status = ERROR_SUCCESS;  // it has grown meanwhile
  }
  if (status != ERROR_NO_MORE_ITEMS) {
    fail(status,
         fmt::format("{}: {}", fullKeyName(change.root, change.path), describeStatus(status)));
  }
  return false;
}

void UndoText::handOver(std::size_t atLeast) {
  if (status_ != ERROR_SUCCESS || writer_.bytes().size() < atLeast) return;
  const Status status = sink_(writer_.bytes());
  writer_.clear();
  if (status != ERROR_SUCCESS) fail(status, describeStatus(status));
}

void UndoText::fail(Status status, const std::string& message) {
  if (status_ != ERROR_SUCCESS || status == ERROR_SUCCESS) return;
  status_ = status;
  message_ = message;
}

void UndoText::expectWritten(const char* trouble, const RegChange& change, std::string_view name) {
  if (trouble == nullptr) return;
  const std::string key = fullKeyName(change.root, change.path);
  fail(ERROR_NO_UNICODE_TRANSLATION, name.empty()
                                         ? fmt::format("{}: {}", key, trouble)
                                         : fmt::format("{}: value \"{}\": {}", key, name, trouble));
}

}  // namespace korvex::backup

// The registry editor's export: a walk over key trees with a stack of its own.
#include "platform/common/reg_export.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <ostream>

#include "platform/common/whole_file.h"
#include "platform/text/reg_writer.h"
#include "platform/text/text.h"

namespace korvex::platform {
namespace {

using PieceSink = std::function<Status(std::string_view)>;

constexpr std::size_t kPiece = std::size_t{128} * 1024;
constexpr std::size_t kFirstDataBuffer = std::size_t{16} * 1024;
constexpr std::size_t kLargestNameBuffer = std::size_t{64} * 1024;
constexpr const char* kVanished = "it vanished meanwhile";
constexpr const char* kNoAccess = "it may not be read";

// What one key may meet while the rest can be exported; null for a failure of the registry.
const char* costsOneKey(Status status) {
  if (status == ERROR_FILE_NOT_FOUND || status == ERROR_KEY_DELETED) return kVanished;
  if (status == ERROR_ACCESS_DENIED) return kNoAccess;
  return nullptr;
}

class Exporter {
 public:
  Exporter(Registry& registry, const PieceSink& sink, const RegExportOptions& options,
           const CodePage& codePage, RegExportResult& result)
      : registry_(registry),
        sink_(sink),
        options_(options),
        result_(result),
        writer_(options.format, codePage),
        name_(kNameBufferBytes, '\0'),
        data_(kFirstDataBuffer, '\0') {}
  ~Exporter() {
    while (!levels_.empty()) leave();
  }
  Exporter(const Exporter&) = delete;
  Exporter& operator=(const Exporter&) = delete;

  Status run(const std::vector<KeyPath>& keys);

 private:
  // A key whose subkeys are being exported. children_ and names_ grow with each level and shrink
  // to the marks when it is left.
  struct Level {
    HKEY key;
    std::size_t pathLength;
    std::size_t nextChild;
    std::size_t childrenBegin;
    std::size_t namesBegin;
  };
  struct Child {  // places in names_
    std::size_t name;
    std::size_t folded;
    std::size_t end;
  };

  Status exportTree(const KeyPath& top);
  Status exportNextChild();
  Status enter(HKEY key);
  void leave();
  Status writeValues(HKEY key);
  Status writeDefaultValue(HKEY key);
  void writeValue(std::string_view name, RegType type, std::string_view data);
  Status listChildren(HKEY key);
  void sortChildren(std::size_t begin);
  Status handOver(std::size_t atLeast);
  void leaveOut(std::string_view what);

  std::string_view foldedName(const Child& child) const {
    return std::string_view(names_).substr(child.folded, child.end - child.folded);
  }

  Registry& registry_;
  const PieceSink& sink_;
  const RegExportOptions& options_;
  RegExportResult& result_;
  RegTextWriter writer_;
  std::string name_;  // buffers for the registry's answers
  std::string data_;
  std::string path_;  // full name of the key at hand
  std::string names_;
  std::vector<Child> children_;
  std::vector<Level> levels_;
};

Status Exporter::run(const std::vector<KeyPath>& keys) {
  writer_.header();
  for (const KeyPath& key : keys) {
    const Status status = exportTree(key);
    if (status != ERROR_SUCCESS) return status;
  }
  return handOver(1);
}

Status Exporter::exportTree(const KeyPath& top) {
  path_ = fullKeyName(top.root, top.path);
  HKEY key = 0;
  Status status = registry_.RegOpenKeyExA(top.root, top.path, KEY_READ, key);
  if (status == ERROR_SUCCESS) status = enter(key);
  while (status == ERROR_SUCCESS && !levels_.empty()) status = exportNextChild();
  if (status != ERROR_SUCCESS && result_.message.empty()) {
    result_.message = fmt::format("{}: {}", path_, describeStatus(status));
  }
  return status;
}

Status Exporter::exportNextChild() {
  Level& level = levels_.back();
  path_.resize(level.pathLength);
  if (level.nextChild == children_.size()) {
    leave();
    return ERROR_SUCCESS;
  }
  const Child child = children_[level.nextChild++];
  const auto name = std::string_view(names_).substr(child.name, child.folded - child.name);
  path_.append("\\").append(name);
  HKEY key = 0;
  const Status status = registry_.RegOpenKeyExA(level.key, name, KEY_READ, key);
  if (status == ERROR_SUCCESS) return enter(key);
  const char* reason = costsOneKey(status);
  if (reason == nullptr) return status;
  leaveOut(reason);
  return ERROR_SUCCESS;
}

// Writes the key and makes it the deepest level; takes the handle over.
Status Exporter::enter(HKEY key) {
  levels_.push_back({key, path_.size(), children_.size(), children_.size(), names_.size()});
  if (const char* trouble = writer_.beginKey(path_)) {
    leaveOut(trouble);
    leave();
    return ERROR_SUCCESS;
  }
  ++result_.keys;
  Status status = writeValues(key);
  writer_.endKey();
  if (status == ERROR_SUCCESS) status = listChildren(key);
  if (const char* reason = costsOneKey(status)) {
    leaveOut(reason);
    status = ERROR_SUCCESS;
  }
  return status == ERROR_SUCCESS ? handOver(kPiece) : status;
}

void Exporter::leave() {
  const Level& level = levels_.back();
  registry_.RegCloseKey(level.key);
  children_.resize(level.childrenBegin);
  names_.resize(level.namesBegin);
  levels_.pop_back();
}

Status Exporter::writeValues(HKEY key) {
  Status status = writeDefaultValue(key);
  std::uint32_t index = 0;
  while (status == ERROR_SUCCESS) {
    auto nameLength = static_cast<std::uint32_t>(name_.size());
    auto size = static_cast<std::uint32_t>(data_.size());
    RegType type = REG_NONE;
    status =
        registry_.RegEnumValueA(key, index, name_.data(), &nameLength, &type, data_.data(), &size);
    if (status == ERROR_SUCCESS) {
      if (nameLength != 0) writeValue({name_.data(), nameLength}, type, {data_.data(), size});
      ++index;
      status = handOver(kPiece);
    } else if (status == ERROR_MORE_DATA && size > data_.size()) {
      data_.resize(size);
      status = ERROR_SUCCESS;
    } else if (status == ERROR_MORE_DATA && name_.size() < kLargestNameBuffer) {
      name_.resize(2 * name_.size());
      status = ERROR_SUCCESS;
    }
  }
  return status == ERROR_NO_MORE_ITEMS ? ERROR_SUCCESS : status;
}

Status Exporter::writeDefaultValue(HKEY key) {
  while (true) {
    auto size = static_cast<std::uint32_t>(data_.size());
    RegType type = REG_NONE;
    const Status status = registry_.RegQueryValueExA(key, "", &type, data_.data(), &size);
    if (status == ERROR_MORE_DATA && size > data_.size()) {
      data_.resize(size);
      continue;
    }
    if (status == ERROR_SUCCESS) writeValue("", type, {data_.data(), size});
    return status == ERROR_FILE_NOT_FOUND ? ERROR_SUCCESS : status;
  }
}

void Exporter::writeValue(std::string_view name, RegType type, std::string_view data) {
  if (const char* trouble = writer_.value(name, type, data)) {
    leaveOut(fmt::format("value \"{}\": {}", name, trouble));
  } else {
    ++result_.values;
  }
}

Status Exporter::listChildren(HKEY key) {
  const std::size_t begin = children_.size();
  Status status = ERROR_SUCCESS;
  for (std::uint32_t index = 0; status == ERROR_SUCCESS;) {
    auto length = static_cast<std::uint32_t>(name_.size());
    status = registry_.RegEnumKeyExA(key, index, name_.data(), &length);
    if (status == ERROR_SUCCESS) {
      Child child{names_.size(), 0, 0};
      names_.append(name_, 0, length);
      child.folded = names_.size();
      appendFolded(std::string_view(name_).substr(0, length), names_);
      child.end = names_.size();
      children_.push_back(child);
      ++index;
    } else if (status == ERROR_MORE_DATA && name_.size() < kLargestNameBuffer) {
      name_.resize(2 * name_.size());
      status = ERROR_SUCCESS;
    }
  }
  sortChildren(begin);
  return status == ERROR_NO_MORE_ITEMS ? ERROR_SUCCESS : status;
}

// NT lists them sorted already, 95, 98 and Me as they were created.
void Exporter::sortChildren(std::size_t begin) {
  const auto first = children_.begin() + static_cast<std::ptrdiff_t>(begin);
  const auto before = [this](const Child& a, const Child& b) {
    return foldedName(a) < foldedName(b);
  };
  if (!std::is_sorted(first, children_.end(), before)) std::sort(first, children_.end(), before);
}

Status Exporter::handOver(std::size_t atLeast) {
  if (writer_.bytes().size() < atLeast) return ERROR_SUCCESS;
  const Status status = sink_(writer_.bytes());
  if (status != ERROR_SUCCESS) {
    result_.message = "the text cannot be written: " + describeStatus(status);
  }
  writer_.clear();
  return status;
}

void Exporter::leaveOut(std::string_view what) {
  ++result_.leftOutCount;
  if (result_.leftOut.size() < options_.messagesKept) {
    result_.leftOut.push_back(fmt::format("{}: {}", path_, what));
  }
}

}  // namespace

std::vector<KeyPath> wholeRegistry() { return {{HKEY_LOCAL_MACHINE, ""}, {HKEY_USERS, ""}}; }

RegExportResult exportRegPieces(Registry& registry, const std::vector<KeyPath>& keys,
                                const PieceSink& sink, const RegExportOptions& options) {
  RegExportResult result;
  const CodePage* codePage = CodePage::find(options.codePage);
  if (codePage == nullptr) {
    result.status = ERROR_INVALID_PARAMETER;
    result.message = fmt::format("code page {} is not known", options.codePage);
    return result;
  }
  Exporter exporter(registry, sink, options, *codePage, result);
  result.status = exporter.run(keys);
  return result;
}

RegExportResult exportRegText(Registry& registry, const std::vector<KeyPath>& keys,
                              std::ostream& sink, const RegExportOptions& options) {
  const auto write = [&sink](std::string_view piece) {
    sink.write(piece.data(), static_cast<std::streamsize>(piece.size()));
    return sink.flush() ? ERROR_SUCCESS : ERROR_GEN_FAILURE;
  };
  return exportRegPieces(registry, keys, write, options);
}

RegExportResult exportRegFile(Registry& registry, const std::vector<KeyPath>& keys,
                              const std::filesystem::path& file, const RegExportOptions& options) {
  WholeFileWriter writer(file);
  RegExportResult result;
  Status status = writer.status();
  if (status == ERROR_SUCCESS) {
    const auto write = [&writer](std::string_view piece) { return writer.write(piece); };
    result = exportRegPieces(registry, keys, write, options);
    if (result.status != ERROR_SUCCESS) return result;
    status = writer.commit();
  }
  if (status != ERROR_SUCCESS) {
    result.status = status;
    result.message = fmt::format("{}: {}", file.string(), describeStatus(status));
  }
  return result;
}

}  // namespace korvex::platform

// Comparing a registry-editor file with the registry, line by line.
#include "backup/reg_difference.h"

#include <fmt/format.h>

#include <algorithm>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <utility>

#include "platform/text/reg_names.h"
#include "platform/text/reg_parser.h"
#include "platform/text/text.h"

namespace korvex::backup {

using namespace platform;

namespace {

constexpr std::size_t kMostProblems = 100;

// path is the key itself, or lies beneath it.
bool liesIn(std::string_view path, std::string_view key) {
  if (key.empty() || sameName(path, key)) return true;
  std::size_t part = 0;
  const std::size_t depth = static_cast<std::size_t>(std::ranges::count(key, '\\')) + 1;
  std::size_t end = 0;
  for (; part < depth; ++part) {
    end = path.find('\\', end);
    if (end == std::string_view::npos) return false;
    ++end;
  }
  return sameName(path.substr(0, end - 1), key);
}

Status readValue(Registry& registry, HKEY key, std::string_view name, RegType& type,
                 std::string& data) {
  std::uint32_t size = 0;
  Status status = registry.RegQueryValueExA(key, name, &type, nullptr, &size);
  while (status == ERROR_SUCCESS) {
    data.resize(size);
    // A null buffer would only ask for the size.
    char none = 0;
    status = registry.RegQueryValueExA(key, name, &type, size == 0 ? &none : data.data(), &size);
    if (status == ERROR_SUCCESS) {
      data.resize(size);
      break;
    }
    if (status == ERROR_MORE_DATA) status = ERROR_SUCCESS;
  }
  return status;
}

// Hears the file and tells what is different.
class ComparingSink : public RegTextSink {
 public:
  ComparingSink(Registry& registry, const CompareOptions& options, RegDifference& result,
                const RegChangeSink& sink)
      : registry_(registry), options_(options), result_(result), sink_(sink) {}
  ~ComparingSink() override { closeKey(); }

  RegStep beginKey(std::size_t line, const KeyPath& key) override {
    closeKey();
    if (!isMine(key)) return RegStep::Refused;
    path_ = key.path;
    root_ = key.root;
    if (options_.extras == Extras::Remove) values_ = &listed_[foldName(path_)];
    const Status status = registry_.RegOpenKeyExA(root_, path_, KEY_READ, key_);
    isOpen_ = status == ERROR_SUCCESS;
    if (isOpen_) return RegStep::Done;
    if (status == ERROR_FILE_NOT_FOUND) {
      tellNewKeys();
      return RegStep::Done;
    }
    problem(line, fmt::format("{}: {}", fullKeyName(root_, path_), describeStatus(status)));
    return RegStep::Refused;
  }

  RegStep deleteKey(std::size_t /*line*/, const KeyPath& key) override {
    closeKey();
    if (!isMine(key)) return RegStep::Refused;
    if (OpenKey(registry_, key.root, key.path, KEY_READ).status() == ERROR_SUCCESS) {
      tell(change(RegChange::Kind::DeletedKey, key.root, key.path));
    }
    return RegStep::Done;
  }

  RegStep setValue(std::size_t line, std::string_view name, RegType type,
                   std::string_view data) override {
    if (values_ != nullptr) values_->insert(foldName(name));
    RegChange one = change(RegChange::Kind::NewValue, root_, path_, name);
    const Status status = isOpen_ ? readValue(registry_, key_, name, one.typeBefore, one.before)
                                  : ERROR_FILE_NOT_FOUND;
    if (status != ERROR_SUCCESS && status != ERROR_FILE_NOT_FOUND) {
      problem(line, fmt::format("\"{}\": {}", name, describeStatus(status)));
      return RegStep::Refused;
    }
    if (status == ERROR_SUCCESS) {
      if (one.typeBefore == type && one.before == data) return RegStep::Done;
      one.kind = RegChange::Kind::ChangedValue;
    }
    one.typeAfter = type;
    one.after = data;
    tell(one);
    return RegStep::Done;
  }

  RegStep deleteValue(std::size_t line, std::string_view name) override {
    RegChange one = change(RegChange::Kind::DeletedValue, root_, path_, name);
    if (!isOpen_) return RegStep::Done;
    const Status status = readValue(registry_, key_, name, one.typeBefore, one.before);
    if (status == ERROR_FILE_NOT_FOUND) return RegStep::Done;
    if (status != ERROR_SUCCESS) {
      problem(line, fmt::format("\"{}\": {}", name, describeStatus(status)));
      return RegStep::Refused;
    }
    tell(one);
    return RegStep::Done;
  }

  void problem(std::size_t line, std::string_view text) override {
    if (result_.problems.size() >= kMostProblems) return;
    result_.problems.push_back(options_.source.empty()
                                   ? fmt::format("line {}: {}", line, text)
                                   : fmt::format("{}:{}: {}", options_.source, line, text));
  }
  void note(std::size_t /*line*/, std::string_view /*text*/) override {}

  // After the file's end: what the registry has beyond it.
  Status removeExtras() {
    closeKey();
    const auto top = listed_.find(foldName(options_.within));
    if (top == listed_.end()) return ERROR_INVALID_DATA;
    const OpenKey opened(registry_, options_.root, options_.within, KEY_READ);
    if (opened.status() == ERROR_FILE_NOT_FOUND) return ERROR_SUCCESS;
    if (opened.status() != ERROR_SUCCESS) return opened.status();
    return compareKey(opened.get(), options_.within);
  }

 private:
  static RegChange change(RegChange::Kind kind, HKEY root, std::string_view path,
                          std::string_view name = {}) {
    RegChange one;
    one.kind = kind;
    one.root = root;
    one.path = path;
    one.name = name;
    return one;
  }

  void tell(const RegChange& one) {
    ++result_.changes;
    sink_(one);
  }

  bool isMine(const KeyPath& key) {
    if (options_.root == 0) return true;
    if (key.root == options_.root && liesIn(key.path, options_.within)) return true;
    if (result_.outside.empty()) result_.outside = fullKeyName(key.root, key.path);
    return false;
  }

  // The key and those above it that are missing too, each once while the file goes depth first.
  void tellNewKeys() {
    std::vector<std::string> missing;
    for (std::string_view path = path_; !path.empty();) {
      if (liesIn(newKey_, path) && root_ == newRoot_ && !newKey_.empty()) break;
      if (OpenKey(registry_, root_, path, KEY_READ).status() == ERROR_SUCCESS) break;
      missing.emplace_back(path);
      const std::size_t slash = path.rfind('\\');
      path = slash == std::string_view::npos ? std::string_view() : path.substr(0, slash);
    }
    for (auto path = missing.rbegin(); path != missing.rend(); ++path) {
      tell(change(RegChange::Kind::NewKey, root_, *path));
    }
    newKey_ = path_;
    newRoot_ = root_;
  }

  Status compareKey(HKEY key, const std::string& path) {
    Status status = compareValues(key, path);
    std::vector<std::string> children;
    char name[kNameBufferBytes];
    for (std::uint32_t i = 0; status == ERROR_SUCCESS; ++i) {
      std::uint32_t length = sizeof name;
      status = registry_.RegEnumKeyExA(key, i, name, &length);
      if (status == ERROR_SUCCESS) children.emplace_back(name, length);
    }
    if (status != ERROR_NO_MORE_ITEMS) return status;
    for (const std::string& child : children) {
      std::string childPath = path;
      if (!path.empty()) childPath += '\\';
      childPath += child;
      if (!listed_.contains(foldName(childPath))) {
        RegChange one = change(RegChange::Kind::DeletedKey, options_.root, childPath);
        one.extra = true;
        tell(one);
        continue;
      }
      const OpenKey opened(registry_, key, child, KEY_READ);
      status =
          opened.status() == ERROR_SUCCESS ? compareKey(opened.get(), childPath) : opened.status();
      if (status != ERROR_SUCCESS) return status;
    }
    return ERROR_SUCCESS;
  }

  Status compareValues(HKEY key, const std::string& path) {
    const std::set<std::string>& known = listed_[foldName(path)];
    char name[kNameBufferBytes];
    for (std::uint32_t i = 0;; ++i) {
      std::uint32_t length = sizeof name;
      Status status = registry_.RegEnumValueA(key, i, name, &length, nullptr, nullptr, nullptr);
      if (status == ERROR_NO_MORE_ITEMS) return ERROR_SUCCESS;
      if (status != ERROR_SUCCESS) return status;
      if (known.contains(foldName({name, length}))) continue;
      RegChange one = change(RegChange::Kind::DeletedValue, options_.root, path, {name, length});
      one.extra = true;
      status = readValue(registry_, key, one.name, one.typeBefore, one.before);
      if (status != ERROR_SUCCESS) return status;
      tell(one);
    }
  }

  void closeKey() {
    if (isOpen_) registry_.RegCloseKey(key_);
    isOpen_ = false;
    values_ = nullptr;
  }

  Registry& registry_;
  const CompareOptions& options_;
  RegDifference& result_;
  const RegChangeSink& sink_;

  HKEY root_ = 0;
  HKEY key_ = 0;
  bool isOpen_ = false;
  std::string path_;
  std::string newKey_;  // the last one that was told as new
  HKEY newRoot_ = 0;
  // What the file lists, by folded key; for the extras.
  std::map<std::string, std::set<std::string>> listed_;
  std::set<std::string>* values_ = nullptr;
};

std::string typeName(RegType type) {
  switch (type) {
    case REG_NONE:
      return "REG_NONE";
    case REG_SZ:
      return "REG_SZ";
    case REG_EXPAND_SZ:
      return "REG_EXPAND_SZ";
    case REG_BINARY:
      return "REG_BINARY";
    case REG_DWORD:
      return "REG_DWORD";
    case REG_DWORD_BIG_ENDIAN:
      return "REG_DWORD_BIG_ENDIAN";
    case REG_LINK:
      return "REG_LINK";
    case REG_MULTI_SZ:
      return "REG_MULTI_SZ";
    case REG_QWORD:
      return "REG_QWORD";
    default:
      return fmt::format("type 0x{:x}", type);
  }
}

constexpr std::size_t kMostShown = 80;

std::string shownText(std::string_view text) {
  std::string shown = "\"";
  for (const char c : text) {
    if (shown.size() > kMostShown && (c & 0xC0) != 0x80) return shown + "\" ...";
    if (c == '\0') {
      shown += "\", \"";
    } else {
      shown += c >= 0 && c < ' ' ? ' ' : c;
    }
  }
  return shown + '"';
}

std::string shownBytes(std::string_view data) {
  std::string shown;
  for (const char c : data.substr(0, kMostShown / 3)) {
    shown += fmt::format("{}{:02x}", shown.empty() ? "" : " ", static_cast<unsigned char>(c));
  }
  if (data.size() > kMostShown / 3) shown += fmt::format(" ... ({} bytes)", data.size());
  return shown;
}

}  // namespace

std::string describeData(RegType type, std::string_view data) {
  const bool isText = type == REG_SZ || type == REG_EXPAND_SZ || type == REG_MULTI_SZ;
  std::string shown;
  if (isText) {
    while (!data.empty() && data.back() == '\0') data.remove_suffix(1);
    shown = shownText(data);
  } else if (type == REG_DWORD && data.size() == 4) {
    std::uint32_t number = 0;
    for (int i = 3; i >= 0; --i) {
      number = number << 8 | static_cast<unsigned char>(data[static_cast<std::size_t>(i)]);
    }
    shown = fmt::format("0x{:x}", number);
  } else {
    shown = shownBytes(data);
  }
  return shown.empty() ? typeName(type) : fmt::format("{} {}", typeName(type), shown);
}

RegDifference compareRegText(Registry& registry, const RegPieces& text,
                             const CompareOptions& options, const RegChangeSink& sink) {
  RegDifference result;
  const auto fail = [&result](Status status, std::string message) {
    result.status = status;
    result.message = std::move(message);
    return result;
  };
  const CodePage* const codePage = CodePage::find(options.codePage);
  if (codePage == nullptr) {
    return fail(ERROR_INVALID_PARAMETER,
                fmt::format("code page {} is not known", options.codePage));
  }
  ComparingSink comparing(registry, options, result, sink);
  RegTextParser parser(comparing, *codePage, ShortRoots::No);
  bool wanted = true;
  const Status status = text([&](std::string_view piece) {
    if (wanted) wanted = parser.feed(piece);
    return ERROR_SUCCESS;
  });
  if (status != ERROR_SUCCESS) return fail(status, "it cannot be read: " + describeStatus(status));
  if (wanted) parser.finish();
  if (!parser.headerAccepted()) {
    return fail(ERROR_NOT_REGISTRY_FILE, "it is no registry-editor file");
  }
  if (options.extras == Extras::Keep) return result;
  const Status compared = comparing.removeExtras();
  if (compared == ERROR_SUCCESS) return result;
  return fail(
      compared,
      compared == ERROR_INVALID_DATA
          ? fmt::format("it does not hold the key {}", fullKeyName(options.root, options.within))
          : fmt::format("the registry cannot be read: {}", describeStatus(compared)));
}

RegDifference compareRegFile(foundation::Session& session, std::string_view file,
                             CompareOptions options, const RegChangeSink& sink) {
  options.codePage = session.machine().describe().codePage;
  const RegPieces pieces = [&](const std::function<Status(std::string_view)>& take) {
    return session.files().readPieces(file, take);
  };
  return compareRegText(session.registry(), pieces, options, sink);
}

}  // namespace korvex::backup

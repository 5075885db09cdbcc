// Changes are gathered and put into the text when it is asked for: keys that were added get their
// places, blocks that were touched their new lines and the time.
#include "platform/wine/wine_text_edit.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <iterator>
#include <set>
#include <unordered_map>
#include <utility>

#include "platform/common/host_folder.h"
#include "platform/common/whole_file.h"
#include "platform/text/text.h"
#include "platform/wine/wine_text_stamp.h"
#include "platform/wine/wine_text_values.h"

namespace korvex::platform {

namespace {

constexpr std::size_t kWrittenAtOnce = 1 << 20;

class WineTextEdit : public HiveEdit {
 public:
  explicit WineTextEdit(const WineTextTree& tree)
      : tree_(std::make_shared<WineTextTree>(tree)), firstAdded_(tree_->keyCount()) {}

  Status addKey(HiveNode parent, std::string_view name, HiveNode& key) override;
  Status removeTree(HiveNode key) override;
  Status setValue(HiveNode key, const HiveValue& value) override;
  Status deleteValue(HiveNode key, std::string_view name) override;
  Status write(int file) override;
  std::unique_ptr<HiveFile> finish() override;

 private:
  using Number = std::uint32_t;

  WineKeyLines& linesOf(Number key);
  void settle();
  void sortAdded(Number parent);
  void placeBelow(Number parent);
  void place(Number key);
  Number blockAfter(Number key) const;
  std::string pathOf(Number key) const;

  std::shared_ptr<WineTextTree> tree_;
  Number firstAdded_;  // keys from here on have no block yet
  std::set<Number> touched_;
  std::set<Number> withAdded_;  // older keys, below which some were added
  std::vector<Number> bare_;    // without a block, and one of their children was removed
  std::unordered_map<Number, WineKeyLines> lines_;
};

Status WineTextEdit::addKey(HiveNode parent, std::string_view name, HiveNode& key) {
  if (!tree_->stands(parent)) return ERROR_KEY_DELETED;
  if (name.empty() || name.find('\\') != std::string_view::npos ||
      name.find('\0') != std::string_view::npos) {
    return ERROR_INVALID_NAME;
  }
  const auto above = static_cast<Number>(parent);
  if (characterCount(name) > kMaxNameCharacters || tree_->depthOf(above) >= kMostWineLevels) {
    return ERROR_FILENAME_EXCED_RANGE;
  }
  key = tree_->addKey(above, name);
  if (above < firstAdded_) withAdded_.insert(above);
  touched_.insert(above);
  return ERROR_SUCCESS;
}

Status WineTextEdit::removeTree(HiveNode node) {
  if (!tree_->stands(node)) return ERROR_KEY_DELETED;
  if (node == kWineRoot) return ERROR_ACCESS_DENIED;
  const auto top = static_cast<Number>(node);
  const Number parent = tree_->key(top).parent;
  tree_->removeTree(top);
  touched_.insert(parent);
  if (parent < firstAdded_ && tree_->key(parent).firstBlock == 0) bare_.push_back(parent);
  return ERROR_SUCCESS;
}

WineKeyLines& WineTextEdit::linesOf(Number key) {
  const auto [place, isNew] = lines_.try_emplace(key);
  if (!isNew) return place->second;
  Number block = tree_->key(key).firstBlock;
  for (; block != 0; block = tree_->block(block).nextOfKey) {
    if (block == tree_->lastBlock()) tree_->closeEnd();
    place->second.addBlock(block, tree_->block(block).text);
  }
  return place->second;
}

Status WineTextEdit::setValue(HiveNode key, const HiveValue& value) {
  if (!tree_->stands(key)) return ERROR_KEY_DELETED;
  linesOf(static_cast<Number>(key)).set(value);
  touched_.insert(static_cast<Number>(key));
  return ERROR_SUCCESS;
}

Status WineTextEdit::deleteValue(HiveNode key, std::string_view name) {
  if (!tree_->stands(key)) return ERROR_KEY_DELETED;
  if (!linesOf(static_cast<Number>(key)).remove(name)) return ERROR_FILE_NOT_FOUND;
  touched_.insert(static_cast<Number>(key));
  return ERROR_SUCCESS;
}

// Children that were added stand at the end until they are put among the others.
void WineTextEdit::sortAdded(Number parent) {
  struct Child {
    Number key;
    std::string order;
  };
  std::vector<Child> older;
  std::vector<Child> added;
  for (Number each = tree_->key(parent).firstChild; each != 0; each = tree_->key(each).next) {
    (each < firstAdded_ ? older : added).push_back({each, wineOrder(tree_->key(each).name)});
  }
  const auto isBefore = [](const Child& a, const Child& b) { return a.order < b.order; };
  std::stable_sort(added.begin(), added.end(), isBefore);
  std::vector<Child> all;
  std::merge(older.begin(), older.end(), added.begin(), added.end(), std::back_inserter(all),
             isBefore);
  std::vector<Number> order;
  order.reserve(all.size());
  for (const Child& each : all) order.push_back(each.key);
  tree_->setChildren(parent, order);
}

// From the last one to the first, so that each finds its place before the one behind it.
void WineTextEdit::placeBelow(Number parent) {
  sortAdded(parent);
  Number next = 0;
  for (Number each = tree_->key(parent).lastChild; each != 0; each = next) {
    next = tree_->key(each).previous;
    if (each < firstAdded_) continue;
    placeBelow(each);
    place(each);
  }
}

// Keys without values need no place of their own when there are keys below them.
void WineTextEdit::place(Number key) {
  if (!tree_->stands(key) || tree_->key(key).firstBlock != 0) return;
  const auto lines = lines_.find(key);
  const bool hasValues = lines != lines_.end() && lines->second.hasNewValues();
  if (!hasValues && tree_->key(key).firstChild != 0) return;
  std::string text = newWineBlock(pathOf(key));
  if (hasValues) text += lines->second.renderNew();
  tree_->insertBlock(blockAfter(key), key, std::move(text));
}

// The block before which a key's own must stand.
WineTextEdit::Number WineTextEdit::blockAfter(Number key) const {
  if (const Number block = tree_->firstBlockOf(key)) return block;
  for (; key != kWineRoot; key = tree_->key(key).parent) {
    for (Number each = tree_->key(key).next; each != 0; each = tree_->key(each).next) {
      if (const Number block = tree_->firstBlockOf(each)) return block;
    }
  }
  return 0;
}

std::string WineTextEdit::pathOf(Number key) const {
  std::vector<Number> keys;
  for (; key != kWineRoot; key = tree_->key(key).parent) keys.push_back(key);
  std::string path;
  for (std::size_t i = keys.size(); i-- > 0;) {
    if (!path.empty()) path += '\\';
    path += tree_->key(keys[i]).name;
  }
  return path;
}

void WineTextEdit::settle() {
  for (const auto& [key, lines] : lines_) {
    if (!tree_->stands(key)) continue;
    lines.render(
        [this](Number block, std::string text) { tree_->setText(block, std::move(text)); });
  }
  for (const Number key : touched_) {
    const Number block = tree_->key(key).firstBlock;
    if (block == 0 || !tree_->stands(key)) continue;
    if (block == tree_->lastBlock()) tree_->closeEnd();
    tree_->setText(block, stampedWineBlock(tree_->block(block).text));
  }
  for (auto key = withAdded_.rbegin(); key != withAdded_.rend(); ++key) {
    if (tree_->stands(*key)) placeBelow(*key);
  }
  for (auto key = bare_.rbegin(); key != bare_.rend(); ++key) place(*key);
  for (const auto& [key, lines] : lines_) place(key);
  firstAdded_ = tree_->keyCount();
  touched_.clear();
  withAdded_.clear();
  bare_.clear();
  lines_.clear();
}

Status WineTextEdit::write(int file) {
  settle();
  std::string waiting;
  Number block = 0;
  do {
    const std::string_view text = tree_->block(block).text;
    waiting += text;
    block = tree_->block(block).next;
    if (waiting.size() < kWrittenAtOnce && block != 0) continue;
    if (const Status status = writeAll(file, waiting)) return status;
    waiting.clear();
  } while (block != 0);
  return ERROR_SUCCESS;
}

std::unique_ptr<HiveFile> WineTextEdit::finish() {
  settle();
  return makeWineTextHive(std::move(tree_), {});
}

}  // namespace

std::unique_ptr<HiveEdit> startWineTextEdit(const WineTextTree& tree) {
  return std::make_unique<WineTextEdit>(tree);
}

}  // namespace korvex::platform

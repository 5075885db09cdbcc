// Reads a file of Wine's registry text once, from its start to its end, and tells what is in it.
#include "platform/wine/wine_text_tree.h"

#include <unordered_map>
#include <utility>

#include "platform/text/text.h"
#include "platform/wine/wine_text_lines.h"

namespace korvex::platform {

namespace {

bool canBeNamed(std::string_view name) {
  return name.find('\0') == std::string_view::npos &&
         (name.size() <= kMaxNameCharacters || characterCount(name) <= kMaxNameCharacters);
}

// Wine takes several backslashes for one.
void splitPath(std::string_view path, std::vector<std::string_view>& parts) {
  parts.clear();
  while (!path.empty()) {
    const std::size_t end = path.find('\\');
    if (end != 0) parts.push_back(path.substr(0, end));
    if (end == std::string_view::npos) break;
    path.remove_prefix(end + 1);
  }
}

}  // namespace

std::string withVisibleNul(std::string name) {
  for (std::size_t at = 0; (at = name.find('\0', at)) != std::string::npos;) {
    name.replace(at, 1, "\xE2\x90\x80");
  }
  return name;
}

// What reading keeps on its way through the file.
struct WineTextTree::Reading {
  std::unordered_map<std::string, std::uint32_t> index;  // by parent and folded name
  std::string indexKey;
  // The last path, part by part: the next one mostly begins in the same way.
  std::vector<std::pair<std::string, std::uint32_t>> last;
  std::vector<std::string_view> parts;
  std::vector<std::uint32_t> lastBlockOf;  // by key

  std::size_t begin = 0;  // of the block that is being read
  std::uint32_t key = 0;
  bool isLink = false;
};

WineTextTree::WineTextTree(std::shared_ptr<const std::string> bytes) : bytes_(std::move(bytes)) {
  keys_.resize(2);
  readBlocks();
}

void WineTextTree::readBlocks() {
  constexpr std::size_t kNone = std::string_view::npos;
  Reading reading;
  WineLines lines(*bytes_);
  WineRecord record;
  std::string path;
  std::size_t blanks = kNone;  // where the blank lines before this one begin
  for (std::size_t at = 0; lines.next(reading.key != 0, record); at = lines.position()) {
    if (record.kind == WineRecord::Kind::Blank) {
      if (blanks == kNone) blanks = at;
      continue;
    }
    if (record.kind == WineRecord::Kind::Header) {
      addBlock(reading, blanks == kNone ? at : blanks);
      std::size_t end = 0;
      const bool isPath = readWinePath(record.line, end, path);
      reading.key = isPath ? keyOfPath(reading, path) : 0;
      reading.isLink = false;
    } else if (record.kind == WineRecord::Kind::Option) {
      const std::size_t first = skipWineBlanks(record.line, 0);
      if (record.line.substr(first).starts_with("#link")) reading.isLink = true;
    }
    blanks = kNone;
  }
  addBlock(reading, bytes_->size());
  if (!bytes_->ends_with('\n')) closing_ = '\n';
  // No byte: the value that is cut off stays one that cannot be read.
  if (record.isCutOff) closing_ += ";\n";
}

void WineTextTree::addBlock(Reading& reading, std::size_t end) {
  const auto number = static_cast<std::uint32_t>(blocks_.size());
  WineBlock& block = blocks_.emplace_back();
  block.text = std::string_view(*bytes_).substr(reading.begin, end - reading.begin);
  reading.begin = end;
  if (number != 0) blocks_[lastBlock_].next = number;
  block.previous = lastBlock_;
  lastBlock_ = number;
  if (reading.key == 0) return;
  block.key = reading.key;
  WineKey& key = keys_[reading.key];
  key.isLink = key.isLink || reading.isLink;
  reading.lastBlockOf.resize(keys_.size());
  std::uint32_t& before = reading.lastBlockOf[reading.key];
  (before == 0 ? key.firstBlock : blocks_[before].nextOfKey) = number;
  before = number;
}

std::uint32_t WineTextTree::keyOfPath(Reading& reading, std::string_view path) {
  splitPath(path, reading.parts);
  const std::vector<std::string_view>& parts = reading.parts;
  if (parts.size() > kMostWineLevels) return 0;
  std::size_t same = 0;
  while (same < parts.size() && same < reading.last.size() &&
         parts[same] == reading.last[same].first) {
    ++same;
  }
  reading.last.resize(same);
  std::uint32_t key = same == 0 ? kWineRoot : reading.last[same - 1].second;
  for (; same < parts.size(); ++same) {
    reading.indexKey.assign(reinterpret_cast<const char*>(&key), sizeof key);
    appendFolded(parts[same], reading.indexKey);
    std::uint32_t& known = reading.index[reading.indexKey];
    if (known == 0) known = linkKey(key, parts[same]);
    key = known;
    reading.last.emplace_back(parts[same], key);
  }
  return key;
}

std::uint32_t WineTextTree::linkKey(std::uint32_t parent, std::string_view name) {
  const std::uint32_t number = keyCount();
  WineKey& key = keys_.emplace_back();
  WineKey& above = keys_[parent];
  key.name = name;
  key.isHidden = !canBeNamed(name);
  key.parent = parent;
  key.previous = above.lastChild;
  (above.lastChild == 0 ? above.firstChild : keys_[above.lastChild].next) = number;
  above.lastChild = number;
  return number;
}

std::uint32_t WineTextTree::firstBlockOf(std::uint32_t key) const {
  while (key != 0 && keys_[key].firstBlock == 0) key = keys_[key].firstChild;
  return keys_[key].firstBlock;
}

std::size_t WineTextTree::depthOf(std::uint32_t key) const {
  std::size_t depth = 0;
  for (; key != kWineRoot; key = keys_[key].parent) ++depth;
  return depth;
}

void WineTextTree::children(std::uint32_t key, std::vector<HiveChild>& children) const {
  children.clear();
  for (std::uint32_t each = keys_[key].firstChild; each != 0; each = keys_[each].next) {
    const WineKey& child = keys_[each];
    if (!child.isHidden) children.push_back({each, child.name, child.isLink});
  }
}

void WineTextTree::values(std::uint32_t key, std::vector<HiveValue>& values) const {
  values.clear();
  std::unordered_map<std::string, std::size_t> known;
  WineRecord record;
  for (std::uint32_t each = keys_[key].firstBlock; each != 0; each = blocks_[each].nextOfKey) {
    WineLines lines(blocks_[each].text);
    while (lines.next(true, record)) {
      if (record.kind != WineRecord::Kind::Value || !record.isReadable) continue;
      const auto [place, isNew] = known.emplace(foldName(record.value.name), values.size());
      if (isNew) {
        values.push_back(record.value);
        values.back().name = withVisibleNul(std::move(values.back().name));
      } else {
        values[place->second].type = record.value.type;
        values[place->second].data = record.value.data;
      }
    }
  }
}

Status WineTextTree::linkTarget(std::uint32_t key, std::string& target) const {
  if (!keys_[key].isLink) return ERROR_FILE_NOT_FOUND;
  std::vector<HiveValue> all;
  values(key, all);
  for (const HiveValue& value : all) {
    if (value.type != REG_LINK || !sameName(value.name, "SymbolicLinkValue")) continue;
    target = utf16leToUtf8(value.data);
    while (target.ends_with('\0')) target.pop_back();
    return ERROR_SUCCESS;
  }
  return ERROR_BADDB;
}

std::uint32_t WineTextTree::addKey(std::uint32_t parent, std::string_view name) {
  return linkKey(parent, name);
}

void WineTextTree::removeTree(std::uint32_t top) {
  const WineKey& first = keys_[top];
  WineKey& parent = keys_[first.parent];
  (first.previous == 0 ? parent.firstChild : keys_[first.previous].next) = first.next;
  (first.next == 0 ? parent.lastChild : keys_[first.next].previous) = first.previous;
  std::vector<std::uint32_t> waiting{top};
  while (!waiting.empty()) {
    WineKey& key = keys_[waiting.back()];
    waiting.pop_back();
    key.isGone = true;
    for (std::uint32_t each = key.firstBlock; each != 0;) {
      const std::uint32_t next = blocks_[each].nextOfKey;
      removeBlock(each);
      each = next;
    }
    for (std::uint32_t each = key.firstChild; each != 0; each = keys_[each].next) {
      waiting.push_back(each);
    }
  }
}

void WineTextTree::setChildren(std::uint32_t parent, const std::vector<std::uint32_t>& children) {
  std::uint32_t previous = 0;
  for (const std::uint32_t each : children) {
    (previous == 0 ? keys_[parent].firstChild : keys_[previous].next) = each;
    keys_[each].previous = previous;
    keys_[each].next = 0;
    previous = each;
  }
  keys_[parent].lastChild = previous;
}

void WineTextTree::insertBlock(std::uint32_t before, std::uint32_t key, std::string text) {
  if (before == 0) closeEnd();
  const auto number = static_cast<std::uint32_t>(blocks_.size());
  WineBlock& block = blocks_.emplace_back();
  block.key = key;
  keys_[key].firstBlock = number;
  block.next = before;
  block.previous = before == 0 ? lastBlock_ : blocks_[before].previous;
  blocks_[block.previous].next = number;
  (before == 0 ? lastBlock_ : blocks_[before].previous) = number;
  setText(number, std::move(text));
}

void WineTextTree::setText(std::uint32_t block, std::string text) {
  auto owned = std::make_shared<const std::string>(std::move(text));
  blocks_[block].text = *owned;
  blocks_[block].owned = std::move(owned);
}

void WineTextTree::removeBlock(std::uint32_t number) {
  WineBlock& block = blocks_[number];
  blocks_[block.previous].next = block.next;
  (block.next == 0 ? lastBlock_ : blocks_[block.next].previous) = block.previous;
  if (block.next == 0) closing_.clear();
  block = {};
}

void WineTextTree::closeEnd() {
  if (closing_.empty()) return;
  setText(lastBlock_, std::string(blocks_[lastBlock_].text) + closing_);
  closing_.clear();
}

}  // namespace korvex::platform

// Value lines are replaced one by one; all others of the key's block stay as they are.
#include "platform/wine/wine_text_values.h"

#include <algorithm>
#include <utility>

#include "platform/text/text.h"
#include "platform/wine/wine_text_tree.h"

namespace korvex::platform {

// Wine compares small letters, which matters for what stands between both alphabets: "_".
std::string wineOrder(std::string_view name) {
  std::string order = foldName(name);
  for (char& c : order) {
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c | 0x20);
  }
  return order;
}

void WineKeyLines::addBlock(std::uint32_t number, std::string_view text) {
  const std::size_t index = blocks_.size();
  Block& block = blocks_.emplace_back();
  block.number = number;
  WineLines lines(text);
  WineRecord record;
  while (lines.next(true, record)) {
    Line& line = block.lines.emplace_back();
    line.bytes = record.bytes;
    line.kind = record.kind;
    if (record.kind != WineRecord::Kind::Value) continue;
    line.prefix = record.prefix;
    line.isReadable = record.isReadable;
    line.order = wineOrder(record.value.name);
    byName_[foldName(record.value.name)].push_back({index, block.lines.size() - 1});
  }
}

// A name with a NUL is told with a symbol in its place, and found by that.
WineKeyLines::Places* WineKeyLines::placesOf(std::string_view name) {
  constexpr std::string_view kSymbol = "\xE2\x90\x80";
  std::string folded = foldName(name);
  auto found = byName_.find(folded);
  if (found == byName_.end() && folded.find(kSymbol) != std::string::npos) {
    for (std::size_t at = 0; (at = folded.find(kSymbol, at)) != std::string::npos; ++at) {
      folded.replace(at, kSymbol.size(), 1, '\0');
    }
    found = byName_.find(folded);
  }
  return found == byName_.end() ? nullptr : &found->second;
}

void WineKeyLines::set(const HiveValue& value) {
  Places* const places = placesOf(value.name);
  if (places == nullptr) {
    std::string& line = added_[wineOrder(value.name)];
    line.clear();
    appendWineName(value.name, line);
    appendWineData(value, line.size(), line);
    return;
  }
  const auto readable = std::find_if(places->begin(), places->end(), [this](Place place) {
    return at(place).isReadable && !at(place).isGone;
  });
  for (const Place place : *places) at(place).isGone = true;
  Line& line = at(readable == places->end() ? places->front() : *readable);
  std::string text;
  if (readable == places->end()) {
    appendWineName(value.name, text);
  } else {
    text = line.text().substr(0, line.prefix);
  }
  line.prefix = text.size();
  line.isGone = false;
  line.isReadable = true;
  appendWineData(value, line.prefix, text);
  line.replaced = std::move(text);
}

bool WineKeyLines::remove(std::string_view name) {
  Places* const places = placesOf(name);
  if (places == nullptr) return added_.erase(wineOrder(name)) != 0;
  bool wasThere = false;
  for (const Place place : *places) {
    wasThere = wasThere || (at(place).isReadable && !at(place).isGone);
  }
  if (!wasThere) return false;
  for (const Place place : *places) at(place).isGone = true;
  return true;
}

std::string WineKeyLines::textOf(const Block& block, bool withAdded) const {
  bool isSorted = true;
  const Line* before = nullptr;
  std::size_t end = 0;  // behind the header, the options and the values
  for (std::size_t i = 0; i < block.lines.size(); ++i) {
    const Line& line = block.lines[i];
    if (line.kind != WineRecord::Kind::Blank && line.kind != WineRecord::Kind::Other) end = i + 1;
    if (line.kind != WineRecord::Kind::Value) continue;
    isSorted = isSorted && (before == nullptr || before->order <= line.order);
    before = &line;
  }
  std::string text;
  auto next = withAdded ? added_.begin() : added_.end();
  for (std::size_t i = 0; i < block.lines.size(); ++i) {
    const Line& line = block.lines[i];
    const bool isPlace = isSorted && line.kind == WineRecord::Kind::Value;
    while (next != added_.end() && (i == end || (isPlace && next->first < line.order))) {
      text += (next++)->second;
    }
    if (line.isGone) continue;
    text += line.text();
  }
  while (next != added_.end()) text += (next++)->second;
  return text;
}

std::string WineKeyLines::renderNew() const {
  std::string text;
  for (const auto& [order, line] : added_) text += line;
  return text;
}

}  // namespace korvex::platform

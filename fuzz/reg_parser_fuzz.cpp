// Feeds arbitrary bytes to the parser of registry-editor files. Beyond not crashing: the result
// must not depend on where blocks end, and what was read must come back from what is written of it.
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>
#include <tuple>
#include <vector>

#include "platform/text/reg_parser.h"
#include "platform/text/reg_writer.h"

namespace {

using namespace korvex::platform;

struct Entry {
  std::string key;  // in full; a value's name and data are with it
  bool isValue = false;
  std::string name;
  RegType type = REG_NONE;
  std::string data;
  bool operator==(const Entry&) const = default;
};

struct Heard {
  std::vector<Entry> entries;
  std::size_t others = 0;  // deletions
  std::size_t problems = 0;
  std::size_t lines = 0;
  bool operator==(const Heard&) const = default;
};

class Listener : public RegTextSink {
 public:
  RegStep beginKey(std::size_t line, const KeyPath& key) override {
    key_ = fullKeyName(key.root, key.path);
    heard.entries.push_back({key_, false, {}, REG_NONE, {}});
    return seen(line);
  }
  RegStep deleteKey(std::size_t line, const KeyPath&) override {
    ++heard.others;
    return seen(line);
  }
  RegStep setValue(std::size_t line, std::string_view name, RegType type,
                   std::string_view data) override {
    heard.entries.push_back({key_, true, std::string(name), type, std::string(data)});
    return seen(line);
  }
  RegStep deleteValue(std::size_t line, std::string_view) override {
    ++heard.others;
    return seen(line);
  }
  void problem(std::size_t line, std::string_view) override {
    ++heard.problems;
    seen(line);
  }
  void note(std::size_t line, std::string_view) override { seen(line); }

  Heard heard;

 private:
  RegStep seen(std::size_t line) {
    heard.lines += line;
    return RegStep::Done;
  }
  std::string key_;
};

Heard parse(std::string_view file, std::size_t block) {
  Listener listener;
  RegTextParser parser(listener, *CodePage::find(1252), ShortRoots::No);
  bool wanted = true;
  for (std::size_t at = 0; wanted && at < file.size(); at += block) {
    wanted = parser.feed(file.substr(at, block));
  }
  if (wanted) parser.finish();
  return listener.heard;
}

void require(bool holds) {
  if (!holds) std::abort();
}

void writeAndReadBack(const std::vector<Entry>& entries, RegFormat format) {
  RegTextWriter writer(format, *CodePage::find(1252));
  writer.header();
  std::vector<Entry> written;
  bool keyWritten = false;
  for (const Entry& entry : entries) {
    if (!entry.isValue) {
      keyWritten = writer.beginKey(entry.key) == nullptr;
      if (keyWritten) written.push_back(entry);
    } else if (keyWritten && writer.value(entry.name, entry.type, entry.data) == nullptr) {
      written.push_back(entry);
    }
  }
  const Heard again = parse(writer.bytes(), 64);
  require(again.problems == 0 && again.entries == written);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view file(reinterpret_cast<const char*>(data), size);
  const Heard whole = parse(file, size + 1);
  require(parse(file, 1) == whole);
  require(parse(file, 5) == whole);
  writeAndReadBack(whole.entries, RegFormat::Version5);
  writeAndReadBack(whole.entries, RegFormat::Regedit4);
  return 0;
}

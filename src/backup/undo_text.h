// UndoText: the way back from a restore, as a registry-editor file.
//
// It is written change by change while nothing is changed yet: what a change overwrites is read
// from the registry as it stands. Importing the text afterwards brings back every value with its
// type, the order of a key's values, and whole trees that were deleted.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "backup/reg_difference.h"
#include "platform/registry.h"
#include "platform/text/reg_writer.h"

namespace korvex::backup {

class UndoText {
 public:
  // Takes the text in order, piece by piece.
  using Sink = std::function<platform::Status(std::string_view)>;

  UndoText(platform::Registry& registry, platform::RegFormat format,
           const platform::CodePage& codePage, Sink sink);

  // In the order in which compareRegText tells them. After a failure the rest is passed over.
  void add(const RegChange& change);
  // The end of the text. Not ERROR_SUCCESS: it is not whole, and message() says why. 1113: the
  // format cannot hold what would have to be kept.
  platform::Status finish();
  const std::string& message() const { return message_; }

 private:
  struct Value {
    std::string name;
    platform::RegType type = platform::REG_NONE;
    std::string data;
  };

  void deleteNewKey(const RegChange& change);
  void keepTree(const RegChange& change);
  std::string storedPath(const RegChange& change);
  void keepKey(const RegChange& top, const std::string& path, std::vector<std::string>& children);
  void deleteNewValue(const RegChange& change);
  void keepChangedValue(const RegChange& change);
  void keepDeletedValue(const RegChange& change);
  void repeatFollowing(platform::HKEY key, const RegChange& change);

  bool openSection(const RegChange& change);
  void closeSection();
  bool readValue(platform::HKEY key, std::uint32_t index, const RegChange& change, Value& value);
  void handOver(std::size_t atLeast);
  void fail(platform::Status status, const std::string& message);
  // trouble is what a writer answered.
  void expectWritten(const char* trouble, const RegChange& change, std::string_view name);

  platform::Registry& registry_;
  platform::RegTextWriter writer_;
  platform::RegTextWriter probe_;  // tells what could be written
  Sink sink_;
  platform::Status status_ = platform::ERROR_SUCCESS;
  std::string message_;
  // The new key that all of is deleted; "" at first.
  platform::HKEY newRoot_ = 0;
  std::string newKey_;
  // The key that values are being written of.
  bool inSection_ = false;
  platform::HKEY sectionRoot_ = 0;
  std::string section_;
  // From this one on its values stand in the text, in their order.
  std::uint32_t repeatedFrom_ = 0;
};

}  // namespace korvex::backup

// What is seen of one key: its own values and subkeys, and where it lies over another key those of
// the other too.
#pragma once

#include <cstdint>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "platform/stored/key_store.h"

namespace korvex::platform {

// On 2000 and later the user's own classes lie over the machine's: a name is looked for in the
// upper key first, and an enumeration tells both keys' names once.
struct LayeredKey {
  std::int64_t key = 0;
  std::int64_t under = 0;  // 0: none
};

class KeyView {
 public:
  explicit KeyView(KeyStore& store) : store_(store) {}

  // 2: no such value; 259: no such index. The value is good until the next call.
  Status value(const LayeredKey& key, std::string_view name, ValueBlob::Value& value);
  Status valueAt(const LayeredKey& key, std::size_t index, ValueBlob::Value& value);
  Status childAt(const LayeredKey& key, std::size_t index, StoredKey*& child);
  Status info(const LayeredKey& key, KeyInfo& info);
  Status hasChildren(const LayeredKey& key, bool& result);
  // After every change: what was merged may be different.
  void forget() { merged_ = {}; }

 private:
  Status merge(const LayeredKey& key);
  Status addChildren(std::int64_t key, std::set<std::string>& seen,
                     std::vector<std::pair<std::string, std::int64_t>>& children);

  KeyStore& store_;
  LayeredKey merged_;  // whose children stand below
  std::vector<std::int64_t> children_;
};

}  // namespace korvex::platform

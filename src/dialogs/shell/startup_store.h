// StartupStore: the switched-off entries of one startup area, in the program's own key.
//
// A record is a value: its name is the entry's, its data the command as REG_SZ. What is no plain
// REG_SZ stands besides, type and bytes, in the subkey Original under the same name, and counts as
// long as it is the same text.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "engine/raw_value.h"
#include "engine/taken_away.h"
#include "foundation/session.h"

namespace korvex::dialogs {

struct NamedValue {
  std::string name;
  engine::RawValue value;
};

// The values of a key in the registry's order; 2 where there is no such key.
platform::Status listValues(foundation::Session& session, platform::HKEY root, std::string_view key,
                            std::vector<NamedValue>& values);

// A value for people: texts and numbers as they are, anything else as its bytes.
std::string shownText(const engine::RawValue& value);
engine::RawValue textValue(const std::string& text);  // REG_SZ
bool sameValue(const engine::RawValue& left, const engine::RawValue& right);

class StartupStore {
 public:
  StartupStore(foundation::Session& session, platform::HKEY root, std::string_view area);

  platform::HKEY root() const { return root_; }
  const std::string& key() const { return key_; }
  engine::TakenAway& deleted() { return deleted_; }

  // As they would be put back.
  platform::Status list(std::vector<NamedValue>& records) const;
  platform::Status find(const std::string& name, engine::RawValue& value) const;
  // The name, or "name (2)", "name (3)" where it is taken.
  platform::Status freeName(std::string& name) const;

  // Steps of a change. An older record of that name and another text is kept with what was deleted.
  platform::Status keep(const std::string& name, const engine::RawValue& value);
  platform::Status drop(const std::string& name);
  // Keeps the record with what was deleted, and deletes it.
  platform::Status forget(const std::string& name, const std::string& nameForPeople);

 private:
  std::string originals() const { return key_ + "\\Original"; }

  foundation::Session& session_;
  platform::HKEY root_;
  std::string key_;
  engine::TakenAway deleted_;
};

}  // namespace korvex::dialogs

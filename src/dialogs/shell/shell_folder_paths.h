// ShellFolderPaths: where Windows looks for the special folders of the user, without a window. A
// path stands in two keys, which are written together; no file is moved.
//
// The key Shell Folders holds the plain path as REG_SZ. In User Shell Folders NT keeps a path below
// the profile as REG_EXPAND_SZ with %USERPROFILE%, so that it is right wherever the profile roams
// to: such a path is written so where the value has that type, or is missing on NT.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "engine/raw_value.h"
#include "foundation/session.h"

namespace korvex::dialogs {

struct ShellFolder {
  std::string name;
  std::string description;
  std::string path;      // of Shell Folders, else that of User Shell Folders; "" for neither
  std::string userPath;  // of User Shell Folders, with its variables filled in
  engine::RawValue plain;
  engine::RawValue user;
  std::optional<std::string> byDefault;  // nothing where this Windows has none by itself

  bool isDefault() const;  // in both keys
  bool operator==(const ShellFolder& other) const;
};

class ShellFolderPaths {
 public:
  explicit ShellFolderPaths(foundation::Session& session) : session_(session) {}

  static std::string_view plainKey();  // of HKEY_CURRENT_USER
  static std::string_view userKey();

  // The nineteen that Korvex describes, in the order in which defaults are written; then what else
  // Shell Folders holds.
  platform::Status read(std::vector<ShellFolder>& folders) const;
  // 2 for a name that neither is described nor stands there.
  platform::Status readOne(std::string_view name, ShellFolder& folder) const;
  // Why a running program keeps it from being changed; "" where none does.
  std::string refusalOf(std::string_view name) const;

  // Steps of a change (engine/at_once.h).
  platform::Status write(const ShellFolder& folder, const std::string& path) const;
  platform::Status P_SetShellFoldersDefault(const std::vector<ShellFolder>& folders) const;
  // What that writes.
  static std::vector<ShellFolder> withoutDefault(const std::vector<ShellFolder>& folders);

  enum class There { Yes, No, Unknown };
  There isThere(const std::string& path) const;

 private:
  platform::Status fill(std::string_view name, ShellFolder& folder) const;
  std::optional<std::string> defaultOf(const ShellFolder& folder) const;
  engine::RawValue userValue(const ShellFolder& folder, const std::string& path) const;
  std::string expanded(const engine::RawValue& value) const;

  foundation::Session& session_;
};

}  // namespace korvex::dialogs

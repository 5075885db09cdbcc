// The categories of a configuration set: what each one saves, as rows.
#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "foundation/session.h"

namespace korvex::backup {

// What a category has beside keys; config_files.h knows where these lie.
enum class FileCopies { None, Cursors, Wallpaper, DialUp, FileTypes, Favorites, Bookmarks };

struct Category {
  std::string_view tag;        // "ColorConfig"
  std::string_view caption;    // "Color configuration"
  std::string_view captionNt;  // where NT has another one, else ""
  FileCopies copies = FileCopies::None;

  std::string_view captionFor(const foundation::Session& session) const {
    return session.g_bNT && !captionNt.empty() ? captionNt : caption;
  }
};

// In the order in which they are saved.
std::span<const Category> categories();
// Without regard to case; null where there is none.
const Category* findCategory(std::string_view tag);

// One key of a category and the file that it is saved to.
struct CategoryKey {
  std::string_view tag;
  std::string_view file;  // "appear.reg"
  platform::HKEY root = 0;
  std::string_view key;
};

// The keys of a category on this family of Windows, in order; one row per file.
std::vector<CategoryKey> categoryKeys(const foundation::Session& session, std::string_view tag);

// "" where there is something to save, else why not, for people.
std::string whyNotSaved(foundation::Session& session, const Category& category);

}  // namespace korvex::backup

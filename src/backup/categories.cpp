// The rows of the categories.
#include "backup/categories.h"

#include <algorithm>
#include <array>

#include "backup/category_files.h"
#include "platform/text/text.h"

namespace korvex::backup {

using namespace platform;

namespace {

constexpr std::array kCategories{
    Category{"ColorConfig", "Color configuration", ""},
    Category{"CursorConfig", "Cursor configuration", "", FileCopies::Cursors},
    Category{"DesktopConfig", "Desktop configuration", "", FileCopies::Wallpaper},
    Category{"KeyboardConfig", "Keyboard configuration", ""},
    Category{"ShareConfig", "Local shares", ""},
    Category{"MappedConfig", "Network file mappings", ""},
    Category{"MRUConfig", "MRU lists", ""},
    Category{"PowerConfig", "Power configuration", ""},
    Category{"DUNConfig", "Dial-Up Adapter configuration", "RAS connection configuration",
             FileCopies::DialUp},
    Category{"FAConfig", "File associations", "", FileCopies::FileTypes},
    Category{"IEFavConfig", "IE Favorites", "", FileCopies::Favorites},
    Category{"MozillaConfig", "Navigator bookmarks", "", FileCopies::Bookmarks},
};

enum class On { Both, Win9x, Nt };

struct KeyRow {
  CategoryKey key;
  On on = On::Both;
};

constexpr std::string_view kShares = "SYSTEM\\CurrentControlSet\\Services\\LanmanServer\\Shares";

// Shares and mapped drives lie in other keys on NT than on 95, 98 and Me: one file, two rows.
constexpr std::array kKeys{
    KeyRow{{"ColorConfig", "appear.reg", HKEY_CURRENT_USER, "Control Panel\\Appearance"}},
    KeyRow{{"ColorConfig", "colors.reg", HKEY_CURRENT_USER, "Control Panel\\Colors"}},
    KeyRow{{"ColorConfig", "curcolor.reg", HKEY_CURRENT_USER, "Control Panel\\Current"}},
    KeyRow{{"ColorConfig", "cuscolor.reg", HKEY_CURRENT_USER, "Control Panel\\Custom Colors"}},
    KeyRow{{"CursorConfig", "cursors.reg", HKEY_CURRENT_USER, "Control Panel\\Cursors"}},
    KeyRow{{"DesktopConfig", "desktop.reg", HKEY_CURRENT_USER, "Control Panel\\Desktop"}},
    KeyRow{{"DesktopConfig", "ss.reg", HKEY_CURRENT_USER,
            "SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Screen Savers"}},
    KeyRow{{"DesktopConfig", "iedesk.reg", HKEY_CURRENT_USER,
            "Software\\Microsoft\\Internet Explorer\\Desktop"}},
    KeyRow{{"KeyboardConfig", "keyboard.reg", HKEY_CURRENT_USER, "Control Panel\\Keyboard"}},
    KeyRow{{"ShareConfig", "netshare.reg", HKEY_LOCAL_MACHINE, kShares}, On::Nt},
    KeyRow{{"ShareConfig", "netshare.reg", HKEY_LOCAL_MACHINE,
            "Software\\Microsoft\\Windows\\CurrentVersion\\Network\\LanMan"},
           On::Win9x},
    KeyRow{{"MappedConfig", "mapped.reg", HKEY_CURRENT_USER, "Network"}, On::Nt},
    KeyRow{{"MappedConfig", "mapped.reg", HKEY_CURRENT_USER, "Network\\Persistent"}, On::Win9x},
    KeyRow{{"MappedConfig", "mapper.reg", HKEY_CURRENT_USER,
            "Software\\Microsoft\\Windows NT\\CurrentVersion\\Network\\Persistent Connections"},
           On::Nt},
    KeyRow{{"MRUConfig", "runmru.reg", HKEY_CURRENT_USER,
            "Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\RunMRU"}},
    KeyRow{{"MRUConfig", "docsmru.reg", HKEY_CURRENT_USER,
            "Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\RecentDocs"}},
    KeyRow{{"MRUConfig", "prnmru.reg", HKEY_CURRENT_USER,
            "Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\PrnPortsMRU"}},
    KeyRow{{"MRUConfig", "fcommru.reg", HKEY_CURRENT_USER,
            "Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\FindComputerMRU"}},
    KeyRow{{"MRUConfig", "fdocsmru.reg", HKEY_CURRENT_USER,
            "Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\Doc Find Spec MRU"}},
    KeyRow{{"MRUConfig", "rfilemru.reg", HKEY_CURRENT_USER,
            "Software\\Microsoft\\Windows\\CurrentVersion\\Applets\\Paint\\Recent File List"}},
    KeyRow{{"MRUConfig", "inlocmru.reg", HKEY_CURRENT_USER, "InstallLocationsMRU"}},
    KeyRow{{"PowerConfig", "power.reg", HKEY_LOCAL_MACHINE,
            "Software\\Microsoft\\Windows\\CurrentVersion\\Controls Folder\\PowerCfg"}},
    KeyRow{{"PowerConfig", "smpowr.reg", HKEY_LOCAL_MACHINE,
            "System\\CurrentControlSet\\Control\\Session Manager\\Power"}},
    KeyRow{{"PowerConfig", "powcfg.reg", HKEY_CURRENT_USER, "Control Panel\\PowerCfg"}},
    KeyRow{{"DUNConfig", "ra.reg", HKEY_CURRENT_USER, "RemoteAccess"}},
    KeyRow{{"DUNConfig", "telephny.reg", HKEY_LOCAL_MACHINE,
            "Software\\Microsoft\\Windows\\CurrentVersion\\Telephony\\Locations"}},
    KeyRow{{"DUNConfig", "rasa.reg", HKEY_CURRENT_USER, "Software\\Microsoft\\RAS Autodial"}},
    KeyRow{{"DUNConfig", "rasp.reg", HKEY_CURRENT_USER, "Software\\Microsoft\\RAS Phonebook"}},
};

}  // namespace

std::span<const Category> categories() { return kCategories; }

const Category* findCategory(std::string_view tag) {
  const auto found = std::ranges::find_if(
      kCategories, [tag](const Category& row) { return sameName(row.tag, tag); });
  return found == kCategories.end() ? nullptr : &*found;
}

std::vector<CategoryKey> categoryKeys(const foundation::Session& session, std::string_view tag) {
  std::vector<CategoryKey> keys;
  const On other = session.g_bNT ? On::Win9x : On::Nt;
  for (const KeyRow& row : kKeys) {
    if (row.on != other && sameName(row.key.tag, tag)) keys.push_back(row.key);
  }
  return keys;
}

std::string whyNotSaved(foundation::Session& session, const Category& category) {
  for (const CategoryKey& row : categoryKeys(session, category.tag)) {
    // A key that cannot be read is one that is there: the save will say so.
    const OpenKey key(session.registry(), row.root, row.key, KEY_READ);
    if (key.status() != ERROR_FILE_NOT_FOUND) return "";
  }
  if (hasFiles(session, category)) return "";
  return "There is nothing of this kind on this machine.";
}

}  // namespace korvex::backup

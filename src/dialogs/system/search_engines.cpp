// The addresses, and where Internet Explorer looks for the one in use.
#include "dialogs/system/search_engines.h"

#include <array>

#include "engine/at_once.h"
#include "engine/raw_value.h"
#include "engine/same_name.h"

namespace korvex::dialogs {

using foundation::Session;
using platform::Status;

namespace {

// The default value of the key is the address.
constexpr std::string_view kSearchUrl = "Software\\Microsoft\\Internet Explorer\\SearchURL";

constexpr std::array kEngines{
    SearchEngine{"AltaVista", "http://www.altavista.com/cgi-bin/query?pg=q&q=%s"},
    SearchEngine{"Ask Jeeves", "http://www.askjeeves.com/main/askjeeves.asp?ask=%s"},
    SearchEngine{"Excite", "http://www.excite.com/search.gw?search=%s"},
    SearchEngine{"HotBot", "http://www.hotbot.com/?MT=%s"},
    SearchEngine{"Infoseek", "http://www.infoseek.com/Titles?qt=%s"},
    SearchEngine{"Lycos", "http://www.lycos.com/cgi-bin/pursuit?query=%s"},
    SearchEngine{"Magellan!", "http://www.mckinley.com/search.gw?search=%s"},
    SearchEngine{"Metacrawler", "http://www.metacrawler.com/crawler?general=%s"},
    // Internet Explorer's own: Microsoft's server picks an engine.
    SearchEngine{"MS Random", "http://home.microsoft.com/access/autosearch.asp?p=%s"},
};

}  // namespace

std::span<const SearchEngine> searchEngines() { return kEngines; }

Status readSearchEngine(Session& session, std::string& name) {
  engine::RawValue address;
  const Status status = engine::readRawValue(session.registry(), platform::HKEY_CURRENT_USER,
                                             kSearchUrl, "", address);
  name = kUnknownEngine;
  const std::string text = address.text();
  for (const SearchEngine& engine : kEngines) {
    if (engine::sameName(engine.address, text)) name = engine.name;
  }
  return engine::missingIsFine(status);
}

Status writeSearchEngine(Session& session, const SearchEngine& engine) {
  return engine::putValue(session, platform::HKEY_CURRENT_USER, kSearchUrl, "", engine.address);
}

}  // namespace korvex::dialogs

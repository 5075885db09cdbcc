// The domains that Internet Explorer tries for a single word typed as an address: "korvex" becomes
// "www.korvex.com", then "www.korvex.edu".
//
// They are templates in values named "1", "2" and so on: Internet Explorer counts up to the first
// number that is missing. A template of another form ("%s.com") is no domain, keeps its data and
// stays in its turn.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "engine/raw_value.h"
#include "foundation/session.h"
#include "platform/status.h"

namespace korvex::dialogs {

// What was typed as the domain that it means: "  .CO.UK" is "co.uk".
std::string tidyDomain(std::string_view typed);
// Why a tidied text cannot be a domain, for people; "" where it can.
std::string whyNoDomain(std::string_view domain);

class SearchDomains {
 public:
  explicit SearchDomains(foundation::Session& session) : session_(session) {}

  platform::Status read();
  // In the order in which they are tried.
  std::vector<std::string> names() const;
  bool has(std::string_view domain) const;

  void add(std::string_view domain);
  void remove(std::string_view domain);
  // Numbers them from 1 without a gap and writes what differs. To be called within a change.
  platform::Status write() const;

 private:
  struct Template {
    std::uint32_t number = 0;  // as it stands on the machine
    engine::RawValue data;
  };

  foundation::Session& session_;
  std::vector<Template> onMachine_;  // by their numbers
  std::vector<engine::RawValue> templates_;
};

}  // namespace korvex::dialogs

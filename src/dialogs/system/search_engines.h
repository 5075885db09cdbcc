// The search engines that Internet Explorer can ask for the words typed as an address.
#pragma once

#include <span>
#include <string>
#include <string_view>

#include "foundation/session.h"
#include "platform/status.h"

namespace korvex::dialogs {

struct SearchEngine {
  std::string_view name;
  std::string_view address;  // "%s" stands for the words
};

std::span<const SearchEngine> searchEngines();

// What an address of no known engine is called.
constexpr std::string_view kUnknownEngine = "Unknown";

// The name of the engine that is set for the user, or kUnknownEngine.
platform::Status readSearchEngine(foundation::Session& session, std::string& name);
// To be called within a change.
platform::Status writeSearchEngine(foundation::Session& session, const SearchEngine& engine);

}  // namespace korvex::dialogs

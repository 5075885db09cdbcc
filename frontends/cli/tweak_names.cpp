// Names that people type.
#include "cli/tweak_names.h"

#include <algorithm>
#include <numeric>
#include <utility>

#include "cli/failure.h"
#include "cli/value_text.h"
#include "engine/catalogue.h"
#include "platform/text/text.h"

namespace korvex::cli {
namespace {

constexpr std::string_view kPrefix = "P_rw";
constexpr std::size_t kSuggestions = 3;

// How many letters must be typed otherwise to get from one name to the other.
std::size_t distance(std::string_view from, std::string_view to) {
  std::vector<std::size_t> row(to.size() + 1);
  std::iota(row.begin(), row.end(), std::size_t{0});
  for (std::size_t i = 1; i <= from.size(); ++i) {
    std::size_t diagonal = std::exchange(row[0], i);
    for (std::size_t j = 1; j <= to.size(); ++j) {
      const std::size_t changed = diagonal + (from[i - 1] == to[j - 1] ? 0 : 1);
      diagonal = std::exchange(row[j], std::min({changed, row[j] + 1, row[j - 1] + 1}));
    }
  }
  return row[to.size()];
}

std::string folded(std::string_view name) {
  std::string result = platform::foldName(name);
  const std::string prefix = platform::foldName(kPrefix);
  return result.starts_with(prefix) ? result.substr(prefix.size()) : result;
}

}  // namespace

std::vector<std::string> nearestNames(std::string_view typed,
                                      const std::vector<std::string>& names) {
  const std::string wanted = folded(typed);
  std::vector<std::pair<std::size_t, std::string>> ranked;
  for (const std::string& name : names) {
    const std::string candidate = folded(name);
    const bool part = !wanted.empty() && (candidate.find(wanted) != std::string::npos ||
                                          wanted.find(candidate) != std::string::npos);
    const std::size_t far = part ? 1 : distance(wanted, candidate);
    if (far <= std::max<std::size_t>(2, wanted.size() / 3)) ranked.emplace_back(far, name);
  }
  std::sort(ranked.begin(), ranked.end());
  std::vector<std::string> result;
  for (const auto& [far, name] : ranked) {
    if (result.size() < kSuggestions) result.push_back(name);
  }
  return result;
}

std::string suggestion(std::string_view typed, const std::vector<std::string>& names) {
  const std::vector<std::string> nearest = nearestNames(typed, names);
  if (nearest.empty()) return "";
  std::string text = " Did you mean ";
  for (std::size_t i = 0; i < nearest.size(); ++i) {
    if (i > 0) text += i + 1 == nearest.size() ? " or " : ", ";
    text += nearest[i];
  }
  return text + "?";
}

const engine::Tweak& tweakNamed(std::string_view name) {
  const engine::Tweak* tweak = engine::findTweak(name);
  if (tweak != nullptr) return *tweak;
  std::vector<std::string> names;
  for (const engine::Tweak* each : engine::allTweaks()) names.emplace_back(each->property);
  throw Failure(ExitCode::Usage, "unknown-tweak",
                "There is no tweak named '" + printable(name) + "'." + suggestion(name, names) +
                    " 'korvex list' shows them all.");
}

}  // namespace korvex::cli

// Reading, changing and writing the templates.
#include "dialogs/system/search_domains.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>

#include "engine/same_name.h"
#include "platform/trimmed.h"

namespace korvex::dialogs {

using engine::RawValue;
using engine::sameName;
using platform::ERROR_SUCCESS;
using platform::HKEY_LOCAL_MACHINE;
using platform::Status;

namespace {

constexpr std::string_view kUrlTemplate =
    "Software\\Microsoft\\Internet Explorer\\Main\\UrlTemplate";
constexpr std::string_view kPrefix = "www.%s.";
constexpr std::size_t kLongestLabel = 63;
constexpr std::size_t kLongestDomain = 200;

bool isLetterOrDigit(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9');
}

bool isLabel(std::string_view label) {
  return !label.empty() && label.size() <= kLongestLabel && label.front() != '-' &&
         label.back() != '-' &&
         std::ranges::all_of(label, [](char c) { return isLetterOrDigit(c) || c == '-'; });
}

bool isDomain(std::string_view domain) {
  if (domain.size() > kLongestDomain) return false;
  while (true) {
    const std::size_t dot = domain.find('.');
    if (!isLabel(domain.substr(0, dot))) return false;
    if (dot == std::string_view::npos) return true;
    domain.remove_prefix(dot + 1);
  }
}

// "" for a template of another form.
std::string domainOf(const RawValue& data) {
  const std::string text = data.text();
  if (!sameName(std::string_view(text).substr(0, kPrefix.size()), kPrefix)) return {};
  const std::string_view domain = std::string_view(text).substr(kPrefix.size());
  return isDomain(domain) ? std::string(domain) : "";
}

// 0 for a name that is no number of the list: "01" is a value of its own.
std::uint32_t numberOf(std::string_view name) {
  std::uint32_t number = 0;
  const auto [end, error] = std::from_chars(name.data(), name.data() + name.size(), number);
  const bool whole = error == std::errc() && end == name.data() + name.size();
  return whole && name.front() != '0' ? number : 0;
}

RawValue templateOf(std::string_view domain) {
  return {platform::REG_SZ, fmt::format("{}{}", kPrefix, domain) + '\0'};
}

}  // namespace

std::string tidyDomain(std::string_view typed) {
  typed = platform::trimmed(typed);
  if (typed.starts_with('.')) typed.remove_prefix(1);
  std::string domain(typed);
  for (char& c : domain) {
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  }
  return domain;
}

std::string whyNoDomain(std::string_view domain) {
  if (isDomain(domain)) return {};
  return "A search domain consists of letters, digits and hyphens, in parts divided by single "
         "dots:\r\ncom, net or co.uk.\r\n\r\nPlease check the domain entered and try again.";
}

Status SearchDomains::read() {
  onMachine_.clear();
  templates_.clear();
  platform::Registry& registry = session_.registry();
  const platform::OpenKey key(registry, HKEY_LOCAL_MACHINE, kUrlTemplate, platform::KEY_READ);
  if (key.status() != ERROR_SUCCESS) return engine::missingIsFine(key.status());
  char name[platform::kNameBufferBytes];
  Status status = ERROR_SUCCESS;
  for (std::uint32_t i = 0; status == ERROR_SUCCESS; ++i) {
    std::uint32_t length = sizeof name;
    status = registry.RegEnumValueA(key.get(), i, name, &length, nullptr, nullptr, nullptr);
    if (status != ERROR_SUCCESS) break;
    const std::string_view valueName(name, length);
    Template found{numberOf(valueName), {}};
    if (found.number == 0) continue;
    status = engine::readRawValue(registry, key.get(), valueName, found.data);
    onMachine_.push_back(found);
  }
  std::ranges::sort(onMachine_, {}, &Template::number);
  for (const Template& found : onMachine_) templates_.push_back(found.data);
  return status == platform::ERROR_NO_MORE_ITEMS ? ERROR_SUCCESS : status;
}

std::vector<std::string> SearchDomains::names() const {
  std::vector<std::string> names;
  for (const RawValue& data : templates_) {
    std::string domain = domainOf(data);
    if (!domain.empty()) names.push_back(std::move(domain));
  }
  return names;
}

bool SearchDomains::has(std::string_view domain) const {
  return std::ranges::any_of(
      templates_, [domain](const RawValue& data) { return sameName(domainOf(data), domain); });
}

void SearchDomains::add(std::string_view domain) { templates_.push_back(templateOf(domain)); }

void SearchDomains::remove(std::string_view domain) {
  std::erase_if(templates_,
                [domain](const RawValue& data) { return sameName(domainOf(data), domain); });
}

Status SearchDomains::write() const {
  platform::Registry& registry = session_.registry();
  platform::HKEY key = 0;
  bool existed = false;
  Status status = session_.regTool.CreateRegNode(HKEY_LOCAL_MACHINE, kUrlTemplate, key, existed,
                                                 platform::KEY_ALL_ACCESS);
  if (status != ERROR_SUCCESS) return status;
  for (std::size_t i = 0; i < templates_.size() && status == ERROR_SUCCESS; ++i) {
    const RawValue& data = templates_[i];
    const bool stands = i < onMachine_.size() && onMachine_[i].number == i + 1 &&
                        onMachine_[i].data.type == data.type &&
                        onMachine_[i].data.bytes == data.bytes;
    if (stands) continue;
    status = registry.RegSetValueExA(key, std::to_string(i + 1), data.type, data.bytes.data(),
                                     static_cast<std::uint32_t>(data.bytes.size()));
  }
  for (const Template& old : onMachine_) {
    if (status != ERROR_SUCCESS || old.number <= templates_.size()) continue;
    status = engine::missingIsFine(registry.RegDeleteValueA(key, std::to_string(old.number)));
  }
  registry.RegCloseKey(key);
  return status;
}

}  // namespace korvex::dialogs

// Children, values and link targets of an NT hive.
#include "platform/windows_folder/regf_reader.h"

#include <utility>

#include "platform/text/text.h"

namespace korvex::platform {

namespace {

bool isText(RegType type) {
  return type == REG_SZ || type == REG_EXPAND_SZ || type == REG_MULTI_SZ;
}

bool canStandInPath(std::string_view name) {
  return !name.empty() && name.find('\0') == std::string_view::npos &&
         name.find('\\') == std::string_view::npos;
}

std::string withVisibleNul(std::string name) {
  for (std::size_t at = 0; (at = name.find('\0', at)) != std::string::npos;) {
    name.replace(at, 1, "\xE2\x90\x80");
  }
  return name;
}

}  // namespace

std::string regfDataToText(RegType type, std::string&& data) {
  return isText(type) ? utf16leToUtf8(data) : std::move(data);
}

std::string regfDataFromText(RegType type, const std::string& text) {
  return isText(type) ? utf8ToUtf16le(text) : text;
}

Status RegfReader::children(HiveNode key, std::vector<HiveChild>& children) const {
  std::vector<RegfOffset> offsets;
  if (const Status status = cells_.children(regfOffset(key), offsets)) return status;
  children.clear();
  children.reserve(offsets.size());
  RegfKey child;
  for (const RegfOffset each : offsets) {
    if (const Status status = cells_.key(each, child)) return status;
    std::string name = child.name.text();
    if (canStandInPath(name)) children.push_back({regfNode(each), std::move(name), child.isLink()});
  }
  return ERROR_SUCCESS;
}

Status RegfReader::values(HiveNode node, std::vector<HiveValue>& values) const {
  RegfKey key;
  if (const Status status = cells_.key(regfOffset(node), key)) return status;
  std::vector<RegfOffset> offsets;
  if (const Status status = cells_.valueList(key, offsets)) return status;
  values.clear();
  std::size_t total = 0;
  RegfValue value;
  for (const RegfOffset each : offsets) {
    if (const Status status = cells_.value(each, value)) return status;
    // Values that share their data could make more of a damaged file than memory holds.
    total += value.size + value.name.bytes.size();
    if (total > cells_.size()) return ERROR_BADDB;
    std::string data;
    if (const Status status = cells_.data(value, data)) return status;
    values.push_back({withVisibleNul(value.name.text()), value.type,
                      regfDataToText(value.type, std::move(data))});
  }
  return ERROR_SUCCESS;
}

Status RegfReader::linkTarget(HiveNode node, std::string& target) const {
  RegfKey key;
  if (const Status status = cells_.key(regfOffset(node), key)) return status;
  std::vector<RegfOffset> offsets;
  if (const Status status = cells_.valueList(key, offsets)) return status;
  RegfValue value;
  for (const RegfOffset each : offsets) {
    if (const Status status = cells_.value(each, value)) return status;
    if (value.type != REG_LINK || !sameName(value.name.text(), "SymbolicLinkValue")) continue;
    std::string data;
    if (const Status status = cells_.data(value, data)) return status;
    target = utf16leToUtf8(data);
    while (!target.empty() && target.back() == '\0') target.pop_back();
    return ERROR_SUCCESS;
  }
  return key.isLink() ? ERROR_BADDB : ERROR_FILE_NOT_FOUND;
}

}  // namespace korvex::platform

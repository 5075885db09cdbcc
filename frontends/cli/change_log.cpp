// What a recording machine saw.
#include "cli/change_log.h"

#include <fmt/format.h>

#include <algorithm>

#include "cli/key_path.h"
#include "engine/catalogue.h"
#include "platform/text/text.h"

namespace korvex::cli {
namespace {

using platform::RegistryWrite;
using platform::sameName;

constexpr std::string_view kOwnArea = "HKEY_LOCAL_MACHINE\\SOFTWARE\\Korvex";

bool isOwnArea(std::string_view key) {
  return sameName(key.substr(0, kOwnArea.size()), kOwnArea) &&
         (key.size() == kOwnArea.size() || key[kOwnArea.size()] == '\\');
}

// The trace log and the run log.
bool isOwnLog(const FileRecord& record) {
  const std::string name = record.path.substr(record.path.find_last_of('\\') + 1);
  return sameName(name, "KORVEX.LOG") || sameName(name, "kvxlog.log");
}

bool isTweak(const RegistryRecord& record) {
  const auto& tweaks = engine::allTweaks();
  return std::any_of(tweaks.begin(), tweaks.end(), [&record](const engine::Tweak* tweak) {
    return sameName(tweak->value, record.value) &&
           sameName(TypedKey{tweak->root, std::string(tweak->key)}.full(), record.key);
  });
}

// NT deletes a tree key by key; it is told as one.
void dropKeysOfDeletedTrees(std::vector<RegistryRecord>& records) {
  const auto deleted = [](const RegistryRecord& record) {
    return record.write == RegistryWrite::DeleteKey;
  };
  std::vector<std::string> trees;
  for (const RegistryRecord& record : records) {
    if (deleted(record)) trees.push_back(record.key + '\\');
  }
  std::erase_if(records, [&](const RegistryRecord& record) {
    return deleted(record) && std::any_of(trees.begin(), trees.end(), [&](const auto& tree) {
             return sameName(std::string_view(record.key).substr(0, tree.size()), tree);
           });
  });
}

bool isValue(const RegistryRecord& record) {
  return record.write == RegistryWrite::SetValue || record.write == RegistryWrite::DeleteValue;
}

Json dataJson(std::string_view name, const std::optional<platform::RegistryData>& data) {
  return data ? valueJson(name, {data->type, data->bytes}) : Json(nullptr);
}

}  // namespace

bool ChangeLog::worthTelling(const RegistryRecord& record) const {
  if (verbose_ || !isOwnArea(record.key)) return true;
  return isValue(record) && isTweak(record);
}

Changes ChangeLog::take() {
  Changes changes;
  const auto& writes = registry_.records();
  for (; nextWrite_ < writes.size(); ++nextWrite_) {
    if (worthTelling(writes[nextWrite_])) changes.registry.push_back(writes[nextWrite_]);
  }
  const auto& steps = files_.records();
  for (; nextStep_ < steps.size(); ++nextStep_) {
    if (verbose_ || !isOwnLog(steps[nextStep_])) changes.files.push_back(steps[nextStep_]);
  }
  changes.files = merged(changes.files);
  return changes;
}

void ChangeLog::skip() {
  nextWrite_ = registry_.records().size();
  nextStep_ = files_.records().size();
}

std::vector<RegistryRecord> merged(const std::vector<RegistryRecord>& records) {
  std::vector<RegistryRecord> result;
  for (const RegistryRecord& record : records) {
    const auto same = std::find_if(result.begin(), result.end(), [&record](const auto& earlier) {
      return isValue(earlier) && isValue(record) && sameName(earlier.key, record.key) &&
             sameName(earlier.value, record.value);
    });
    if (same == result.end()) {
      result.push_back(record);
    } else {
      same->write = record.write;
      same->after = record.after;
    }
  }
  std::erase_if(result, [](const RegistryRecord& record) {
    return isValue(record) && record.before == record.after;
  });
  dropKeysOfDeletedTrees(result);
  return result;
}

Changes merged(const Changes& changes) { return {merged(changes.registry), merged(changes.files)}; }

Json recordJson(const RegistryRecord& record) {
  if (!isValue(record)) {
    const bool created = record.write == RegistryWrite::CreateKey;
    return {{"change", created ? "key-created" : "key-deleted"}, {"key", record.key}};
  }
  return {{"change", "value"},
          {"key", record.key},
          {"name", record.value},
          {"before", dataJson(record.value, record.before)},
          {"after", dataJson(record.value, record.after)}};
}

std::string dataText(const std::optional<platform::RegistryData>& data) {
  if (!data) return "(none)";
  return typeName(data->type) + " " + displayText({data->type, data->bytes});
}

std::string recordText(const RegistryRecord& record, std::string_view indent) {
  const std::string key = printable(record.key);
  if (record.write == RegistryWrite::CreateKey)
    return fmt::format("{}{}  (new key)\n", indent, key);
  if (record.write == RegistryWrite::DeleteKey) {
    return fmt::format("{}{}  (key deleted)\n", indent, key);
  }
  return fmt::format("{0}{1}\n{0}    {2}    {3} -> {4}\n", indent, key,
                     record.value.empty() ? "(Default)" : printable(record.value),
                     dataText(record.before), dataText(record.after));
}

Json changesJson(const Changes& changes) {
  Json json = Json::array();
  for (const RegistryRecord& record : changes.registry) json.push_back(recordJson(record));
  for (const FileRecord& record : changes.files) json.push_back(recordJson(record));
  return json;
}

std::string changesText(const Changes& changes, std::string_view indent) {
  std::string text;
  for (const RegistryRecord& record : changes.registry) text += recordText(record, indent);
  for (const FileRecord& record : changes.files) text += recordText(record, indent);
  return text;
}

}  // namespace korvex::cli

// What all areas share, and the Run keys.
#include "dialogs/shell/startup_place.h"

#include <fmt/format.h>

#include <utility>

#include "engine/at_once.h"
#include "engine/same_name.h"
#include "platform/text/reg_names.h"

namespace korvex::dialogs {

using engine::RawValue;
using engine::TakenAway;
using platform::ERROR_ALREADY_EXISTS;
using platform::ERROR_FILE_NOT_FOUND;
using platform::ERROR_SUCCESS;
using platform::Status;

std::string lastPart(std::string_view path) {
  const std::size_t slash = path.find_last_of("\\/");
  return std::string(slash == std::string_view::npos ? path : path.substr(slash + 1));
}

bool StartupPlace::isHere(const TakenAway::Item& item) const {
  return item.isValue && engine::sameName(item.key, store_.key());
}

std::vector<TakenAway::Item> StartupPlace::deleted() {
  std::vector<TakenAway::Item> items = store_.deleted().items();
  std::erase_if(items, [this](const TakenAway::Item& item) { return !isHere(item); });
  return items;
}

Status StartupPlace::takeBack(const TakenAway::Item& item) {
  return inOneChange(session_, [&] { return store_.deleted().takeBack(item); });
}

Status StartupPlace::finish(const PendingMove&) { return platform::ERROR_INVALID_DATA; }

// ---- StartupKey

bool StartupKey::isHere(const TakenAway::Item& item) const {
  return StartupPlace::isHere(item) || (item.isValue && engine::sameName(item.key, key_));
}

StartupEntry StartupKey::entryOf(const NamedValue& value, bool on) const {
  StartupEntry entry;
  entry.area = area_;
  entry.on = on;
  entry.name = value.name;
  entry.record = on ? "" : value.name;
  entry.command = shownText(value.value);
  entry.text = (value.name.empty() ? "(Default)" : value.name) + '=' + entry.command;
  entry.origin = platform::fullKeyName(store_.root(), key_);
  entry.value = value.value;
  return entry;
}

Status StartupKey::launched(StartupEntries& entries) {
  std::vector<NamedValue> values;
  const Status status = engine::missingIsFine(listValues(session_, store_.root(), key_, values));
  for (const NamedValue& value : values) entries.push_back(entryOf(value, true));
  return status;
}

Status StartupKey::switchedOff(StartupEntries& entries) {
  std::vector<NamedValue> records;
  const Status status = store_.list(records);
  for (const NamedValue& record : records) entries.push_back(entryOf(record, false));
  return status;
}

Status StartupKey::p_UpdateRunOnceData(const StartupEntry& entry, bool bSkipWrite,
                                       const std::function<Status()>& write,
                                       const std::function<Status()>& remove) {
  session_.trace.enter("[p_UpdateRunOnceData]");
  session_.trace.dump("sValueName$", entry.name);
  Status status = bSkipWrite ? ERROR_SUCCESS : write();
  if (status == ERROR_SUCCESS) status = remove();
  if (status != ERROR_SUCCESS) session_.trace.add("ERROR - p_UpdateRunOnceData");
  return status;
}

Status StartupKey::switchOff(const StartupEntry& entry) {
  return inOneChange(session_, [&] {
    RawValue now;
    const Status status =
        engine::readRawValue(session_.registry(), store_.root(), key_, entry.name, now);
    if (status != ERROR_SUCCESS) return status;
    if (!sameValue(now, entry.value)) return ERROR_FILE_NOT_FOUND;
    return p_UpdateRunOnceData(
        entry, false, [&] { return store_.keep(entry.name, now); },
        [&] { return session_.regTool.DeleteRegValue(store_.root(), key_, entry.name); });
  });
}

Status StartupKey::switchOn(const StartupEntry& entry, Replace replace) {
  return inOneChange(session_, [&] {
    RawValue record;
    Status status = store_.find(entry.record, record);
    if (status != ERROR_SUCCESS) return status;
    if (!sameValue(record, entry.value)) return ERROR_FILE_NOT_FOUND;
    RawValue live;
    status = engine::readRawValue(session_.registry(), store_.root(), key_, entry.name, live);
    const bool there = status == ERROR_SUCCESS;
    if (engine::missingIsFine(status) != ERROR_SUCCESS) return status;
    const bool same = there && sameValue(live, record);
    if (there && !same) {
      if (replace == Replace::No) return ERROR_ALREADY_EXISTS;
      status = store_.deleted().removeValue(key_, entry.name, entry.name);
      if (status != ERROR_SUCCESS) return status;
    }
    return p_UpdateRunOnceData(
        entry, same,
        [&] { return engine::putRaw(session_, store_.root(), key_, entry.name, record); },
        [&] { return store_.drop(entry.record); });
  });
}

Status StartupKey::forget(const StartupEntry& entry) {
  return inOneChange(session_, [&] {
    RawValue record;
    const Status status = store_.find(entry.record, record);
    if (status != ERROR_SUCCESS) return status;
    if (!sameValue(record, entry.value)) return ERROR_FILE_NOT_FOUND;
    return store_.forget(entry.record, entry.name);
  });
}

// Named for the file, without its extension; a short path needs no quotes.
Status StartupKey::add(const std::string& path, const std::string& longPath) {
  const std::string command = path.find(' ') == std::string::npos ? path : '"' + path + '"';
  std::string file = lastPart(longPath);
  file = file.substr(0, file.rfind('.'));
  return inOneChange(session_, [&] {
    std::string name = file;
    Status status = ERROR_SUCCESS;
    for (int number = 2; status == ERROR_SUCCESS; ++number) {
      RawValue taken;
      status = engine::readRawValue(session_.registry(), store_.root(), key_, name, taken);
      if (status != ERROR_SUCCESS) break;
      if (engine::sameName(shownText(taken), command)) return ERROR_ALREADY_EXISTS;
      name = fmt::format("{} ({})", file, number);
    }
    if (status != ERROR_FILE_NOT_FOUND) return status;
    return engine::putText(session_, store_.root(), key_, name, command);
  });
}

}  // namespace korvex::dialogs

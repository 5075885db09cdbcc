// Running routines without writing.
#include "cli/rehearsal.h"

#include <algorithm>
#include <utility>

#include "cli/key_path.h"
#include "cli/tweak_json.h"
#include "engine/modes.h"
#include "engine/readers.h"
#include "engine/tweak_controls.h"
#include "platform/text/text.h"

namespace korvex::cli {
namespace {

using engine::Tweak;
using platform::RegistryWrite;
using Records = std::vector<RegistryRecord>;

bool sameValue(const RegistryRecord& a, const RegistryRecord& b) {
  return platform::sameName(a.key, b.key) && platform::sameName(a.value, b.value);
}

// The value of the row itself, absent before and after.
RegistryRecord ownValue(const Tweak& tweak) {
  RegistryRecord record;
  record.write = RegistryWrite::DeleteValue;
  record.key = TypedKey{tweak.root, std::string(tweak.key)}.full();
  record.value = tweak.value;
  return record;
}

bool isValue(const RegistryRecord& record) {
  return record.write == RegistryWrite::SetValue || record.write == RegistryWrite::DeleteValue;
}

// A routine may write a value twice, and make a key again that only pretends to be there.
Records withoutRepeats(const Records& records) {
  Records result;
  for (const RegistryRecord& record : records) {
    const auto same = std::find_if(result.begin(), result.end(), [&record](const auto& earlier) {
      const bool comparable = isValue(record) ? isValue(earlier) : earlier.write == record.write;
      return comparable && sameValue(earlier, record);
    });
    if (same == result.end()) {
      result.push_back(record);
    } else {
      same->write = record.write;
      same->after = record.after;
    }
  }
  return result;
}

Rehearsal rehearse(ScriptProgram& script, AnswerScript& prompts, const Tweak& tweak) {
  Rehearsal result;
  script.forgetRehearsal();
  script.log().skip();
  prompts.onMessage = [&result](const ShownMessage& message) {
    result.messages.push_back(message);
  };
  engine::RegWorker& worker = script.program().regWorker();
  if (!worker.call(tweak.property)) result.failed = worker.lastStatus;
  prompts.onMessage = nullptr;
  Changes changes = script.log().take();
  result.registry = withoutRepeats(changes.registry);
  result.files = std::move(changes.files);
  const bool writesItsValue =
      tweak.special == nullptr && engine::decide(tweak, 1, {}).act == engine::Decision::Act::Write;
  if (!writesItsValue || result.failed != platform::ERROR_SUCCESS) return result;
  const RegistryRecord own = ownValue(tweak);
  const bool touched = std::any_of(result.registry.begin(), result.registry.end(),
                                   [&own](const auto& record) { return sameValue(record, own); });
  // Deleting what is not there leaves no record; that it would be deleted is the answer all the
  // same.
  if (!touched) result.registry.push_back(own);
  return result;
}

Rehearsal rehearseChecked(ScriptProgram& script, AnswerScript& prompts, const Tweak& tweak,
                          forms::Form& form, forms::CheckValue value) {
  foundation::Session& session = script.program().session();
  session.g_bNoRecord = true;
  engine::showState(form, tweak, value);
  session.g_bNoRecord = false;
  return rehearse(script, prompts, tweak);
}

void addNow(Records& now, const Records& records) {
  for (const RegistryRecord& record : records) {
    const bool known = std::any_of(now.begin(), now.end(), [&record](const auto& earlier) {
      return sameValue(earlier, record);
    });
    if (isValue(record) && !known) now.push_back(record);
  }
}

}  // namespace

Rehearsed rehearseAll(ScriptProgram& script, AnswerScript& prompts, const Tweak& tweak) {
  program::Program& program = script.program();
  Rehearsed result;
  if (isTextRow(tweak)) result.text = engine::readText(tweak, program.session());
  result.state = rowState(tweak, engine::readState(tweak, program.session()), result.text);
  if (!isRoutine(tweak)) {
    forms::Form& form = program.formBook().load(tweak.form);
    if (engine::shownState(form, tweak)) {
      result.on = rehearseChecked(script, prompts, tweak, form, forms::vbChecked);
      result.off = rehearseChecked(script, prompts, tweak, form, forms::vbUnchecked);
    }
  }
  program.session().g_bDefaulting = true;
  result.byDefault = rehearse(script, prompts, tweak);
  program.session().g_bDefaulting = false;
  for (const Rehearsal* rehearsal : {&result.on, &result.off, &result.byDefault}) {
    addNow(result.now, rehearsal->registry);
  }
  return result;
}

}  // namespace korvex::cli

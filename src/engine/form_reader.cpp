// Reading the state of a machine into the controls of a form.
#include <fmt/format.h>

#include <algorithm>
#include <cstddef>
#include <string>
#include <utility>
#include <vector>

#include "engine/catalogue.h"
#include "engine/readers.h"
#include "engine/reading_order.h"
#include "engine/tweak_controls.h"
#include "engine/whats_this.h"
#include "foundation/error_handler.h"

namespace korvex::engine {
namespace {

using foundation::Session;
using Kind = TweakState::Kind;

std::string readerName(const Tweak& tweak) {
  for (const ReadStep& step : kReadingOrder) {
    if (step.property == tweak.property) return std::string(step.routine);
  }
  for (const GroupReader& reader : kGroupReaders) {
    if (tweak.bank == Bank::Office && reader.group == tweak.group) {
      return std::string(reader.routine);
    }
  }
  constexpr std::string_view kPrefix = "P_rw";
  return fmt::format("p_Determine{}", tweak.property.substr(kPrefix.size()));
}

// The form's rows, those of the reading order first.
std::vector<const Tweak*> rowsOf(const forms::Form& form) {
  std::vector<std::pair<std::size_t, const Tweak*>> places;
  for (const Tweak* tweak : allTweaks()) {
    if (tweak->form != form.name() || tweak->shape == ControlShape::None) continue;
    const auto step = std::ranges::find(kReadingOrder, tweak->property, &ReadStep::property);
    places.emplace_back(static_cast<std::size_t>(step - kReadingOrder.begin()), tweak);
  }
  std::ranges::stable_sort(places, {}, &std::pair<std::size_t, const Tweak*>::first);
  std::vector<const Tweak*> rows;
  for (const auto& [place, tweak] : places) rows.push_back(tweak);
  return rows;
}

int valueOf(Kind kind) {
  if (kind == Kind::Grey) return forms::vbGrayed;
  return kind == Kind::On ? forms::vbChecked : forms::vbUnchecked;
}

void disable(forms::Form& form, const Tweak& tweak, std::string_view reason) {
  const std::string label = fmt::format("lbl{}", tweak.buddy);
  for (forms::Control* control : {form.find(tweak.control), form.find(optionName(tweak, 0)),
                                  form.find(optionName(tweak, 1)), form.find(label)}) {
    if (control == nullptr) continue;
    control->Enabled = false;
    control->ToolTipText = std::string(reason);
  }
}

// One run over the rows of a form: the reader's keys stay open, and the state values are stored at
// the end, so that no change is open while a person is asked or shown something.
class FormReader {
 public:
  FormReader(forms::Form& form, Session& session)
      : form_(form), session_(session), reader_(session) {}

  void read(const Tweak& row) {
    const Tweak tweak = onMachine(row, session_);
    session_.trace.enter(fmt::format("[{}]", readerName(tweak)));
    adaptControl(row, tweak);
    if (isField(tweak)) return readField(tweak);
    if (!shownState(form_, tweak)) return;
    const TweakState state = reader_.state(tweak);
    if (state.kind == Kind::Unavailable) return disable(form_, tweak, state.reason);
    const int value = valueOf(state.kind);
    showState(form_, tweak, value);
    session_.trace.dump(fmt::format("{}.Value%", tweak.control), value);
    // An option's state value is the option itself, which reading must not write.
    if (tweak.bank != Bank::Configuration) {
      states_.push_back({tweak.stateName, static_cast<std::int16_t>(value)});
    }
  }

  platform::Status storeStates() {
    platform::RegistryChange change(session_.registry());
    if (change.status() != platform::ERROR_SUCCESS) return change.status();
    const platform::OpenKey key(session_.registry(), HKLM, stateKey(Bank::MainWindow),
                                platform::KEY_ALL_ACCESS);
    platform::Status status = key.status();
    for (const StateValue& state : states_) {
      if (status != platform::ERROR_SUCCESS) return status;
      status = session_.regTool.CreateRegValue(state.value, key.get(), state.name);
    }
    return status == platform::ERROR_SUCCESS ? change.commit() : status;
  }

 private:
  struct StateValue {
    std::string_view name;
    std::int16_t value;
  };

  // What the row says otherwise on this machine, its control says too.
  void adaptControl(const Tweak& row, const Tweak& tweak) {
    if (row.adapt == nullptr) return;
    if (forms::Control* control = form_.find(tweak.control)) {
      control->ToolTipText = std::string(tweak.toolTip);
      control->WhatsThis = whatsThis(tweak);
    }
    if (auto* box = form_.find<forms::CheckBox>(tweak.control)) {
      box->Caption = std::string(tweak.caption);
    }
  }

  void readField(const Tweak& tweak) {
    forms::Control* control = form_.find(tweak.control);
    if (control == nullptr) return;
    const TweakState state = availability(tweak, session_);
    if (state.kind == Kind::Unavailable) return disable(form_, tweak, state.reason);
    const std::string text = readText(tweak, session_);
    if (auto* box = dynamic_cast<forms::TextBox*>(control)) box->Text = text;
    if (auto* list = dynamic_cast<forms::ComboBox*>(control)) select(*list, text);
    session_.trace.dump(fmt::format("{}.Text$", tweak.control), text);
  }

  static void select(forms::ComboBox& list, const std::string& text) {
    const auto item = std::ranges::find(list.items(), text);
    list.ListIndex =
        item == list.items().end() ? -1 : static_cast<int>(item - list.items().begin());
    if (list.ListIndex < 0 && list.style() == forms::ComboBox::Style::DropDown) list.Text = text;
  }

  forms::Form& form_;
  Session& session_;
  StateReader reader_;
  std::vector<StateValue> states_;
};

}  // namespace

void readIntoForm(forms::Form& form, Session& session, const std::function<void(int)>& progress,
                  const std::function<bool(const Tweak&)>& which) {
  std::vector<const Tweak*> rows = rowsOf(form);
  if (which) std::erase_if(rows, [&which](const Tweak* row) { return !which(*row); });
  FormReader reader(form, session);
  for (std::size_t i = 0; i < rows.size(); ++i) {
    const auto after =
        foundation::guarded(session, readerName(*rows[i]), [&] { reader.read(*rows[i]); });
    if (after == foundation::AfterError::EndProgram) return;
    if (progress) progress(static_cast<int>((i + 1) * 100 / rows.size()));
  }
  session.trace.dump("lRetVal&", reader.storeStates());
}

}  // namespace korvex::engine

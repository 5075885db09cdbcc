// One tweak as JSON.
#include "cli/tweak_json.h"

#include "engine/catalogue.h"
#include "engine/readers.h"
#include "forms/control.h"
#include "platform/text/reg_names.h"

namespace korvex::cli {

using engine::TweakState;

std::string_view stateName(TweakState::Kind kind) {
  switch (kind) {
    case TweakState::Kind::On:
      return "on";
    case TweakState::Kind::Grey:
      return "grey";
    case TweakState::Kind::Unavailable:
      return "unavailable";
    case TweakState::Kind::Off:
      break;
  }
  return "off";
}

std::string_view stateName(const engine::Tweak& tweak, const TweakState& state) {
  const bool routine = isRoutine(tweak) && state.kind != TweakState::Kind::Unavailable;
  return routine ? "routine" : stateName(state.kind);
}

bool isRoutine(const engine::Tweak& tweak) { return tweak.shape == engine::ControlShape::None; }

bool isTextRow(const engine::Tweak& tweak) { return engine::isField(tweak); }

TweakState rowState(const engine::Tweak& tweak, TweakState read, const std::string& text) {
  if (!isTextRow(tweak) || read.kind == TweakState::Kind::Unavailable) return read;
  read.kind = text == engine::defaultText(tweak) ? TweakState::Kind::Off : TweakState::Kind::On;
  return read;
}

Json tweakJson(const engine::Tweak& tweak, const TweakState& state, const std::string& text) {
  Json json{{"property", tweak.property}, {"form", tweak.form},
            {"control", tweak.control},   {"caption", forms::plainCaption(tweak.caption)},
            {"toolTip", tweak.toolTip},   {"page", engine::pageName(tweak.page)},
            {"group", tweak.group},       {"state", stateName(tweak, state)}};
  if (state.kind == TweakState::Kind::Unavailable) json["reason"] = state.reason;
  if (isTextRow(tweak)) json["text"] = text;
  json["root"] = platform::rootName(tweak.root);
  json["key"] = tweak.key;
  json["value"] = tweak.value;
  json["bank"] = static_cast<int>(tweak.bank);
  json["bankKey"] = engine::bankKey(tweak.bank);
  json["restart"] = tweak.reboot;
  return json;
}

}  // namespace korvex::cli

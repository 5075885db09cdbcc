// A machine with everything the engine needs on it: session, forms with the controls of all rows,
// worker and store. And the registry as a person would look at it.
#pragma once

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <map>
#include <memory>
#include <set>
#include <string>
#include <string_view>

#include "engine/catalogue.h"
#include "engine/pending_changes.h"
#include "engine/raw_value.h"
#include "engine/readers.h"
#include "engine/reg_worker.h"
#include "engine/tweak_controls.h"
#include "forms/form_book.h"
#include "foundation/detection.h"
#include "foundation/session.h"
#include "platform/common/composed_machine.h"
#include "platform/common/registry_decorators.h"
#include "support/machines.h"
#include "support/scripted_prompts.h"

namespace korvex::engine {

constexpr std::string_view kState = "SOFTWARE\\Korvex\\CurrentSettings";
constexpr std::string_view kOptions = "SOFTWARE\\Korvex\\Configuration";
constexpr std::string_view kLoadValues = "SOFTWARE\\Korvex\\LoadValues";
constexpr std::string_view kExplorer =
    "Software\\Microsoft\\Windows\\CurrentVersion\\Policies\\Explorer";
constexpr std::string_view kRunOnceEx = "Software\\Microsoft\\Windows\\CurrentVersion\\RunOnceEx";
constexpr std::string_view kRunServicesOnce =
    "Software\\Microsoft\\Windows\\CurrentVersion\\RunServicesOnce";

// A form with the controls of its rows, as the real ones have them, and an Apply button.
class RowForm : public forms::Form {
 public:
  explicit RowForm(const std::string& name) : Form(name, name), controls(*this) {
    own<forms::CommandButton>("cmdApply", "&Apply").Enabled = false;
    own<forms::CheckBox>("chkSpare", "Spare");
    own<forms::OptionButton>("optSpare", "Spare", "group");
  }
  TweakControls controls;
};

enum class State { Fresh, Started };

class EngineTest : public testing::Test {
 public:
  explicit EngineTest(test::Family family = test::Family::Nt, State state = State::Started)
      : machine(family),
        session(machine.get(), prompts),
        worker(session, book),
        pending(session, book) {
    foundation::detectSystem(session);
    session.pd.RecentPath = "C:\\Recent";
    std::set<std::string> forms{"frmOffice", "frmSpare"};
    for (const Tweak* tweak : allTweaks()) forms.emplace(tweak->form);
    for (const std::string& form : forms) {
      book.add(form, [form] { return std::make_unique<RowForm>(form); });
    }
    if (state == State::Started) start();
  }

  // What the main window's start leaves on the machine.
  void start() {
    for (const std::string_view key : {kState, kOptions}) createKey(HKLM, key);
    pending.p_FillLoadValues();
  }

  platform::Registry& registry() { return session.registry(); }
  void createKey(Root root, std::string_view path) {
    platform::HKEY key = 0;
    std::uint32_t disposition = 0;
    ASSERT_EQ(0, registry().RegCreateKeyExA(root, path, platform::KEY_ALL_ACCESS, key, disposition))
        << path;
    registry().RegCloseKey(key);
  }
  void setRaw(Root root, std::string_view path, std::string_view name, platform::RegType type,
              std::string_view bytes) {
    createKey(root, path);
    const platform::OpenKey key(registry(), root, path, platform::KEY_ALL_ACCESS);
    ASSERT_EQ(0, registry().RegSetValueExA(key.get(), name, type, bytes.data(),
                                           static_cast<std::uint32_t>(bytes.size())));
  }
  void setDword(Root root, std::string_view path, std::string_view name, std::uint32_t number) {
    std::string bytes;
    for (int i = 0; i < 4; ++i) bytes += static_cast<char>(number >> (8 * i) & 0xFF);
    setRaw(root, path, name, platform::REG_DWORD, bytes);
  }
  void setText(Root root, std::string_view path, std::string_view name, const std::string& text) {
    setRaw(root, path, name, platform::REG_SZ, text + '\0');
  }
  bool keyExists(Root root, std::string_view path) {
    return platform::OpenKey(registry(), root, path, platform::KEY_QUERY_VALUE).status() == 0;
  }
  // "dword:1", "\"text\"" or "hex(3):95 00": as the registry editor shows it; "" for none.
  std::string value(Root root, std::string_view path, std::string_view name) {
    RawValue raw;
    if (readRawValue(registry(), root, path, name, raw) != 0) return "";
    return shown(raw);
  }
  static std::string shown(const RawValue& raw) {
    if (raw.type == platform::REG_DWORD && raw.bytes.size() == 4) {
      return fmt::format("dword:{:x}", static_cast<std::uint32_t>(raw.number(0)));
    }
    if (raw.type == platform::REG_SZ && raw.bytes.ends_with('\0')) return '"' + raw.text() + '"';
    std::string hex = fmt::format("hex({}):", raw.type);
    for (const char c : raw.bytes) hex += fmt::format(" {:02x}", static_cast<std::uint8_t>(c));
    return hex;
  }

  // The whole registry of a user and the machine: path of each key and value, and what it holds.
  using Dump = std::map<std::string, std::string>;
  static Dump dump(platform::Registry& registry) {
    Dump result;
    dumpKey(registry, HKCU, "", "HKCU", result);
    dumpKey(registry, HKLM, "", "HKLM", result);
    return result;
  }

  forms::Form& mainForm() { return book.load("frmMain"); }
  forms::CheckBox& box(std::string_view control, std::string_view form = "frmMain") {
    return *book.load(form).find<forms::CheckBox>(control);
  }
  bool applyEnabled(std::string_view form = "frmMain") {
    return book.load(form).find<forms::CommandButton>("cmdApply")->Enabled;
  }
  // As the user's hand: the click that the real form's handler would record.
  void click(std::string_view property, int value) {
    const Tweak& tweak = *findTweak(property);
    forms::CheckBox& control = box(tweak.control, tweak.form);
    control.Value = value;
    pending.p_SetForApply(control, tweak.stateName, tweak.property, static_cast<int>(tweak.bank),
                          false);
  }
  // What a routine would find in its control.
  void put(const Tweak& tweak, int value) {
    if (tweak.shape == ControlShape::None) return;
    const forms::Form& form = book.load(tweak.form);
    if (auto* field = form.find<forms::TextBox>(tweak.control)) {
      field->Text = textFor(tweak, value);
    } else if (auto* list = form.find<forms::ComboBox>(tweak.control)) {
      list->ListIndex = value;
    } else {
      showState(form, tweak, value);
    }
  }
  // The text of a field, instead of the two states of a box.
  static std::string textFor(const Tweak& tweak, int value) {
    if (tweak.shape == ControlShape::ComboBox) return std::string(tweak.choices[value]);
    return value == 1 ? "65" : "400";
  }
  bool waits(std::string_view bank, std::string_view property) {
    return keyExists(HKLM, fmt::format("{}\\{}", bank, property));
  }
  void putFile(const std::string& path, std::string_view bytes) {
    machine->files().createFolder(path.substr(0, path.rfind('\\')));
    ASSERT_EQ(0, machine->files().replace(path, bytes)) << path;
  }

  test::TestMachine machine;
  test::ScriptedPrompts prompts;
  foundation::Session session;
  forms::FormBook book;
  RegWorker worker;
  PendingChanges pending;

 private:
  static void dumpKey(platform::Registry& registry, Root root, const std::string& path,
                      const std::string& shownPath, Dump& result) {
    const platform::OpenKey key(registry, root, path, platform::KEY_READ);
    if (key.status() != 0) return;
    result[shownPath] = "key";
    char name[platform::kNameBufferBytes];
    for (std::uint32_t i = 0;; ++i) {
      std::uint32_t length = sizeof name;
      if (registry.RegEnumValueA(key.get(), i, name, &length, nullptr, nullptr, nullptr) != 0)
        break;
      const std::string valueName(name, length);
      RawValue raw;
      readRawValue(registry, key.get(), valueName, raw);
      result[shownPath + " : " + valueName] = shown(raw);
    }
    for (std::uint32_t i = 0;; ++i) {
      std::uint32_t length = sizeof name;
      if (registry.RegEnumKeyExA(key.get(), i, name, &length) != 0) break;
      const std::string child(name, length);
      dumpKey(registry, root, path.empty() ? child : path + '\\' + child, shownPath + '\\' + child,
              result);
    }
  }
};

}  // namespace korvex::engine

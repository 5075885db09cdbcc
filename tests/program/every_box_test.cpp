// Every box of every form, clicked, applied and read back by the next run of the program.
#include <gtest/gtest.h>

#include <map>
#include <stdexcept>
#include <string>
#include <utility>

#include "engine/catalogue.h"
#include "program/program.h"
#include "support/machines.h"
#include "support/scripted_prompts.h"

namespace korvex::program {
namespace {

using engine::Tweak;

// Says yes to everything.
class AgreeingPerson : public test::ScriptedPrompts {
 public:
  platform::Answer messageBox(std::string_view, int style, std::string_view) override {
    const int buttons = style & platform::kButtonsMask;
    return buttons == platform::kButtonsOk ? platform::Answer::Ok : platform::Answer::Yes;
  }
};

// Value of each box that can be clicked, by form and control.
using Boxes = std::map<std::pair<std::string, std::string>, int>;

class OneRun {
 public:
  explicit OneRun(platform::Machine& machine) : program_(machine, person_) {
    EXPECT_EQ(StartResult::Started, program_.start());
  }
  ~OneRun() { EXPECT_TRUE(program_.finish()); }

  forms::CheckBox& box(const Tweak& row) {
    auto* found = program_.formBook().load(row.form).find<forms::CheckBox>(row.control);
    if (found == nullptr) throw std::runtime_error(std::string(row.control) + " is missing");
    return *found;
  }
  Boxes read() {
    Boxes result;
    for (const Tweak* row : engine::allTweaks()) {
      if (row->shape != engine::ControlShape::CheckBox || !box(*row).Enabled) continue;
      result[{std::string(row->form), std::string(row->control)}] = box(*row).Value;
    }
    return result;
  }
  // Clicks them all; returns what they show then.
  Boxes clickAll() {
    for (const Tweak* row : engine::allTweaks()) {
      if (row->shape != engine::ControlShape::CheckBox || !box(*row).Enabled) continue;
      box(*row).Value = box(*row).Value == 1 ? 0 : 1;
    }
    return read();
  }
  void apply() {
    for (const FormRow& entry : Program::forms()) {
      const auto* form = program_.formBook().loaded(entry.name);
      auto* button = form == nullptr ? nullptr : form->find<forms::CommandButton>("cmdApply");
      if (button == nullptr) continue;
      button->press();
      EXPECT_FALSE(button->Enabled) << entry.name << " could not write everything";
    }
  }
  void putSupportFiles() {
    const std::string& folder = program_.session().g_sAppPath;
    program_.session().files().createFolder(folder);
    EXPECT_EQ(0, program_.session().files().replace(folder + "\\zak.hlp", "zak"));
    EXPECT_EQ(0, program_.session().files().replace(folder + "\\kvxsup.exe", "program"));
  }

 private:
  AgreeingPerson person_;
  Program program_;
};

class EveryBox : public testing::TestWithParam<const char*> {};

TEST_P(EveryBox, IsAfterTheNextStartAsItWasLeft) {
  test::TestMachine machine(GetParam());
  Boxes atFirst;
  Boxes clicked;
  {
    OneRun run(machine.get());
    run.putSupportFiles();
    atFirst = run.read();
    clicked = run.clickAll();
    EXPECT_GT(clicked.size(), 50U);
    for (const auto& [control, value] : clicked) {
      EXPECT_NE(atFirst[control], value) << control.second << " takes no click";
    }
    run.apply();
  }
  {
    OneRun run(machine.get());
    EXPECT_EQ(clicked, run.read());
    EXPECT_EQ(atFirst, run.clickAll());
    run.apply();
  }
  OneRun run(machine.get());
  EXPECT_EQ(atFirst, run.read());
}

INSTANTIATE_TEST_SUITE_P(Samples, EveryBox,
                         testing::Values("windows-95", "windows-98", "windows-me", "windows-nt4",
                                         "windows-2000", "windows-2000-server"));

}  // namespace
}  // namespace korvex::program

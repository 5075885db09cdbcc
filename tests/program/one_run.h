// One run of the program on a machine, with every box of every form at hand.
#pragma once

#include <gtest/gtest.h>

#include <map>
#include <stdexcept>
#include <string>
#include <utility>

#include "engine/catalogue.h"
#include "program/program.h"
#include "support/scripted_prompts.h"

namespace korvex::program {

using engine::Tweak;

// Says yes to everything.
class AgreeingPerson : public test::ScriptedPrompts {
 public:
  std::string last;  // what was said to it
  platform::Answer messageBox(std::string_view text, int style, std::string_view) override {
    last = text;
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
      person_.last.clear();
      const int wanted = box(*row).Value == 1 ? 0 : 1;
      box(*row).Value = wanted;
      if (box(*row).Value != wanted) refused_[std::string(row->control)] = person_.last;
    }
    return read();
  }
  // The clicks that a form took back, and what it said.
  const std::map<std::string, std::string>& refused() const { return refused_; }
  void apply() {
    for (const FormRow& entry : Program::forms()) {
      auto* form = program_.formBook().loaded(entry.name);
      auto* button = form == nullptr ? nullptr : form->applyButton();
      if (button == nullptr) continue;
      button->press();
      EXPECT_FALSE(button->Enabled)
          << entry.name << " could not write everything: " << person_.last;
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
  std::map<std::string, std::string> refused_;
  Program program_;
};

}  // namespace korvex::program

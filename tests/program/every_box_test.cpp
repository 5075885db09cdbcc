// Every box of every form, clicked, applied and read back by the next run of the program.
#include <gtest/gtest.h>

#include <string>

#include "program/one_run.h"
#include "support/machines.h"

namespace korvex::program {
namespace {

using engine::Tweak;

// Box by box, so that a failure names those that differ.
void expectSame(const Boxes& expected, const Boxes& found) {
  EXPECT_EQ(expected.size(), found.size());
  for (const auto& [control, value] : expected) {
    const auto there = found.find(control);
    EXPECT_TRUE(there != found.end() && there->second == value)
        << control.first << '.' << control.second << " should be " << value;
  }
}

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
      if (run.refused().contains(control.second)) continue;
      EXPECT_NE(atFirst[control], value) << control.second << " takes no click";
    }
    for (const auto& [control, said] : run.refused()) {
      EXPECT_EQ("chkDOS_BOX_Here", control);
      EXPECT_NE(std::string::npos, said.find("already being provided by the PowerToys")) << said;
    }
    run.apply();
  }
  {
    OneRun run(machine.get());
    expectSame(clicked, run.read());
    expectSame(atFirst, run.clickAll());
    run.apply();
  }
  OneRun run(machine.get());
  expectSame(atFirst, run.read());
}

INSTANTIATE_TEST_SUITE_P(Samples, EveryBox,
                         testing::Values("windows-95", "windows-98", "windows-me", "windows-nt4",
                                         "windows-2000", "windows-2000-server"));

}  // namespace
}  // namespace korvex::program

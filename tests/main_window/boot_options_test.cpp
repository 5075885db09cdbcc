// MSDOS.SYS: what is written, what stays, and that the next start never finds half a file.
#include "main_window/boot_options.h"

#include <string>

#include "main_window/msdos_sys.h"
#include "main_window/window_fixture.h"

namespace korvex::main_window {
namespace {

using platform::Answer;

constexpr const char* kFile = "C:\\MSDOS.SYS";
constexpr const char* kMaster = "C:\\msdos.mstr";

struct SetCase {
  const char* before;
  const char* name;
  const char* after;  // without the padding
};
void PrintTo(const SetCase& c, std::ostream* out) { *out << c.before; }
class MsdosSysSet : public testing::TestWithParam<SetCase> {};

TEST_P(MsdosSysSet, ChangesOneLineAndKeepsEveryOther) {
  const std::string padding = ";" + std::string(1100, 'x') + "\r\n";
  MsdosSys document(padding + GetParam().before);
  document.set(GetParam().name, "7");
  EXPECT_EQ(padding + GetParam().after, document.bytes());
  EXPECT_EQ("7", document.value(GetParam().name));
}

INSTANTIATE_TEST_SUITE_P(
    Files, MsdosSysSet,
    testing::Values(
        SetCase{"[Options]\r\nBootGUI=1\r\n;x\r\n", "BootGUI", "[Options]\r\nBootGUI=7\r\n;x\r\n"},
        SetCase{"[options]\nbootgui = 1\nOther=2\n", "BootGUI", "[options]\nbootgui =7\nOther=2\n"},
        SetCase{"[Options]\r\nLogo=1\r\nLogo=0\r\n", "Logo", "[Options]\r\nLogo=1\r\nLogo=7\r\n"},
        SetCase{"[Options]\r\nA=1\r\n;pad\r\n[Paths]\r\nLogo=9\r\n", "Logo",
                "[Options]\r\nA=1\r\nLogo=7\r\n;pad\r\n[Paths]\r\nLogo=9\r\n"},
        SetCase{"[Paths]\r\nWinDir=C:\\W\x84\r\n;Logo=1", "Logo",
                "[Paths]\r\nWinDir=C:\\W\x84\r\n;Logo=1\r\n[Options]\r\nLogo=7\r\n"},
        SetCase{"[Options]\r\nA=1", "Logo", "[Options]\r\nA=1\r\nLogo=7\r\n"}));

TEST(MsdosSys, AFileThatWouldBeTooSmallIsFilledUp) {
  MsdosSys document("[Options]\r\nBootGUI=1");
  document.set("BootGUI", "0");
  const std::string bytes = document.bytes();
  EXPECT_GT(bytes.size(), 1024U);
  EXPECT_TRUE(bytes.starts_with("[Options]\r\nBootGUI=0\r\n;xxx")) << bytes.substr(0, 40);
  EXPECT_EQ(bytes, MsdosSys(bytes).bytes()) << "once is enough";
}

class BootOptionsTest : public testing::Test {
 public:
  BootOptionsTest() : machine("windows-98") { read(kFile, original); }

  std::uint32_t attributes() {
    std::uint32_t result = 0;
    EXPECT_EQ(0, machine->files().attributes(kFile, result));
    return result;
  }
  platform::Status read(const char* path, std::string& bytes) {
    return machine->files().read(path, bytes);
  }
  std::string present() {
    std::string bytes;
    EXPECT_EQ(0, read(kFile, bytes));
    return bytes;
  }
  static void clearBootGui(KorvexRun& run) { run.box("chkBootGUI").Value = forms::vbUnchecked; }

  test::TestMachine machine;
  std::string original;
};

TEST_F(BootOptionsTest, ApplyWritesWhatChangedKeepsTheAttributesAndMakesTheMasterOnce) {
  const std::uint32_t before = attributes();
  EXPECT_NE(0U, before & platform::FILE_ATTRIBUTE_READONLY) << "as Windows has it";
  KorvexRun run(machine.get());
  run.window();
  run.window().cmdApply.press();
  EXPECT_FALSE(machine->files().exists(kMaster)) << "nothing was changed";
  clearBootGui(run);
  EXPECT_TRUE(run.window().cmdApply.Enabled);
  run.window().cmdApply.press();
  EXPECT_EQ("0", MsdosSys(present()).value("BootGUI"));
  EXPECT_EQ(original.size(), present().size());
  EXPECT_EQ(before, attributes());

  run.box("chkBootKeys").Value = forms::vbUnchecked;
  run.window().cmdApply.press();
  std::string master;
  ASSERT_EQ(0, read(kMaster, master));
  EXPECT_EQ(original, master) << "the master is the file before the first change";
  EXPECT_TRUE(run.prompts.messages.empty());
}

TEST_F(BootOptionsTest, WhatSomebodyElseChangedMeanwhileStays) {
  KorvexRun run(machine.get());
  clearBootGui(run);
  ASSERT_EQ(0, machine->files().setAttributes(kFile, 0));
  MsdosSys other(original);
  other.set("BootMenuDelay", "5");
  ASSERT_EQ(0, machine->files().replace(kFile, other.bytes()));
  run.window().cmdApply.press();
  EXPECT_EQ("5", MsdosSys(present()).value("BootMenuDelay"));
  EXPECT_EQ("0", MsdosSys(present()).value("BootGUI"));
}

TEST_F(BootOptionsTest, AFailureLeavesTheFileAndItsAttributesAndSaysSo) {
  const std::uint32_t before = attributes();
  KorvexRun run(machine.get());
  clearBootGui(run);
  ASSERT_EQ(0, machine->files().setAttributes(kFile, 0));
  ASSERT_EQ(0, machine->files().remove(kFile));
  run.window().cmdApply.press();
  ASSERT_EQ(1U, run.prompts.messages.size());
  EXPECT_NE(std::string::npos, run.prompts.messages[0].text.find("could not be written"));
  EXPECT_TRUE(run.window().cmdApply.Enabled) << "it can be tried again";
  ASSERT_EQ(0, machine->files().replace(kFile, original));
  ASSERT_EQ(0, machine->files().setAttributes(kFile, before));
  run.window().cmdApply.press();
  EXPECT_EQ("0", MsdosSys(present()).value("BootGUI"));
  EXPECT_EQ(before, attributes());
}

TEST_F(BootOptionsTest, RestoreBringsTheMasterBackAndKeepsThePresentFile) {
  KorvexRun run(machine.get());
  auto& restore = *run.window().find<forms::CommandButton>("cmdRestoreMSDOSSYS");
  restore.press();
  ASSERT_EQ(1U, run.prompts.messages.size());
  EXPECT_TRUE(run.prompts.messages[0].text.starts_with("There is no master copy"));
  clearBootGui(run);
  run.window().cmdApply.press();
  const std::string changed = present();
  run.prompts.answers = {Answer::No};
  restore.press();
  EXPECT_EQ(changed, present());
  run.prompts.answers = {Answer::Yes};
  restore.press();
  EXPECT_EQ(original, present());
  EXPECT_EQ(forms::vbChecked, run.box("chkBootGUI").Value.get());
  std::string kept;
  ASSERT_EQ(0, read("C:\\msdos.kvx", kept));
  EXPECT_EQ(changed, kept);
}

TEST_F(BootOptionsTest, NumbersAreChecked) {
  KorvexRun run(machine.get());
  auto& entry = *run.window().find<forms::TextBox>("txtBootMenuDefault");
  entry.Text = "1x";
  ASSERT_EQ(1U, run.prompts.messages.size());
  EXPECT_EQ("This field accepts numerical characters only.", run.prompts.messages[0].text);
  EXPECT_EQ("1", entry.Text.get());
  entry.Text = "99";
  run.window().cmdApply.press();
  ASSERT_EQ(2U, run.prompts.messages.size());
  EXPECT_NE(std::string::npos, run.prompts.messages[1].text.find("from 0 to 8"));
  EXPECT_EQ(original, present());
}

TEST(BootOptions, OnNtThereIsNothingToSet) {
  test::TestMachine machine("windows-2000");
  KorvexRun run(machine.get());
  EXPECT_FALSE(run.box("chkBootGUI").Enabled);
  EXPECT_NE(std::string::npos, run.box("chkBootGUI").ToolTipText->find("only on Windows 95"));
}

}  // namespace
}  // namespace korvex::main_window

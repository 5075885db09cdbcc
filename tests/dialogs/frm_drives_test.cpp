// frmDrives: which bits stand for which drives, what is written and when, and what a drive is.
#include "dialogs/shell/frm_drives.h"

#include "dialogs/failing_machine.h"
#include "dialogs/shell/drive_kinds.h"

namespace korvex::dialogs {
namespace {

using forms::ItemPicture;

const std::string kExplorer =
    "HKCU\\Software\\Microsoft\\Windows\\CurrentVersion\\Policies\\Explorer";

class Drives : public OnFailingMachine<frmDrives> {
 public:
  explicit Drives(const std::string& sample = "windows-98") : OnFailingMachine(sample) {}
  std::string held() { return registry().value(kExplorer, "NoDrives"); }
  void hold(const std::string& data) {
    registry().put(kExplorer, "NoDrives", data);
    reopen();
  }
  void mark(const std::string& letters, bool hidden = true) {
    for (const char letter : letters) window().lstDrives.setChecked(letter - 'A', hidden);
  }
  // Whether "Done" closes the window.
  bool done() {
    bool closed = false;
    const auto closing = window().closeRequested.subscribe([&closed] { closed = true; });
    window().cmdDone.press();
    return closed;
  }
};

class DrivesOnNt : public Drives {
 public:
  DrivesOnNt() : Drives("windows-2000") {}
};

TEST_F(Drives, EachLetterHasItsBit) {
  struct Case {
    std::string letters;
    std::string bytes;
  };
  for (const Case& c : std::vector<Case>{{"Z", "00 00 00 02"},
                                         {"AY", "01 00 00 01"},
                                         {"HP", "80 80 00 00"},
                                         {"IQ", "00 01 01 00"},
                                         {"CDX", "0c 00 80 00"},
                                         {"", "00 00 00 00"}}) {
    window().cmdShowAll.press();
    mark(c.letters);
    EXPECT_TRUE(done()) << c.letters;
    EXPECT_EQ("binary " + c.bytes, held()) << c.letters;
    EXPECT_EQ(static_cast<int>(c.letters.size()),
              static_cast<int>(reopen().lstDrives.checkedItems().size()));
  }
  window().cmdHideAll.press();
  done();
  EXPECT_EQ("binary ff ff ff 03", held());
  EXPECT_EQ("26 of 26 drives hidden", window().StatusText.get());
  EXPECT_TRUE(session.g_bRebootNeeded);
  EXPECT_TRUE(prompts.messages.empty());
}

TEST_F(Drives, WhatIsNotDoneIsNotWritten) {
  mark("CD");
  window().cmdCancel.press();
  EXPECT_EQ("binary 00 00 00 00", held());
  EXPECT_FALSE(reopen().lstDrives.isChecked(2));
  EXPECT_TRUE(done());
  session.regTool.DeleteRegValue(platform::HKEY_CURRENT_USER, kExplorer.substr(5), "NoDrives");
  reopen();
  EXPECT_TRUE(done());
  EXPECT_EQ("delete", held()) << "missing is as good as zeros";
  EXPECT_FALSE(session.g_bRebootNeeded);
}

TEST_F(Drives, ADwordIsReadAndBecomesBinary) {
  hold("dword 67108876");  // bits 2 and 3, and one behind Z
  EXPECT_EQ((std::vector<std::string>{"C:", "D:"}), window().lstDrives.checkedItems());
  done();
  EXPECT_EQ("binary 0c 00 00 00", held());
  hold("binary 04");
  EXPECT_EQ(std::vector<std::string>{"C:"}, window().lstDrives.checkedItems());
  hold("\"C:\"");
  EXPECT_FALSE(window().lstDrives.Enabled || window().cmdDone.Enabled);
  EXPECT_TRUE(window().cmdCancel.Enabled);
}

TEST_F(Drives, WithoutThePolicyKeyNothingIsWrittenAndThePersonIsTold) {
  session.regTool.DeleteRegNodes(platform::HKEY_CURRENT_USER, kExplorer.substr(5));
  mark("C");
  EXPECT_FALSE(done());
  EXPECT_FALSE(registry().hasKey(kExplorer));
  EXPECT_TRUE(told("The list of hidden drives could not be changed: 2"));
  window().cmdCancel.press();
}

TEST_F(Drives, WhatAnotherProgramWroteMeanwhileIsNotOverwritten) {
  mark("C");
  registry().put(kExplorer, "NoDrives", "binary 00 00 00 01");
  EXPECT_FALSE(done());
  EXPECT_EQ("binary 00 00 00 01", held());
  EXPECT_EQ(std::vector<std::string>{"Y:"}, window().lstDrives.checkedItems());
  EXPECT_TRUE(told("have been changed meanwhile"));
}

TEST_F(Drives, AFailureLeavesTheValueAsItWas) {
  mark("E");
  expectAllOrNothing(kExplorer, [this] { window().cmdDone.press(); });
  EXPECT_EQ("binary 10 00 00 00", held());
}

TEST_F(Drives, TheMachineSaysWhatEachDriveIs) {
  const std::string scsi = "HKLM\\Enum\\SCSI\\CDROM\\1";
  registry().put(scsi, "Class", "\"CDROM\"");
  registry().put(scsi, "CurrentDriveLetterAssignment", "\"EG\"");
  registry().put("HKCU\\Network\\Persistent\\N", "RemotePath", "\"\\\\SERVER\\SHARE\"");
  registry().put("HKLM\\Software\\Wine\\Drives", "r:", "\"ramdisk\"");
  const DriveKinds kinds = driveKinds(session);
  EXPECT_EQ(ItemPicture::Floppy, kinds[0]);
  EXPECT_EQ(ItemPicture::HardDisk, kinds[2]);
  EXPECT_EQ(ItemPicture::CdRom, kinds[6]);
  EXPECT_EQ(ItemPicture::Network, kinds['N' - 'A']);
  EXPECT_EQ(ItemPicture::RamDisk, kinds['R' - 'A']);
  EXPECT_EQ(ItemPicture::None, kinds['S' - 'A']);
  EXPECT_EQ(ItemPicture::CdRom, window().lstDrives.picture(6));
}

TEST_F(DrivesOnNt, MountedDevicesSayWhatEachDriveIs) {
  const std::string key = "HKLM\\SYSTEM\\MountedDevices";
  registry().put(key, "\\DosDevices\\D:", "binary 01 02 03 04 00 7e 00 00 00 00 00 00");
  // "IDE#CdRom" in UTF-16
  registry().put(
      key, "\\DosDevices\\E:", "binary 49 00 44 00 45 00 23 00 43 00 64 00 52 00 6f 00 6d 00");
  registry().put("HKCU\\Network\\N", "RemotePath", "\"\\\\SERVER\\SHARE\"");
  const DriveKinds kinds = driveKinds(session);
  EXPECT_EQ(ItemPicture::Floppy, kinds[0]);
  EXPECT_EQ(ItemPicture::HardDisk, kinds[3]);
  EXPECT_EQ(ItemPicture::CdRom, kinds[4]);
  EXPECT_EQ(ItemPicture::Network, kinds['N' - 'A']);
}

}  // namespace
}  // namespace korvex::dialogs

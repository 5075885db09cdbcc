// What a tweak's help says it does.
#include "engine/whats_this.h"

#include <gtest/gtest.h>

#include "engine/catalogue.h"
#include "engine/reg_worker.h"

namespace korvex::engine {
namespace {

TEST(WhatsThis, TellsWhatTheRowWritesAndNothingThatItsModeCannotKnow) {
  Tweak row{.property = "P_rwTest", .key = "Key", .value = "Value"};
  row.mode = 1;
  EXPECT_EQ(
      "Sets the value Value of the key HKEY_CURRENT_USER\\Key. Checked: DWORD 1. Unchecked: no "
      "value. Windows default: no value.",
      whatsThis(row));

  Tweak binary = row;
  binary.mode = 0;
  binary.binaryLength = 4;
  binary.onValue = byte(0);
  binary.byDefault = byte(1);
  EXPECT_NE(std::string::npos,
            whatsThis(binary).find("Checked: binary 00 00 00 00. Unchecked: binary 01 00 00 00."))
      << whatsThis(binary);

  Tweak keeping = row;
  keeping.mode = 3;
  keeping.onValue = text("2");
  keeping.byDefault = text("0");
  keeping.keepsPrevious = true;
  EXPECT_NE(std::string::npos, whatsThis(keeping).find(
                                   "Checked: \"2\". Unchecked: what stood there before, or \"0\"."))
      << whatsThis(keeping);

  Tweak special = row;
  special.special = &RegWorker::P_rwNoAdminShares;
  EXPECT_EQ(std::string::npos, whatsThis(special).find("Checked:")) << whatsThis(special);

  Tweak help = row;
  help.mode = 21;
  EXPECT_EQ(std::string::npos, whatsThis(help).find("HKEY_")) << whatsThis(help);
}

TEST(WhatsThis, NoRowNamesAKeyThatItDoesNotHave) {
  for (const Tweak* row : allTweaks()) {
    if (row->shape == ControlShape::None) continue;
    EXPECT_EQ(std::string::npos, whatsThis(*row).find("\\. ")) << row->property;
  }
}

}  // namespace
}  // namespace korvex::engine

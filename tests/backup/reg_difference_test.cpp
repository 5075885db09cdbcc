// What a registry-editor file would change.
#include "backup/reg_difference.h"

#include <fmt/format.h>

#include "backup/backup_fixture.h"
#include "platform/text/reg_names.h"

namespace korvex::backup {
namespace {

using namespace platform;
using test::Family;
using Lines = std::vector<std::string>;

constexpr std::string_view kHead = "REGEDIT4\r\n\r\n";

class Differences : public testing::Test {
 protected:
  void SetUp() override {
    run_.view().put("HKCU\\Software\\T", "Same", "\"x\"");
    run_.view().put("HKCU\\Software\\T", "Other", "\"old\"");
    run_.view().put("HKCU\\Software\\T", "Typed", "dword 1");
    run_.view().put("HKCU\\Software\\T\\Sub", "In", "\"x\"");
    run_.view().put("HKCU\\Software\\T\\Gone\\Deep", "In", "\"x\"");
    run_.view().put("HKCU\\Software\\Tail", "In", "\"x\"");
  }

  RegDifference compare(const std::string& text, const CompareOptions& options = {}) {
    lines_.clear();
    // In pieces of a few bytes: the text is never there as a whole.
    const RegPieces pieces = [&](const std::function<Status(std::string_view)>& take) {
      for (std::size_t at = 0; at < text.size(); at += 7) take(text.substr(at, 7));
      return ERROR_SUCCESS;
    };
    return compareRegText(run_.machine.registry(), pieces, options, [this](const RegChange& one) {
      static const std::vector<const char*> kWords{"new key", "deleted key", "new", "changed",
                                                   "deleted"};
      lines_.push_back(fmt::format("{}{} {}|{}|{}|{}", one.extra ? "extra " : "",
                                   kWords.at(static_cast<std::size_t>(one.kind)), one.path,
                                   one.name, describeData(one.typeBefore, one.before),
                                   describeData(one.typeAfter, one.after)));
    });
  }

  BackupRun run_{Family::Nt};
  Lines lines_;
};

TEST_F(Differences, ValuesAreComparedByTypeAndDataAndMissingKeysAreTold) {
  const RegDifference result = compare(
      std::string(kHead) +
      "[HKEY_CURRENT_USER\\software\\t]\r\n\"same\"=\"x\"\r\n\"Other\"=\"new\"\r\n"
      "\"Typed\"=hex:01,00,00,00\r\n\"Fresh\"=dword:00000010\r\n\"Absent\"=-\r\n\r\n"
      "[HKEY_CURRENT_USER\\Software\\T\\A\\B]\r\n\"v\"=\"1\"\r\n\r\n"
      "[HKEY_CURRENT_USER\\Software\\T\\A\\C]\r\n\r\n[-HKEY_CURRENT_USER\\Software\\T\\Gone]\r\n");
  EXPECT_EQ(0, result.status);
  EXPECT_EQ((Lines{"changed software\\t|Other|REG_SZ \"old\"|REG_SZ \"new\"",
                   "changed software\\t|Typed|REG_DWORD 0x1|REG_BINARY 01 00 00 00",
                   "new software\\t|Fresh|REG_NONE|REG_DWORD 0x10",
                   "new key Software\\T\\A||REG_NONE|REG_NONE",
                   "new key Software\\T\\A\\B||REG_NONE|REG_NONE",
                   "new Software\\T\\A\\B|v|REG_NONE|REG_SZ \"1\"",
                   "new key Software\\T\\A\\C||REG_NONE|REG_NONE",
                   "deleted key Software\\T\\Gone||REG_NONE|REG_NONE"}),
            lines_);
  EXPECT_EQ(lines_.size(), result.changes);
}

TEST_F(Differences, WhatTheFileDoesNotHaveIsToGoWhereItIsToBeExact) {
  CompareOptions exact;
  exact.extras = Extras::Remove;
  exact.root = HKEY_CURRENT_USER;
  exact.within = "Software\\T";
  const RegDifference result =
      compare(std::string(kHead) +
                  "[HKEY_CURRENT_USER\\Software\\T]\r\n\"Same\"=\"x\"\r\n\"Typed\"=dword:1\r\n\r\n"
                  "[HKEY_CURRENT_USER\\Software\\T\\SUB]\r\n",
              exact);
  EXPECT_EQ(0, result.status);
  EXPECT_EQ((Lines{"extra deleted Software\\T|Other|REG_SZ \"old\"|REG_NONE",
                   "extra deleted key Software\\T\\Gone||REG_NONE|REG_NONE",
                   "extra deleted Software\\T\\Sub|In|REG_SZ \"x\"|REG_NONE"}),
            lines_);
}

TEST_F(Differences, AFileThatIsNotTheKeysOwnIsNeverTakenForIt) {
  CompareOptions exact;
  exact.extras = Extras::Remove;
  exact.root = HKEY_CURRENT_USER;
  exact.within = "Software\\T";
  // "Tail" begins like the key; nothing of it is compared.
  for (const char* other : {"[HKEY_CURRENT_USER\\Software\\Tail]\r\n\"In\"=\"new\"\r\n",
                            "[HKEY_LOCAL_MACHINE\\Software\\T]\r\n\"Same\"=\"new\"\r\n",
                            "[-HKEY_CURRENT_USER\\Software]\r\n"}) {
    const RegDifference result =
        compare(std::string(kHead) + "[HKEY_CURRENT_USER\\Software\\T]\r\n\r\n" + other, exact);
    EXPECT_NE("", result.outside) << other;
    for (const std::string& line : lines_) EXPECT_EQ(0U, line.find("extra ")) << line;
  }
  // A file that has lost its end would otherwise empty the key.
  EXPECT_EQ(ERROR_INVALID_DATA, compare(std::string(kHead), exact).status);
  EXPECT_EQ(ERROR_NOT_REGISTRY_FILE, compare("MZ not a registry file", exact).status);
  EXPECT_EQ(Lines{}, lines_);
  const RegDifference bad =
      compare(std::string(kHead) + "[HKEY_CURRENT_USER\\Software\\T]\r\n\"x\"=hello\r\n", exact);
  ASSERT_EQ(1U, bad.problems.size());
  EXPECT_EQ(0U, bad.problems[0].find("line 4: ")) << bad.problems[0];
}

}  // namespace
}  // namespace korvex::backup

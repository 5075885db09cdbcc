// Options of Office from a shell: not while one of its applications could write over them.
#include "cli_fixture.h"
#include "support/open_windows.h"

namespace korvex::cli {
namespace {

class OfficeSet : public CliTest {
 public:
  OfficeSet() : CliTest("windows-2000") {}
};

TEST_F(OfficeSet, NothingIsSetWhileAnApplicationRuns) {
  const std::string options = "HKCU\\Software\\Microsoft\\Office\\9.0\\Word\\Options";
  ASSERT_EQ(0, korvex({"reg", "set", options, "LiveScrolling", "REG_SZ", "0"}).code);
  test::setOpenWindows(machine.folder(), {"OpusApp", "mspim_wnd32"});
  const std::string before = dump();
  const Json error = json({"set", "StartMenuSpeed=65", "LiveScrolling=default"}).json()["error"];
  EXPECT_EQ("office-running", error["kind"]) << error;
  EXPECT_NE(std::string::npos, error["message"].get<std::string>().find(
                                   "Close these first: Microsoft Outlook, Microsoft Word."))
      << error;
  for (const char* wish : {"LiveScrolling=default", "LiveScrolling=on", "CacheSize=128"}) {
    EXPECT_EQ(4, korvex({"set", wish}).code) << wish;
  }
  EXPECT_EQ(before, dump());
  EXPECT_EQ(0, korvex({"set", "LiveScrolling=off"}).code) << "already so";

  test::setOpenWindows(machine.folder(), {"PP97FrameClass"});
  EXPECT_EQ(0, korvex({"set", "LiveScrolling=default"}).code);
  EXPECT_EQ("1", value(options, "LiveScrolling")["data"]);
}

}  // namespace
}  // namespace korvex::cli

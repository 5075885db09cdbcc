// What each page writes, against registry-editor files written by hand from the documents: a sweep
// over the rows cannot see a wrong key name, these files can.
#include <fmt/format.h>

#include <filesystem>

#include "engine_fixture.h"
#include "platform/common/reg_import.h"

namespace korvex::engine {
namespace {

struct GoldenPage {
  Page page;
  const char* file;
};

void PrintTo(const GoldenPage& page, std::ostream* out) { *out << page.file; }

class GoldenTest : public EngineTest, public testing::WithParamInterface<GoldenPage> {
 public:
  GoldenTest() : EngineTest(test::Family::Nt, State::Fresh) {}

  Dump expected(const std::string& state) {
    test::TestMachine other(test::Family::Nt);
    const auto file = std::filesystem::path(__FILE__).parent_path() / "golden" /
                      fmt::format("{}-{}.reg", GetParam().file, state);
    const auto result = platform::importRegFile(other.registry(), file);
    EXPECT_EQ(0, result.status) << result.message;
    EXPECT_EQ(0U, result.refused) << testing::PrintToString(result.messages);
    return dump(other.registry());
  }
  void applyPage(int value) {
    for (const Tweak* tweak : allTweaks()) {
      if (tweak->page != GetParam().page || tweak->form != "frmMain") continue;
      put(*tweak, value);
      EXPECT_TRUE(worker.call(tweak->property)) << tweak->property;
    }
  }
};

TEST_P(GoldenTest, CheckedClearedAndDefaultWriteWhatTheDocumentsSay) {
  putFile("C:\\Program Files\\Korvex\\kvxsup.exe", "program");
  applyPage(1);
  EXPECT_EQ(expected("on"), dump(registry()));
  applyPage(0);
  EXPECT_EQ(expected("off"), dump(registry()));
  session.g_bDefaulting = true;
  applyPage(1);
  EXPECT_EQ(expected("default"), dump(registry()));
}

INSTANTIATE_TEST_SUITE_P(Pages, GoldenTest,
                         testing::Values(GoldenPage{Page::Security, "security"},
                                         GoldenPage{Page::WinTweaks, "win-tweaks"},
                                         GoldenPage{Page::Windows9x, "windows-9x"},
                                         GoldenPage{Page::Options, "options"}));

TEST(Golden, EveryPageWithRowsHasItsFiles) {
  for (const Tweak* tweak : allTweaks()) {
    EXPECT_TRUE(tweak->page == Page::Security || tweak->page == Page::WinTweaks ||
                tweak->page == Page::Windows9x || tweak->page == Page::Options)
        << tweak->property
        << " stands on a page without golden files: write them, and add the page";
  }
}

}  // namespace
}  // namespace korvex::engine

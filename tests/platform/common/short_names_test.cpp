// Short names: Windows' form, one for each name, and the same whatever else comes and goes.
#include "platform/common/short_names.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>

namespace korvex::platform {
namespace {

using Names = std::vector<std::string>;

TEST(ShortNames, HaveWindowsForm) {
  EXPECT_EQ(shortNames({"Program Files", "win.ini", "page.html", "archive.tar.gz", "a+b.c", ".rc",
                        "Microsoft.NET", "Grüße.txt", "x."}),
            (Names{"PROGRA~1", "win.ini", "PAGE~1.HTM", "ARCHIV~1.GZ", "A_B~1.C", "RC~1",
                   "MICROS~1.NET", "GR__E~1.TXT", "X~1"}));
}

TEST(ShortNames, CollidingNamesDoNotShiftEachOther) {
  const Names few = shortNames({"Program Files", "Program Names"});
  EXPECT_EQ(few[0], "PROGRA~1");
  EXPECT_TRUE(isShortName(few[1])) << few[1];
  EXPECT_NE(few[1], "PROGRA~2");
  // In another order, and with names that come between and after: the same.
  const Names more = shortNames({"Program Names", "Program Zoo", "Program Logs", "Program Files"});
  EXPECT_EQ(more[0], few[1]);
  EXPECT_EQ(more[3], few[0]);
}

TEST(ShortNames, NeverNameTwoFiles) {
  // A real name may be just what a long one would be shortened to.
  EXPECT_NE(shortNames({"PROGRA~1", "Program Files"})[1], "PROGRA~1");
  EXPECT_NE(shortNames({"Long Name A", "LONG NAME A"})[0],
            shortNames({"Long Name A", "LONG NAME A"})[1]);
  // So many that 16 bits of hash must collide.
  Names names;
  for (int i = 0; i < 3000; ++i) names.push_back("Microsoft program " + std::to_string(i));
  const Names shorts = shortNames(names);
  EXPECT_EQ(std::set<std::string>(shorts.begin(), shorts.end()).size(), names.size());
  EXPECT_TRUE(std::all_of(shorts.begin(), shorts.end(), isShortName));
}

}  // namespace
}  // namespace korvex::platform

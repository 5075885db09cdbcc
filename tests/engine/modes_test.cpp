// The mode table, written down a second time as people read it.
#include "engine/modes.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <string>

namespace korvex::engine {
namespace {

using foundation::Variant;

std::string told(const Decision& decision) {
  using Act = Decision::Act;
  switch (decision.act) {
    case Act::Remember:
      return "remember " + foundation::variantText(decision.value);
    case Act::DeleteKey:
      return "delete key";
    case Act::SwapHelpFile:
      return "help on";
    case Act::RestoreHelpFile:
      return "help off";
    case Act::Write:
      break;
  }
  if (decision.value.isEmpty()) return "delete";
  // Kinds matter: they decide the type in the registry.
  if (decision.value.isString()) return '"' + *decision.value.string() + '"';
  return fmt::format("{} {}", decision.value.kind() == Variant::Kind::Integer ? "int" : "long",
                     *decision.value.number());
}

struct Expected {
  int mode;
  const char* checked;
  const char* unchecked;
  const char* grey;
};

constexpr Expected kTable[] = {
    {0, "int 1", "int 0", "int 2"},
    {1, "int 1", "delete", "delete"},
    {2, "int 0", "delete", "delete"},
    {3, "\"on\"", "long 7", "long 7"},
    {4, "\"1\"", "\"0\"", "\"0\""},
    {5, "\"1\"", "delete", "delete"},
    {6, "long 7", "\"on\"", "long 7"},
    {7, "delete", "int 0", "int 0"},
    {8, "int 0", "int 1", "int 1"},
    {9, "delete", "int 1", "int 1"},
    {10, "remember on", "delete key", "delete key"},
    {11, "delete", "\"play\"", "\"play\""},
    {12, "\"1\"", "\"2\"", "\"2\""},
    {13, "\"on\"", "long 7", "long 7"},
    {14, "\"no\"", "long 7", "long 7"},
    {15, "\"before\"", "\"before\"", "\"before\""},
    {16, "\"0\"", "\"1\"", "\"1\""},
    {17, "\"on\"", "\"on\"", "\"on\""},
    {18, "int 2", "delete", "delete"},
    {19, "\"defrag.exe\"", "delete", "delete"},
    {20, "\"no\"", "\"yes\"", "\"yes\""},
    {21, "help on", "help off", "help off"},
};

Tweak rowOf(int mode) {
  return {.property = "P_rwTest",
          .mode = static_cast<std::int16_t>(mode),
          .byDefault = dword(7),
          .onValue = text("on")};
}

TEST(Modes, EachStateOfTheBoxMeansWhatTheTableSays) {
  ASSERT_EQ(std::size(kTable), kModes.size());
  for (const Expected& expected : kTable) {
    SCOPED_TRACE(fmt::format("mode {}", expected.mode));
    const Tweak row = rowOf(expected.mode);
    EXPECT_EQ(expected.checked, told(decide(row, 1, "before")));
    EXPECT_EQ(expected.unchecked, told(decide(row, 0, "before")));
    EXPECT_EQ(expected.grey, told(decide(row, 2, "before")));
  }
}

TEST(Modes, RestoreDefaultsWritesTheDefaultButDeletesTheKeyAndRestoresTheHelpFile) {
  for (const Mode& mode : kModes) {
    SCOPED_TRACE(fmt::format("mode {}", mode.number));
    const char* const expected =
        mode.number == 10 ? "delete key" : (mode.number == 21 ? "help off" : "long 7");
    EXPECT_EQ(expected, told(decideDefault(rowOf(mode.number))));
  }
}

}  // namespace
}  // namespace korvex::engine

#include "foundation/trace.h"

#include "fixture.h"
#include "foundation/error_handler.h"
#include "foundation/fix_path.h"

namespace korvex::foundation {
namespace {

using namespace platform;
using namespace std::string_literals;
using test::Family;
using test::TestRun;

TEST(TraceText, PiecesAreJoinedByZeros) {
  TraceText trace;
  trace.enter("[p_SetForApply]");
  trace.dump("lRetVal&", Status{5});
  trace.dump("g_bNT", true);
  trace.add("");
  EXPECT_EQ(trace.text(), "[p_SetForApply]\0lRetVal&=5\0g_bNT=True\0"s);
}

TEST(TraceText, AZeroInAValueDoesNotEndThePiece) {
  TraceText trace;
  trace.dump("list$", "a\0b\0\0"s);
  EXPECT_EQ(trace.text(), "list$=a b  \0"s);
}

TEST(TraceText, StaysBelowItsLimitAndTellsWhatWent) {
  TraceText trace(1000);
  for (int i = 0; i < 5000; ++i) {
    trace.add("piece " + std::to_string(i));
    ASSERT_LE(trace.text().size(), 1100U);
  }
  const std::string text = trace.text();
  const auto kept = static_cast<std::size_t>(std::count(text.begin(), text.end(), '\0')) - 1;
  EXPECT_EQ(trace.dropped() + kept, 5000U);
  EXPECT_TRUE(text.starts_with("[TraceText]: " + std::to_string(trace.dropped()) +
                               " older pieces were dropped\0piece "s));
  EXPECT_TRUE(text.ends_with("piece 4999\0"s));
}

TEST(TraceText, AnOverlongPieceIsCutBetweenCharacters) {
  TraceText trace(1000);
  trace.add("x" + [] {
    std::string text;
    for (int i = 0; i < 1000; ++i) text += "\xC3\xA4";
    return text;
  }());
  EXPECT_TRUE(trace.text().ends_with("\xC3\xA4...\0"s));
}

TEST(LogLines, TheWalkEndsAtAnEmptyPieceAndNeedsZeros) {
  EXPECT_EQ(logLines("no zero"), "\r\n");
  EXPECT_EQ(logLines(""), "\r\n");
  EXPECT_EQ(logLines("a\0b\0rest"s), "a\r\nb\r\n\r\n");
  EXPECT_EQ(logLines("a\0\r\0b\0"s), "a\r\nb\r\n\r\n");
  EXPECT_EQ(logLines("a\0\0b\0"s), "a\r\n\r\n\r\n");
}

TEST(FixPath, OneFormForAPathAndNoneForALog) {
  TraceText trace;
  EXPECT_EQ(P_FixPathGen(trace, R"( "C:/Program Files\\Korvex\" )"), R"(C:\Program Files\Korvex\)");
  EXPECT_EQ(P_FixPathGen(trace, R"(\\server\\share)"), R"(\\server\share)");
  EXPECT_EQ(P_FixPathGen(trace, " a//b\0 c\0"s), " a//b\0 c\0"s);
  EXPECT_TRUE(trace.text().ends_with("[P_FixPathGen]: sPath$= a//b\0"s));
}

class Log : public ::testing::Test {
 protected:
  std::string file(std::string_view path) {
    std::string bytes;
    EXPECT_EQ(run.session.files().read(path, bytes), 0) << path;
    return bytes;
  }
  TestRun run{Family::Nt};
  LogWorker& log = run.session.logWorker;
};

TEST_F(Log, GrowsOrStartsAgain) {
  const std::string_view path = R"(C:\WINNT\Temp\KORVEX.LOG)";
  EXPECT_TRUE(log.cP_WriteToLogFile("a\0"s, true));
  EXPECT_TRUE(log.cP_WriteToLogFile("b\0"s, false));
  EXPECT_EQ(file(path), "a\r\n\r\nb\r\n\r\n");
  EXPECT_TRUE(log.cP_WriteToLogFile("c\0"s, true));
  EXPECT_EQ(file(path), "c\r\n\r\n");
}

TEST_F(Log, AFileThatCannotBeReplacedIsTracedAndKept) {
  const std::string_view path = R"(C:\WINNT\Temp\KORVEX.LOG)";
  EXPECT_EQ(run.session.files().replace(path, "old"), 0);
  EXPECT_EQ(run.session.files().setAttributes(path, FILE_ATTRIBUTE_READONLY), 0);
  EXPECT_FALSE(log.cP_WriteToLogFile("a\0"s, true));
  EXPECT_EQ(file(path), "old");
  EXPECT_TRUE(run.session.trace.contains("[cP_WriteToLogFile]\0lRetVal&=5"s));
}

TEST_F(Log, TheRunLogMakesItsFolderAndKeepsItsNewerHalf) {
  const std::string_view path = R"(C:\Program Files\Korvex\kvxlog.log)";
  EXPECT_EQ(log.boundRunLog(path), 0);
  run.session.trace.add("first run");
  EXPECT_EQ(log.appendRunLog(path), 0);
  EXPECT_EQ(file(path), "first run\r\n\r\n");
  EXPECT_EQ(log.boundRunLog(path, 100), 0);
  EXPECT_EQ(file(path), "first run\r\n\r\n");

  std::string lines;
  for (int i = 0; i < 50; ++i) lines += "line " + std::to_string(i) + "\r\n";
  EXPECT_EQ(run.session.files().replace(path, lines), 0);
  EXPECT_EQ(log.boundRunLog(path, 100), 0);
  EXPECT_EQ(file(path), lines.substr(lines.find("line 45")));
}

constexpr Fatal kFatal = Fatal::Yes;
const RuntimeError kOverflow(6, "Overflow", "here");

class Errors : public ::testing::Test {
 protected:
  TestRun run{Family::Nt};
  Session& session = run.session;
};

TEST_F(Errors, AFatalErrorIsToldAndEndsTheProgramOnce) {
  int ends = 0;
  session.onEndRequested = [&] { ++ends; };
  EXPECT_EQ(ErrorHandler(session, "p_X", kOverflow, kFatal), AfterError::EndProgram);
  EXPECT_EQ(ErrorHandler(session, "p_X", kOverflow, kFatal), AfterError::EndProgram);
  EXPECT_EQ(ends, 1);
  EXPECT_TRUE(session.endRequested());
  ASSERT_EQ(run.prompts.messages.size(), 2U);
  EXPECT_EQ(run.prompts.messages[0].text,
            "6: Overflow An error occurred processing p_X.\r\n\r\n"
            "This is a non-recoverable error.");
  EXPECT_EQ(run.prompts.messages[0].style, 16);
}

TEST_F(Errors, YesGoesOnAndNoEnds) {
  run.prompts.answers = {Answer::Yes, Answer::No};
  EXPECT_EQ(ErrorHandler(session, "p_X", kOverflow, Fatal::No), AfterError::GoOn);
  EXPECT_FALSE(session.endRequested());
  EXPECT_TRUE(session.trace.contains("[ErrorHandler=p_X]6: Overflow"s));
  EXPECT_EQ(run.prompts.messages[0].text,
            "6: Overflow An error occurred processing:  p_X\r\n\r\nContinue?");
  EXPECT_EQ(run.prompts.messages[0].style, 20);
  EXPECT_EQ(ErrorHandler(session, "p_X", kOverflow, Fatal::No), AfterError::EndProgram);
  EXPECT_TRUE(session.endRequested());
}

TEST_F(Errors, TheTrapRoutesWhateverIsThrown) {
  run.prompts.answers = {Answer::Yes, Answer::Yes, Answer::Yes};
  bool ran = false;
  EXPECT_EQ(guarded(session, "p_A", [&] { ran = true; }), AfterError::GoOn);
  EXPECT_TRUE(ran && run.prompts.messages.empty());
  guarded(session, "p_B", [] { throw kOverflow; });
  guarded(session, "p_C", [] { throw std::bad_alloc(); });
  guarded(session, "p_D", [] { throw std::runtime_error("gone"); });
  EXPECT_TRUE(session.trace.contains("[ErrorHandler=p_B]6: Overflow"));
  EXPECT_TRUE(session.trace.contains("[ErrorHandler=p_C]7: Out of memory"));
  EXPECT_TRUE(session.trace.contains("[ErrorHandler=p_D]51: Internal error: gone"));
}

}  // namespace
}  // namespace korvex::foundation

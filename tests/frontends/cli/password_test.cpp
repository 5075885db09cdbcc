// The password of Korvex on the command line: what is refused without it, and how it is given.
#include <unistd.h>

#include "frontends/cli/cli_fixture.h"

namespace korvex::cli {
namespace {

// A file descriptor that gives a text once.
class Given {
 public:
  explicit Given(const std::string& text) {
    EXPECT_EQ(0, ::pipe(ends_));
    EXPECT_EQ(static_cast<ssize_t>(text.size()), ::write(ends_[1], text.data(), text.size()));
    ::close(ends_[1]);
  }
  ~Given() { ::close(ends_[0]); }
  std::string number() const { return std::to_string(ends_[0]); }

 private:
  int ends_[2] = {-1, -1};
};

class PasswordCommands : public CliTest {
 public:
  Result with(const std::string& password, std::vector<std::string> args) {
    const Given given(password);
    args.insert(args.begin(), {"--password-fd", given.number()});
    return korvex(std::move(args));
  }
  std::string setPassword(const std::string& password) {
    const Given given(password);
    const Result result = json({"password", "set", "--new-password-fd", given.number()});
    EXPECT_EQ(0, result.code) << result.err;
    return result.json()["password"].value("resetCode", "");
  }
  bool isSet() { return json({"password", "status"}).json()["password"]["set"].get<bool>(); }
};

TEST_F(PasswordCommands, WithoutThePasswordNothingIsReadOrWritten) {
  EXPECT_FALSE(isSet());
  setPassword("Open Sesame\n");
  EXPECT_TRUE(isSet());
  const auto before = everyFile();
  const std::vector<std::vector<std::string>> commands{{"list"},
                                                       {"show", "P_rwRun"},
                                                       {"set", "P_rwRun=on"},
                                                       {"reg", "query", "HKCU"},
                                                       {"form", "show", "frmMain"},
                                                       {"form", "run", "frmMain", "press=cmdDone"},
                                                       {"set-of", "list"}};
  for (const auto& command : commands) {
    const Result result = with("wrong", command);
    EXPECT_EQ(5, result.code) << command[0];
    EXPECT_NE(std::string::npos, result.err.find("Invalid Password, try again!")) << result.err;
    EXPECT_EQ("", result.out) << command[0];
  }
  EXPECT_EQ(before, everyFile());
  EXPECT_EQ(0, korvex({"machine", "info"}).code) << "tells nothing of the settings";
}

TEST_F(PasswordCommands, ThePasswordOpensWhateverItsCase) {
  setPassword("Open Sesame");
  EXPECT_EQ(0, with("OPEN sesame\r\nmore", {"set", "P_rwRun=on"}).code);
  EXPECT_EQ(0, with("open sesame", {"show", "P_rwRun"}).code);
  EXPECT_EQ(5, with("open sesame ", {"show", "P_rwRun"}).code) << "a blank counts";
  const Result closed = korvex({"--password-fd", "1000", "list"});
  EXPECT_EQ(2, closed.code);
  EXPECT_NE(std::string::npos, closed.err.find("1000")) << closed.err;
}

TEST_F(PasswordCommands, ChangingNeedsThePresentOneAndRemovingTheCodeWillDo) {
  const std::string code = setPassword("first");
  ASSERT_FALSE(code.empty());
  const Given wanted("second");
  EXPECT_EQ(5, with("guess", {"password", "set", "--new-password-fd", wanted.number()}).code);
  EXPECT_EQ(5, with(code, {"list"}).code) << "the code only takes the password away";
  EXPECT_EQ(5, with("guess", {"password", "clear"}).code);
  EXPECT_TRUE(isSet());
  EXPECT_EQ(0, with(code, {"password", "clear"}).code);
  EXPECT_FALSE(isSet());
  EXPECT_EQ(0, korvex({"list"}).code);
  EXPECT_EQ(2, [this] {
    const Given empty("\n");
    return korvex({"password", "set", "--new-password-fd", empty.number()}).code;
  }());
}

TEST_F(PasswordCommands, APasswordIsNeverTakenFromAnArgument) {
  const Result refused =
      korvex({"form", "run", "frmPassword", "type=txtNew:secret", "press=cmdSet"});
  EXPECT_EQ(2, refused.code);
  EXPECT_NE(std::string::npos, refused.err.find("secret=txtNew:FD")) << refused.err;
  EXPECT_FALSE(isSet());
  const Given once("Sesame\nSesame\n");  // a line for each field
  const Result done = korvex({"form", "run", "frmPassword", "secret=txtNew:" + once.number(),
                              "secret=txtRepeat:" + once.number(), "press=cmdSet"});
  EXPECT_EQ(0, done.code) << done.err;
  EXPECT_EQ(std::string::npos, done.out.find("Sesame")) << done.out;
  EXPECT_EQ(0, with("sesame", {"list"}).code);
}

}  // namespace
}  // namespace korvex::cli

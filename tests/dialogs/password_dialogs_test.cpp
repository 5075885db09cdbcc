// frmLogin and frmPassword, as a person who knows the password, one who forgot it, one who never
// knew it.
#include <memory>

#include "dialogs/dialog_fixture.h"
#include "dialogs/logon/frm_login.h"
#include "dialogs/logon/frm_password.h"
#include "support/plain_hash.h"

namespace korvex::dialogs {
namespace {

class PasswordDialogs : public DialogTest {
 public:
  PasswordDialogs() {
    book.add(frmLogin::kName, [this] { return std::make_unique<frmLogin>(session, password); });
    book.add(frmPassword::kName,
             [this] { return std::make_unique<frmPassword>(session, password); });
  }
  // Types into fields and presses a button.
  static void type(forms::Form& form, std::string_view field, const std::string& text) {
    form.find<forms::TextBox>(field)->Text = text;
  }
  static void press(forms::Form& form, std::string_view button) {
    form.find<forms::CommandButton>(button)->press();
  }
  bool login(const std::function<void(forms::Form&)>& use) {
    host.use = use;
    return ValidateKorvexSecurity(session, book, password);
  }
  std::string said() { return prompts.messages.empty() ? "" : prompts.messages.back().text; }

  test::PlainHash hash;
  protection::ProgramPassword password{session.regTool, hash};
  std::string code;
};

TEST_F(PasswordDialogs, WithoutAPasswordNobodyIsAsked) {
  EXPECT_TRUE(login([](forms::Form&) { ADD_FAILURE() << "asked"; }));
  EXPECT_EQ("OFF", session.g_sLogin);
}

TEST_F(PasswordDialogs, AWrongPasswordStaysTheRightOneOpens) {
  ASSERT_EQ(0, password.set("Sesame", code));
  EXPECT_TRUE(login([this](forms::Form& form) {
    type(form, "txtPassword", "sesam");
    press(form, "cmdOK");
    EXPECT_EQ("Invalid Password, try again!", said());
    EXPECT_EQ("Login", prompts.messages.back().title);
    EXPECT_EQ("", form.find("txtPassword")->stateText());
    EXPECT_EQ("CANCEL", session.g_sLogin);
    type(form, "txtPassword", "SESAME");
    EXPECT_EQ("(hidden)", form.find("txtPassword")->stateText());
    press(form, "cmdOK");
  }));
  EXPECT_EQ("TRUE", session.g_sLogin);
  EXPECT_EQ(std::string::npos, session.trace.text().find("SESAME"));
}

TEST_F(PasswordDialogs, CancelOpensNothingAndDeletesNothing) {
  ASSERT_EQ(0, password.set("Sesame", code));
  EXPECT_FALSE(login([](forms::Form& form) { press(form, "cmdCancel"); }));
  EXPECT_EQ("CANCEL", session.g_sLogin);
  EXPECT_TRUE(password.isSet());
}

TEST_F(PasswordDialogs, TheResetCodeTakesThePasswordAway) {
  ASSERT_EQ(0, password.set("Sesame", code));
  EXPECT_TRUE(login([this](forms::Form& form) {
    type(form, "txtPassword", code);
    press(form, "cmdOK");
  }));
  EXPECT_EQ("TRUE", session.g_sLogin);
  EXPECT_FALSE(password.isSet());
  EXPECT_FALSE(registry().hasKey("HKCR\\Korvex.Protection"));
}

TEST_F(PasswordDialogs, APasswordIsSetOnlyWhenItWasTypedTwice) {
  host.use = [this](forms::Form& form) {
    EXPECT_FALSE(form.find("txtPresent")->Enabled);
    press(form, "cmdSet");
    EXPECT_EQ("Type the new password, twice.", said());
    type(form, "txtNew", "one");
    type(form, "txtRepeat", "two");
    press(form, "cmdSet");
    EXPECT_NE(std::string::npos, said().find("differ"));
    EXPECT_FALSE(password.isSet());
    type(form, "txtRepeat", "ONE");
    press(form, "cmdSet");
  };
  book.showModal(frmPassword::kName);
  EXPECT_EQ(protection::ProgramPassword::Match::Password, password.check("one"));
  const std::size_t at = said().find("CODE-");
  ASSERT_NE(std::string::npos, at) << said();
  EXPECT_EQ(protection::ProgramPassword::Match::ResetCode,
            password.check(said().substr(at, said().find('\r', at) - at)));
}

TEST_F(PasswordDialogs, OnlyWhoKnowsThePresentPasswordChangesOrRemovesIt) {
  ASSERT_EQ(0, password.set("Sesame", code));
  for (const char* button : {"cmdSet", "cmdClear"}) {
    host.use = [&](forms::Form& form) {
      type(form, "txtPresent", "guess");
      type(form, "txtNew", "new");
      type(form, "txtRepeat", "new");
      press(form, button);
      EXPECT_EQ("Invalid Password, try again!", said());
      EXPECT_EQ(protection::ProgramPassword::Match::Password, password.check("sesame"));
      form.close();
    };
    book.showModal(frmPassword::kName);
  }
  host.use = [](forms::Form& form) {
    type(form, "txtPresent", "sesame");
    press(form, "cmdClear");
  };
  book.showModal(frmPassword::kName);
  EXPECT_FALSE(password.isSet());
}

}  // namespace
}  // namespace korvex::dialogs

// Every tweak on every sample machine, through its form and Apply, against what the documents say
// (expected/): exact types and bytes, both ways and back to the default, and nothing besides.
#include <fmt/format.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <ostream>
#include <set>
#include <string>
#include <vector>

#include "engine/catalogue.h"
#include "engine/readers.h"
#include "engine/tweak_controls.h"
#include "program/program.h"
#include "support/expected_tweaks.h"
#include "support/machines.h"
#include "support/real_machines.h"
#include "support/registry_view.h"
#include "support/scripted_prompts.h"

namespace korvex::program {
namespace {

using engine::Tweak;
using engine::TweakState;
using test::ExpectedLine;
using test::ExpectedTweak;
using What = ExpectedLine::What;

// Which settings of Jet are meant: those of the newest for all programs, Access's own, or those of
// an older Jet that is also there.
enum class Jet { Newest, OfAccess, Older };

struct Sample {
  const char* id;
  char letter;
  std::optional<test::RealKind> real = std::nullopt;  // none: the embedded machine
  Jet jet = Jet::Newest;
};
void PrintTo(const Sample& sample, std::ostream* out) {
  constexpr std::array kJets{"", ", Access alone", ", an older Jet"};
  *out << sample.id << kJets.at(static_cast<std::size_t>(sample.jet));
}

std::unique_ptr<test::SomeMachine> machineFor(const Sample& sample) {
  if (!sample.real) return std::make_unique<test::TestMachine>(std::string(sample.id));
  return std::make_unique<test::RealMachine>(*sample.real, sample.id);
}

enum Step { Checked, Unchecked, ByDefault };
constexpr std::array kStepNames{"checked", "unchecked", "by default"};

constexpr std::array<std::string_view, 9> kBanks{
    "Configuration",      "CurrentSettings",    "CurrentSettingsII",
    "CurrentSettingsIII", "CurrentSettingsIV",  "CurrentSettingsV",
    "CurrentSettingsVI",  "CurrentSettingsVII", "CurrentSettingsVIII"};

std::string folded(std::string text) {
  for (char& c : text) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  return text;
}

const std::string kOlderJet = "HKLM\\Software\\Microsoft\\Jet\\3.0\\Engines";

test::ExpectedTweaks::Names jetNames(const Sample& sample) {
  if (sample.jet == Jet::Older) return {{"$Jet", kOlderJet}, {"$Engine", "JET 3.X"}};
  if (sample.jet == Jet::Newest) return {};
  const bool is97 = sample.letter == '8' || sample.letter == '4';
  return {{"$Jet", is97 ? "HKLM\\Software\\Microsoft\\Access\\8.0\\Jet\\3.5\\Engines"
                        : "HKLM\\Software\\Microsoft\\Access\\9.0\\Jet\\4.0\\Engines"}};
}

test::ExpectedTweaks expectedFor(const Sample& sample) {
  return {std::filesystem::path(__FILE__).parent_path() / "expected", sample.id, sample.letter,
          jetNames(sample)};
}

class EveryTweak : public testing::TestWithParam<Sample> {
 protected:
  EveryTweak() : expected_(expectedFor(GetParam())) {}

  void SetUp() override {
    putFile("C:\\Program Files\\Korvex\\zak.hlp", "zak");
    putFile("C:\\Program Files\\Korvex\\kvxsup.exe", "program");
    for (const ExpectedTweak& tweak : expected_.tweaks) {
      for (const ExpectedLine& line : tweak.given) {
        if (line.what == What::File) {
          putFile(line.key, line.states[0].substr(1, line.states[0].size() - 2));
        } else {
          view_.put(line.key, line.name, line.states[0]);
        }
      }
    }
    program_ = std::make_unique<Program>(machine_, prompts_);
    ASSERT_EQ(StartResult::Started, program_->start());
    ASSERT_EQ(0, testing::UnitTest::GetInstance()->current_test_info()->result()->Failed());
  }
  void TearDown() override {
    if (program_) program_->finish();
  }

  void putFile(const std::string& path, const std::string& content) {
    machine_.files().createFolder(path.substr(0, path.rfind('\\')));
    ASSERT_EQ(0, machine_.files().replace(path, content)) << path;
  }

  // What stands there, in the words of the files.
  std::string now(const ExpectedLine& line) {
    switch (line.what) {
      case What::Key:
        return view_.hasKey(line.key) ? "there" : "gone";
      case What::Value:
        return view_.value(line.key, line.name);
      case What::File:
        break;
    }
    std::uint32_t attributes = 0;
    std::string content;
    if (machine_.files().attributes(line.key, attributes) != 0) return "delete";
    if ((attributes & platform::FILE_ATTRIBUTE_DIRECTORY) != 0) return "folder";
    EXPECT_EQ(0, machine_.files().read(line.key, content));
    return '"' + content + '"';
  }
  // The other values of the keys that a tweak writes to.
  std::map<std::string, std::string> neighbours(const ExpectedTweak& tweak) {
    std::map<std::string, std::string> result;
    for (const ExpectedLine& line : tweak.lines) {
      if (line.what != What::Value) continue;
      for (const auto& [name, data] : view_.values(line.key)) {
        result[folded(line.key + " | " + name)] = data;
      }
    }
    for (const ExpectedLine& line : tweak.lines) result.erase(folded(line.key + " | " + line.name));
    return result;
  }
  std::string marker(const ExpectedTweak& tweak) const {
    return fmt::format("HKLM\\SOFTWARE\\Korvex\\{}\\{}", kBanks.at(tweak.bank - 1), tweak.property);
  }

  static bool type(const forms::Form& form, const Tweak& row, const std::string& text) {
    if (auto* list = form.find<forms::ComboBox>(row.control)) {
      const auto item = std::ranges::find(list->items(), text);
      list->ListIndex = static_cast<int>(item - list->items().begin());
      return item != list->items().end();
    }
    auto* field = form.find<forms::TextBox>(row.control);
    if (field != nullptr) field->Text = text;
    return field != nullptr;
  }

  // As a person: the control of the row, then Apply.
  void operate(const ExpectedTweak& tweak, const Tweak& row, Step step) {
    forms::FormBook& book = program_->formBook();
    forms::Form& form = book.load(row.form);
    if (tweak.typed) {
      ASSERT_TRUE(type(form, row, tweak.typed->at(step))) << row.control;
    } else {
      const int wanted = step == Checked ? 1 : 0;
      ASSERT_TRUE(engine::shownState(form, row)) << row.control;
      if (engine::shownState(form, row) == wanted) engine::showState(form, row, 1 - wanted);
      engine::showState(form, row, wanted);
      EXPECT_TRUE(view_.hasKey(marker(tweak))) << "no marker " << marker(tweak);
    }
    form.applyButton()->press();
  }
  // A field that was edited is written by each Apply of its window, until that is closed.
  void closeWindowOf(const Tweak& row) {
    EXPECT_TRUE(row.form == "frmMain" || program_->formBook().unload(row.form));
  }

  void expectLines(const ExpectedTweak& tweak, const std::vector<std::string>& fresh, Step step) {
    for (std::size_t i = 0; i < tweak.lines.size(); ++i) {
      const ExpectedLine& line = tweak.lines[i];
      const std::string& wanted = line.states.at(step);
      EXPECT_EQ(wanted == "kept" ? fresh[i] : wanted, now(line)) << line.key << " | " << line.name;
    }
  }

  void expectMessages(const ExpectedTweak& tweak, Step step) {
    std::size_t wanted = 0;
    if (step == Checked && tweak.says.empty() && tweak.answer) wanted = 1;
    if (step == Checked && !tweak.says.empty()) {
      wanted = 1;
      EXPECT_TRUE(!prompts_.messages.empty() && prompts_.messages[0].text.starts_with(tweak.says));
    }
    EXPECT_EQ(wanted, prompts_.messages.size());
    for (const auto& message : prompts_.messages) {
      if (wanted == 0) ADD_FAILURE() << message.text;
    }
    EXPECT_TRUE(prompts_.answers.empty()) << "not asked";
    prompts_.answers.clear();
    prompts_.messages.clear();
  }

  void carryOut(const ExpectedTweak& tweak, const Tweak& row, Step step,
                const std::vector<std::string>& fresh) {
    SCOPED_TRACE(kStepNames.at(step));
    foundation::Session& session = program_->session();
    if (tweak.answer && step == Checked) {
      prompts_.answers = {*tweak.answer ? platform::Answer::Yes : platform::Answer::No};
    }
    session.g_bRebootNeeded = !tweak.reboot.value_or(false);
    if (step == ByDefault || row.shape == engine::ControlShape::None) {
      session.g_bDefaulting = step == ByDefault;
      EXPECT_TRUE(program_->regWorker().call(tweak.property));
      session.g_bDefaulting = false;
    } else {
      operate(tweak, row, step);
    }
    expectLines(tweak, fresh, step);
    expectMessages(tweak, step);
    if (tweak.bank == 0) return;
    EXPECT_EQ(tweak.reboot.value_or(session.g_bRebootNeeded), session.g_bRebootNeeded);
    EXPECT_FALSE(view_.hasKey(marker(tweak)));
    const bool on = (step == ByDefault && tweak.onByDefault) ||
                    std::ranges::all_of(tweak.lines, [&](const ExpectedLine& line) {
                      return line.states.at(step) == line.states[Checked];
                    });
    EXPECT_EQ(on ? TweakState::Kind::On : TweakState::Kind::Off,
              engine::readState(row, session).kind);
  }

  void expectRefusal(const ExpectedTweak& tweak, const Tweak& row) {
    auto* box = program_->formBook().load(row.form).find<forms::CheckBox>(row.control);
    ASSERT_NE(nullptr, box) << row.control;
    box->Value = 1;
    EXPECT_EQ(0, box->Value);
    EXPECT_FALSE(view_.hasKey(marker(tweak)));
    ASSERT_EQ(1U, prompts_.messages.size());
    EXPECT_TRUE(prompts_.messages[0].text.starts_with(tweak.refused));
    prompts_.messages.clear();
  }

  void sweep(const ExpectedTweak& tweak, const Tweak& row) {
    if (!tweak.refused.empty()) return expectRefusal(tweak, row);
    std::vector<std::string> fresh;
    for (const ExpectedLine& line : tweak.lines) fresh.push_back(now(line));
    const auto before = neighbours(tweak);
    // Off and on once more: what was kept is kept again.
    for (const Step step : {Checked, Unchecked, Checked, ByDefault}) {
      carryOut(tweak, row, step, fresh);
      if (step == Checked) {
        EXPECT_TRUE(program_->regWorker().call(tweak.property)) << "once more";
        expectLines(tweak, fresh, step);
        prompts_.messages.clear();
      }
      EXPECT_EQ(before, neighbours(tweak));
    }
    if (tweak.typed) closeWindowOf(row);
  }

  // The file system of a real machine's drive is that of the test's own host.
  static bool dependsOnTheHost(const ExpectedTweak& tweak) {
    const bool byFileSystem =
        tweak.property.starts_with("P_rwNtfs") || tweak.property.starts_with("P_rwWin31FileSystem");
    return GetParam().real && byFileSystem;
  }

  // Everything but the program's own area.
  std::map<std::string, std::string> wholeRegistry() {
    std::map<std::string, std::string> result;
    view_.dump("HKCU", result);
    view_.dump("HKLM", result);
    std::map<std::string, std::string> foldedResult;
    for (auto& [path, data] : result) {
      const std::string name = folded(path);
      if (!name.starts_with("hklm\\software\\korvex")) foldedResult[name] = data;
    }
    return foldedResult;
  }
  // Whether a line of the files tells of the key or value, or makes the key on its way.
  bool isExpected(const std::string& path) const {
    return std::ranges::any_of(expected_.tweaks, [&](const ExpectedTweak& tweak) {
      return std::ranges::any_of(tweak.lines, [&](const ExpectedLine& line) {
        std::string key = folded(line.key);
        if (key.starts_with("hkcr")) key = "hklm\\software\\classes" + key.substr(4);
        constexpr std::string_view kSet = "system\\currentcontrolset";
        if (const std::size_t at = key.find(kSet); at == 5 && program_->session().g_bNT) {
          key.replace(at, kSet.size(), "system\\controlset001");
        }
        return path == key + " | " + folded(line.name) || key == path ||
               key.starts_with(path + '\\');
      });
    });
  }

  void sweepAll();

  std::unique_ptr<test::SomeMachine> owner_ = machineFor(GetParam());
  platform::Machine& machine_ = owner_->get();
  test::ExpectedTweaks expected_;
  test::RegistryView view_{machine_.registry()};
  test::ScriptedPrompts prompts_;
  std::unique_ptr<Program> program_;
};

void EveryTweak::sweepAll() {
  // One change of the machine, or thousands of small ones would each wait for the disk.
  platform::RegistryChange change(machine_.registry());
  // Fields last: those of the main window are written by every Apply once they were edited.
  std::stable_partition(expected_.tweaks.begin(), expected_.tweaks.end(),
                        [](const ExpectedTweak& tweak) { return !tweak.typed; });
  const auto before = wholeRegistry();
  for (const ExpectedTweak& tweak : expected_.tweaks) {
    SCOPED_TRACE(tweak.property);
    const Tweak* row = engine::findTweak(tweak.property);
    if (row == nullptr) continue;  // the next test tells
    const TweakState state = engine::readState(*row, program_->session());
    const bool available = state.kind != TweakState::Kind::Unavailable;
    if (!dependsOnTheHost(tweak)) {
      EXPECT_EQ(tweak.available, available) << state.reason;
    }
    EXPECT_EQ(available, state.reason.empty());
    const bool registered = program_->formBook().knows(row->form);
    EXPECT_TRUE(registered) << row->form << " is no form";
    if (available && tweak.available && registered) sweep(tweak, *row);
  }
  auto after = wholeRegistry();
  for (const auto& [path, data] : before) {
    EXPECT_TRUE(after[path] == data || isExpected(path)) << path << " was " << data;
    after.erase(path);
  }
  for (const auto& [path, data] : after) EXPECT_TRUE(isExpected(path)) << path << " is new";
}

TEST_P(EveryTweak, WritesWhatTheDocumentsSayAndNothingElse) { sweepAll(); }

// The same with the rows of Jet alone.
class EveryTweakOfJet : public EveryTweak {
 protected:
  void SetUp() override {
    const std::string jet = jetNames(GetParam()).at(0).second;
    std::erase_if(expected_.tweaks, [&jet](const ExpectedTweak& tweak) {
      return tweak.lines.empty() || !tweak.lines[0].key.starts_with(jet);
    });
    ASSERT_GT(expected_.tweaks.size(), 40U);
    const std::string options = "HKLM\\SOFTWARE\\Korvex\\Configuration";
    if (GetParam().jet == Jet::OfAccess) {
      view_.put(options, "JetGlobal", "dword 0");
    } else {
      view_.put(options, "JetVersion", "\"3.0\"");
      for (const char* engine : {"Jet 3.x", "Text", "Excel", "ODBC", "Xbase"}) {
        view_.put(kOlderJet + '\\' + engine, "win32", "\"jet30.dll\"");
      }
    }
    EveryTweak::SetUp();
  }
};

TEST_P(EveryTweakOfJet, WritesWhereItIsMeant) { sweepAll(); }

INSTANTIATE_TEST_SUITE_P(Samples, EveryTweak,
                         testing::Values(Sample{"windows-95", '5'}, Sample{"windows-98", '8'},
                                         Sample{"windows-me", 'M'}, Sample{"windows-nt4", '4'},
                                         Sample{"windows-2000", '2'},
                                         Sample{"windows-2000-server", '2'}));

constexpr auto kPrefix = test::RealKind::WinePrefix;
constexpr auto kFolder = test::RealKind::WindowsFolder;

INSTANTIATE_TEST_SUITE_P(WinePrefixes, EveryTweak,
                         testing::Values(Sample{"windows-95", '5', kPrefix},
                                         Sample{"windows-98", '8', kPrefix},
                                         Sample{"windows-me", 'M', kPrefix},
                                         Sample{"windows-nt4", '4', kPrefix},
                                         Sample{"windows-2000", '2', kPrefix},
                                         Sample{"windows-2000-server", '2', kPrefix}));

INSTANTIATE_TEST_SUITE_P(WindowsFolders, EveryTweak,
                         testing::Values(Sample{"windows-nt4", '4', kFolder},
                                         Sample{"windows-2000", '2', kFolder},
                                         Sample{"windows-2000-server", '2', kFolder}));

// Each kind of machine with both, each with Office 97 and 2000.
INSTANTIATE_TEST_SUITE_P(EveryKind, EveryTweakOfJet,
                         testing::Values(Sample{"windows-98", '8', {}, Jet::OfAccess},
                                         Sample{"windows-2000", '2', {}, Jet::Older},
                                         Sample{"windows-me", 'M', kPrefix, Jet::OfAccess},
                                         Sample{"windows-98", '8', kPrefix, Jet::Older},
                                         Sample{"windows-2000", '2', kFolder, Jet::OfAccess},
                                         Sample{"windows-nt4", '4', kFolder, Jet::Older}));

TEST(ExpectedTweaks, NameEveryRowOfTheCatalogueOnce) {
  std::multiset<std::string> expected;
  for (const auto& tweak : expectedFor({"windows-98", '8'}).tweaks) {
    expected.insert(tweak.property);
  }
  std::multiset<std::string> rows;
  for (const Tweak* row : engine::allTweaks()) rows.emplace(row->property);
  for (const auto& name : rows) EXPECT_EQ(1U, expected.count(name)) << name << " is not expected";
  for (const auto& name : expected) EXPECT_EQ(1U, rows.count(name)) << name << " is no row";
}

}  // namespace
}  // namespace korvex::program

// The program "korvex-gui".
#include <CLI/CLI.hpp>
#include <QMessageBox>
#include <QTimer>
#include <algorithm>
#include <cstdlib>
#include <iostream>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <utility>

#include "program/host_set.h"
#include "program/open_machine.h"
#include "program/program.h"
#include "program/recent_machines.h"
#include "qt/application.h"
#include "qt/form_view.h"
#include "qt/handbook.h"
#include "qt/machine_menu.h"
#include "qt/qt_host.h"
#include "qt/qt_prompts.h"
#include "qt/set_drop.h"
#include "qt/style.h"
#include "qt/text.h"

namespace korvex::qt {
namespace {

constexpr int kDone = 0;
constexpr int kUsage = 2;
constexpr int kNoMachine = 3;
constexpr int kBusy = 4;
constexpr int kFailed = 5;

struct Options {
  std::string machine;
  std::string user;
  std::string look;
  std::string screenshot;
  std::string form;
  std::string handbook;
  std::string set;  // the profile.kvx of a saved set, of the system that Korvex runs on
};

void describe(CLI::App& app, Options& options) {
  app.add_option("--machine", options.machine, "The machine's folder")->envname("KORVEX_MACHINE");
  app.add_option("--user", options.user,
                 "Whose settings of that machine; default: its only user, or the last one");
  app.add_option("--style", options.look,
                 "How windows look: \"windows\" is the classic look; default: the desktop's own");
  app.add_option("FILE", options.set, "A saved set of configuration (.kvx) to be shown")
      ->type_name("");
  // For documentation: shows a window, the main one where none is named, saves a picture of it and
  // leaves.
  auto* screenshot = app.add_option("--screenshot", options.screenshot, "")->group("");
  std::set<std::string> forms;
  for (const program::FormRow& row : program::Program::forms()) forms.emplace(row.name);
  app.add_option("--form", options.form, "")
      ->group("")
      ->needs(screenshot)
      ->check(CLI::IsMember(std::move(forms), CLI::ignore_case));
  // The same of all windows that the machine can use, with a page of text each, into a folder.
  app.add_option("--handbook", options.handbook, "")->group("");
  app.set_version_flag("--version", "korvex " KORVEX_VERSION);
}

bool hasDisplay() {
  for (const char* name : {"QT_QPA_PLATFORM", "DISPLAY", "WAYLAND_DISPLAY"}) {
    const char* value = std::getenv(name);
    if (value != nullptr && *value != '\0') return true;
  }
  return false;
}

int tellRefusal(const platform::OpenedMachine& opened) {
  std::cerr << "korvex-gui: " << opened.message << '\n';
  QMessageBox::critical(nullptr, "Korvex", toQt(opened.message));
  switch (opened.status) {
    case platform::ERROR_WRITE_PROTECT:
    case platform::ERROR_BUSY:
    case platform::ERROR_SHARING_VIOLATION:
      return kBusy;
    case platform::ERROR_DISK_FULL:
      return kFailed;
    default:
      return kNoMachine;
  }
}

// "" where the set is shown, else why not.
std::string openSet(program::Program& program, const std::string& file) {
  const program::HostSet set = program::takeHostSet(program.session(), file);
  if (set.status == platform::ERROR_SUCCESS) {
    program.openSet(set.profile);
    return {};
  }
  return set.message.empty() ? file + ": " + platform::describeStatus(set.status) : set.message;
}

bool isMainWindow(const FormView& view) {
  return view.form().name() == program::Program::forms().front().name;
}

// next: the folder of the machine to go on with, where the user has chosen one.
void equipMainWindow(FormView& view, program::Program& program, const Options& options,
                     std::string& next) {
  makeMachineMenu(view, [&view, &next](const std::string& folder) {
    next = folder;
    view.form().close();
  });
  const auto open = [&view, &program](const std::string& file) {
    const std::string trouble = openSet(program, file);
    if (!trouble.empty()) QMessageBox::critical(&view, "Korvex", toQt(trouble));
  };
  takeDroppedSets(view, open);
  if (options.set.empty()) return;
  // Once the window can be seen: a message about the set must not stand alone.
  QTimer::singleShot(0, &view, [open, file = options.set] { open(file); });
}

// The picture of the window that was asked for, then the end.
bool takePicture(FormView& view, program::Program& program, const Options& options) {
  QApplication::processEvents();
  bool saved = true;
  const bool isMain = isMainWindow(view);
  if (isMain) makeMachineMenu(view, [](const std::string&) {});
  if (isMain && !options.set.empty()) {
    // Nobody could close a message box.
    const std::string trouble = openSet(program, options.set);
    if (!trouble.empty()) std::cerr << "korvex-gui: " << trouble << '\n';
  }
  QApplication::processEvents();
  // A dialog is shown from the main window, as ever.
  if (isMain && !options.form.empty() && options.form != view.form().name()) {
    program.formBook().showModal(options.form);
  } else {
    saved = view.grab().save(toQt(options.screenshot), "PNG");
  }
  view.close();
  return saved;
}

// The pages of all windows, then the end. Shown for the main window first, which shows the others.
bool writeHandbook(FormView& view, program::Program& program, const std::string& folder) {
  QApplication::processEvents();
  const auto rows = program::Program::forms();
  const auto row = std::find_if(rows.begin(), rows.end(), [&view](const program::FormRow& form) {
    return form.name == view.form().name();
  });
  bool saved = true;
  if (canBeUsed(view.form())) {
    saved = writeHandbookPage(view, std::string(row->title), toQt(folder));
  }
  if (isMainWindow(view)) {
    for (const program::FormRow& form : rows.subspan(1)) {
      program.formBook().showModal(form.name);
    }
  }
  view.close();
  return saved;
}

int runOn(platform::Machine& machine, const Options& options, std::string& next) {
  QtPrompts prompts;
  prompts.setFiles(machine.files());
  QtHost host;
  program::Program program(machine, prompts);
  prompts.folderPicker = [&program](std::string_view title) { return program.pickFolder(title); };
  bool saved = true;
  if (!options.handbook.empty()) {
    host.onShown = [&](FormView& view) {
      saved = writeHandbook(view, program, options.handbook) && saved;
    };
  } else if (options.screenshot.empty()) {
    host.onShown = [&](FormView& view) {
      if (isMainWindow(view)) equipMainWindow(view, program, options, next);
    };
  } else {
    host.onShown = [&](FormView& view) { saved = takePicture(view, program, options) && saved; };
  }
  const int code = program.run(host);
  if (!saved) {
    std::cerr << "korvex-gui: could not write " << options.screenshot << options.handbook << '\n';
  }
  return saved ? code : kFailed;
}

// One machine after the other, as the user chooses them.
int runAll(Options options) {
  std::optional<std::string> last;
  for (;;) {
    platform::OpenedMachine opened =
        program::openMachine(options.machine, platform::OpenMode::ReadWrite, options.user);
    if (!opened.machine) {
      const int code = tellRefusal(opened);
      if (!last || *last == options.machine) return code;
      options.machine = *last;  // back to the one that was open
      continue;
    }
    if (!opened.message.empty()) std::cerr << "korvex-gui: " << opened.message << '\n';
    if (!options.machine.empty()) program::rememberMachine(options.machine);
    last = options.machine;
    std::string next;
    const int code = runOn(*opened.machine, options, next);
    if (next.empty()) return code;
    options.machine = next;
    options.user.clear();
    options.set.clear();
  }
}

int run(int argc, char** argv) {
  CLI::App app("Korvex: tunes an installed Windows 95, 98, Me, NT 4 or 2000", "korvex-gui");
  Options options;
  describe(app, options);
  Look look = Look::Desktop;
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& end) {
    return app.exit(end) == 0 ? kDone : kUsage;
  }
  if (!lookNamed(options.look, look)) {
    std::cerr << "korvex-gui: there is no style '" << options.look << "', only 'windows'\n";
    return kUsage;
  }
  if (!hasDisplay()) {
    std::cerr << "korvex-gui: there is no display here; \"korvex\" works without one\n";
    return kFailed;
  }
  // Qt has options of its own that would clash with the program's: it sees none.
  int one = 1;
  Application application(one, argv);
  useLook(look);
  return runAll(options);
}

}  // namespace
}  // namespace korvex::qt

int main(int argc, char** argv) { return korvex::qt::run(argc, argv); }

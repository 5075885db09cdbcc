// What Korvex does, measured in process: opening, reading all states, starting, applying, and
// registry text in and out.
#include <benchmark/benchmark.h>
#include <fmt/format.h>
#include <stdlib.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <optional>
#include <sstream>
#include <stdexcept>
#include <string>

#include "backup/categories.h"
#include "backup/config_sets.h"
#include "engine/catalogue.h"
#include "engine/readers.h"
#include "forms/controls.h"
#include "foundation/detection.h"
#include "foundation/session.h"
#include "main_window/start_up.h"
#include "platform/common/reg_export.h"
#include "platform/common/reg_import.h"
#include "platform/embedded/embedded_machine.h"
#include "program/program.h"

namespace {

using namespace korvex;

// Nobody is in front of a benchmark: every question is answered with the harmless button.
class SilentPrompts : public platform::Prompts {
 public:
  platform::Answer messageBox(std::string_view, int, std::string_view) override {
    return platform::Answer::No;
  }
  std::optional<std::string> inputBox(std::string_view, std::string_view,
                                      std::string_view) override {
    return std::nullopt;
  }
  std::optional<std::string> pickFile(const platform::FileRequest&) override {
    return std::nullopt;
  }
  std::optional<std::string> pickFolder(std::string_view) override { return std::nullopt; }
  std::optional<platform::FontChoice> pickFont(const platform::FontChoice&,
                                               std::string_view) override {
    return std::nullopt;
  }
  std::optional<std::uint32_t> pickColor(std::uint32_t) override { return std::nullopt; }
};

// A Windows 2000 sample in a folder of its own.
class Sample {
 public:
  Sample() {
    std::string name = (std::filesystem::temp_directory_path() / "korvex-bench-XXXXXX").string();
    if (mkdtemp(name.data()) == nullptr) throw std::runtime_error("no temporary folder");
    folder_ = name;
    std::string message;
    const auto sample = std::filesystem::path(KORVEX_SAMPLES) / "windows-2000";
    if (platform::createEmbeddedMachine(sample, machineFolder(), message) != 0) {
      throw std::runtime_error(message);
    }
  }
  ~Sample() {
    std::error_code ignored;
    std::filesystem::remove_all(folder_, ignored);
  }
  Sample(const Sample&) = delete;
  Sample& operator=(const Sample&) = delete;

  std::filesystem::path machineFolder() const { return folder_ / "machine"; }
  std::unique_ptr<platform::Machine> open(platform::OpenMode mode) const {
    auto opened = platform::openEmbeddedMachine(machineFolder(), mode);
    if (!opened.machine) throw std::runtime_error(opened.message);
    return std::move(opened.machine);
  }

 private:
  std::filesystem::path folder_;
};

void openAndReadAllStates(benchmark::State& state) {
  const Sample sample;
  SilentPrompts prompts;
  for (auto _ : state) {
    const auto machine = sample.open(platform::OpenMode::Read);
    foundation::Session session(*machine, prompts);
    foundation::detectSystem(session);
    engine::StateReader reader(session);
    for (const engine::Tweak* tweak : engine::allTweaks()) {
      benchmark::DoNotOptimize(reader.state(*tweak));
    }
  }
  state.counters["tweaks"] = static_cast<double>(engine::allTweaks().size());
}
BENCHMARK(openAndReadAllStates)->Unit(benchmark::kMillisecond);

void startAndCloseTheProgram(benchmark::State& state) {
  const Sample sample;
  SilentPrompts prompts;
  for (auto _ : state) {
    const auto machine = sample.open(platform::OpenMode::ReadWrite);
    program::Program program(*machine, prompts);
    if (program.start() != program::StartResult::Started || !program.finish()) {
      state.SkipWithError("the program did not start or end");
      break;
    }
  }
}
BENCHMARK(startAndCloseTheProgram)->Unit(benchmark::kMillisecond);

// Turns over at most so many boxes of the form. The number of boxes that were.
int turnBoxes(forms::Form& form, std::int64_t most) {
  int turned = 0;
  for (const engine::Tweak* tweak : engine::allTweaks()) {
    if (tweak->form != form.name() || turned == most) continue;
    auto* box = form.find<forms::CheckBox>(tweak->control);
    if (box == nullptr || !box->Enabled) continue;
    box->Value = box->Value == forms::vbChecked ? forms::vbUnchecked : forms::vbChecked;
    ++turned;
  }
  return turned;
}

// Turns over so many boxes of the main window and applies: durable at the end of each round. The
// clicks are recorded one by one as the user's hand makes them: they are not measured.
void applyTweaks(benchmark::State& state) {
  const Sample sample;
  SilentPrompts prompts;
  const auto machine = sample.open(platform::OpenMode::ReadWrite);
  program::Program program(*machine, prompts);
  if (program.start() != program::StartResult::Started) {
    state.SkipWithError("the program did not start");
    return;
  }
  forms::Form& form = program.formBook().load("frmMain");
  auto* apply = form.find<forms::CommandButton>("cmdApply");
  int turned = 0;
  for (auto _ : state) {
    state.PauseTiming();
    turned = turnBoxes(form, state.range(0));
    state.ResumeTiming();
    apply->press();
  }
  state.counters["tweaks"] = turned;
}
BENCHMARK(applyTweaks)->Arg(1)->Arg(1000)->UseRealTime()->Unit(benchmark::kMillisecond);

std::string makeText(int keys) {
  std::string text = "REGEDIT4\r\n\r\n";
  for (int n = 0; n < keys; ++n) {
    text += fmt::format(
        "[HKEY_LOCAL_MACHINE\\Software\\Measured\\Group {:03}\\Item {:06}]\r\n"
        "\"DisplayName\"=\"Setting {} of a machine in daily use\"\r\n"
        "\"ImagePath\"=\"C:\\\\Program Files\\\\Vendor\\\\component{:06}.dll\"\r\n"
        "\"Order\"=dword:{:08x}\r\n"
        "\"Security\"=hex:01,02,03,04,05,06,07,08,09,0a,0b,0c,0d,0e,0f,10\r\n"
        "@=\"Item {}\"\r\n\r\n",
        n / 100, n, n, n, n, n);
  }
  return text;
}

void importText(benchmark::State& state) {
  const Sample sample;
  const auto machine = sample.open(platform::OpenMode::ReadWrite);
  const std::string text = makeText(static_cast<int>(state.range(0)));
  for (auto _ : state) {
    std::istringstream source(text);
    const auto result = platform::importRegText(machine->registry(), source);
    if (result.status != 0 || result.refused != 0) state.SkipWithError("the import failed");
    machine->registry().flush();
  }
  state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(importText)->Arg(1000)->Arg(10000)->Unit(benchmark::kMillisecond);

void exportText(benchmark::State& state) {
  const Sample sample;
  const auto machine = sample.open(platform::OpenMode::ReadWrite);
  std::istringstream source(makeText(static_cast<int>(state.range(0))));
  platform::importRegText(machine->registry(), source);
  for (auto _ : state) {
    std::ostringstream sink;
    const auto result =
        platform::exportRegText(machine->registry(), platform::wholeRegistry(), sink);
    if (result.status != 0) state.SkipWithError("the export failed");
    benchmark::DoNotOptimize(sink.str().size());
  }
  state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(exportText)->Arg(1000)->Arg(10000)->Unit(benchmark::kMillisecond);

// All that the machine has of every category: keys, files, record; durable.
void saveAndCompareASet(benchmark::State& state) {
  const Sample sample;
  SilentPrompts prompts;
  const auto machine = sample.open(platform::OpenMode::ReadWrite);
  foundation::Session session(*machine, prompts);
  main_window::detectReadOnly(session);
  backup::RegistryBacker backer(session);
  backup::ConfigSets sets(session, backer);
  backup::SaveRequest request{"Measured", "C:\\Saves", {}, {}};
  for (const backup::Category& category : backup::categories()) {
    if (backup::whyNotSaved(session, category).empty()) request.tags.emplace_back(category.tag);
  }
  const bool compares = state.range(0) != 0;
  std::size_t files = 0;
  for (auto _ : state) {
    if (!compares || files == 0) files = sets.save(request, {}).files;
    if (!compares) continue;
    backup::ConfigSet set;
    std::string message;
    if (sets.find("Measured", set, message) != 0) state.SkipWithError("no set");
    benchmark::DoNotOptimize(sets.offer(set, {}));
  }
  if (files == 0) state.SkipWithError("nothing was saved");
  state.counters["files"] = static_cast<double>(files);
}
BENCHMARK(saveAndCompareASet)
    ->ArgName("compare")
    ->Arg(0)
    ->Arg(1)
    ->UseRealTime()
    ->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();

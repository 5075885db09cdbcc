// A machine whose registry lies in files and which is not running: what a Wine prefix and the disk
// of an installed Windows have in common.
#pragma once

#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include "platform/common/drive_folders.h"
#include "platform/common/machine_facts.h"
#include "platform/hives/hive_store.h"
#include "platform/machine.h"
#include "platform/stored/key_paths.h"

namespace korvex::platform {

struct HiveMachineOptions {
  std::string kind;
  std::string evidence;
  HiveStoreOptions store;
  RegistryPlaces places;  // the family is that of the facts
  DriveFolders::Map drives;
  // Asked once, with the registry open for reading; the first may be left out.
  std::function<void(Registry& registry, RegistryPlaces& places)> placesFrom;
  std::function<Status(Registry& registry, MachineFacts& facts, std::string& message)> readFacts;
  // Starts a program that is not the registry editor and waits for its end or not. None: this kind
  // runs no programs.
  std::function<Status(std::string_view commandLine, Wait wait, int& exitCode,
                       std::string& message)>
      start;
};

// The registry is in memory between changes and flushes (hive_store.h); before a program is
// started everything is flushed.
OpenedMachine openHiveMachine(HiveMachineOptions options);

}  // namespace korvex::platform

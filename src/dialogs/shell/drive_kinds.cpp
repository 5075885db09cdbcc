// Looking where each Windows keeps what it knows of its drives.
#include "dialogs/shell/drive_kinds.h"

#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

#include "engine/raw_value.h"
#include "engine/same_name.h"
#include "platform/registry.h"

namespace korvex::dialogs {

using engine::RawValue;
using engine::sameName;
using forms::ItemPicture;
using foundation::Session;
using platform::ERROR_SUCCESS;
using platform::HKEY_CURRENT_USER;
using platform::HKEY_LOCAL_MACHINE;

namespace {

bool read(Session& session, platform::HKEY root, const std::string& key, std::string_view name,
          RawValue& value) {
  return engine::readRawValue(session.registry(), root, key, name, value) == ERROR_SUCCESS;
}

std::vector<std::string> subKeys(Session& session, const std::string& key) {
  std::vector<std::string> names;
  engine::listSubKeys(session.registry(), HKEY_LOCAL_MACHINE, key, platform::KEY_READ, names);
  return names;
}

// What Windows 2000 mounted at a letter: a partition is told by twelve bytes, all else by the name
// of its device in UTF-16.
ItemPicture mountedAt(Session& session, const std::string& name) {
  constexpr std::size_t kPartition = 12;
  RawValue value;
  if (!read(session, HKEY_LOCAL_MACHINE, "SYSTEM\\MountedDevices", "\\DosDevices\\" + name,
            value)) {
    return ItemPicture::None;
  }
  if (value.bytes.size() == kPartition) return ItemPicture::HardDisk;
  std::string device;
  for (const char c : value.bytes) {
    if (c != '\0') device += c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
  }
  const auto has = [&device](std::string_view word) {
    return device.find(word) != std::string::npos;
  };
  if (has("CDROM")) return ItemPicture::CdRom;
  if (has("FDC") || has("FLOPPY")) return ItemPicture::Floppy;
  return ItemPicture::HardDisk;
}

// Windows 95, 98 and Me note with each device which letters it has.
void addDevices(Session& session, DriveKinds& kinds) {
  for (const char* bus : {"ESDI", "SCSI", "FLOP", "USBSTOR"}) {
    const std::string busKey = std::string("Enum\\") + bus;
    for (const std::string& device : subKeys(session, busKey)) {
      const std::string deviceKey = busKey + '\\' + device;
      for (const std::string& instance : subKeys(session, deviceKey)) {
        RawValue letters;
        RawValue kind;
        const std::string key = deviceKey + '\\' + instance;
        if (!read(session, HKEY_LOCAL_MACHINE, key, "CurrentDriveLetterAssignment", letters)) {
          continue;
        }
        read(session, HKEY_LOCAL_MACHINE, key, "Class", kind);
        const bool cd = sameName(kind.text(), "CDROM");
        const bool floppy = sameName(bus, "FLOP");
        for (const char letter : letters.text()) {
          if (letter < 'A' || letter > 'Z') continue;
          kinds[static_cast<std::size_t>(letter - 'A')] =
              cd ? ItemPicture::CdRom : (floppy ? ItemPicture::Floppy : ItemPicture::HardDisk);
        }
      }
    }
  }
}

// What the settings of Wine say of a drive.
ItemPicture chosenInWine(Session& session, const std::string& name) {
  RawValue value;
  read(session, HKEY_LOCAL_MACHINE, "Software\\Wine\\Drives", name, value);
  const std::string word = value.text();
  if (sameName(word, "floppy")) return ItemPicture::Floppy;
  if (sameName(word, "cdrom")) return ItemPicture::CdRom;
  if (sameName(word, "network")) return ItemPicture::Network;
  if (sameName(word, "ramdisk")) return ItemPicture::RamDisk;
  return sameName(word, "hd") ? ItemPicture::HardDisk : ItemPicture::None;
}

// Connections that come back at each logon.
bool isConnection(Session& session, const std::string& letter) {
  const std::string parent = session.g_bNT ? "Network\\" : "Network\\Persistent\\";
  RawValue value;
  return read(session, HKEY_CURRENT_USER, parent + letter, "RemotePath", value);
}

}  // namespace

DriveKinds driveKinds(Session& session) {
  constexpr std::size_t kFloppies = 2;
  DriveKinds kinds{};
  if (!session.g_bNT) addDevices(session, kinds);
  const auto names = driveNames();
  for (std::size_t i = 0; i < kDriveCount; ++i) {
    if (session.g_bNT) kinds[i] = mountedAt(session, names[i]);
    const ItemPicture wine = chosenInWine(session, names[i]);
    if (wine != ItemPicture::None) kinds[i] = wine;
    if (isConnection(session, names[i].substr(0, 1))) kinds[i] = ItemPicture::Network;
    if (kinds[i] != ItemPicture::None) continue;
    if (i < kFloppies) {
      kinds[i] = ItemPicture::Floppy;
    } else if (session.files().exists(names[i] + '\\')) {
      kinds[i] = ItemPicture::HardDisk;
    }
  }
  return kinds;
}

}  // namespace korvex::dialogs

// One open host folder with the Windows view of its names.
#pragma once

#include <sys/stat.h>

#include <string>
#include <string_view>
#include <vector>

#include "platform/common/file_descriptor.h"
#include "platform/status.h"

namespace korvex::platform {

// A regular file or a folder: nothing else is part of a machine.
struct HostEntry {
  std::string name;  // as the host has it
  struct stat status {};

  bool isFolder() const { return S_ISDIR(status.st_mode); }
};

// The folder descriptors below stay the caller's. Nothing here follows a link.

// The names of the files and folders that Windows can hold and that are not Korvex' own, in no
// particular order.
Status windowsNames(int folder, std::vector<std::string>& names);
// By the name in this case, without regard to case, or by the short name. 2: not there; 5: there,
// but a link, a device, a FIFO, a socket or Korvex' own.
Status findEntry(int folder, std::string_view name, HostEntry& entry);
// 2 where it has gone; 5 where it is no regular file or folder.
Status statEntry(int folder, const std::string& name, HostEntry& entry);
// True where nothing but Korvex' own files is in it.
Status isEmptyFolder(int folder, bool& empty);
// Those whose names are picked; all without pick.
Status removeOwnFiles(int folder, bool (*pick)(std::string_view name) = nullptr);

// One step down a path: folder becomes the folder of this name in it; 3 where that is missing or a
// file.
Status enterFolder(FileDescriptor& folder, std::string_view name);
Status openSubFolder(int folder, const std::string& name, FileDescriptor& result);
Status openRegularFile(int folder, const std::string& name, FileDescriptor& result);
// From the start to the end; 50 for a file too large to be held in memory.
Status readAll(int file, std::string& bytes);
// From where the file stands. 112 where there is no more room.
Status writeAll(int file, std::string_view bytes);

}  // namespace korvex::platform

// Writing and reading.
#include "dialogs/shell/shell_link.h"

#include <cstddef>
#include <vector>

namespace korvex::dialogs {
namespace {

constexpr std::size_t kHeaderSize = 0x4C;
constexpr std::string_view kLinkClass(
    "\x01\x14\x02\x00\x00\x00\x00\x00\xC0\x00\x00\x00\x00\x00\x00\x46", 16);
constexpr std::string_view kMyComputer(
    "\xE0\x4F\xD0\x20\xEA\x3A\x69\x10\xA2\xD8\x08\x00\x2B\x30\x30\x9D", 16);

constexpr std::uint32_t kHasItems = 0x1;
constexpr std::uint32_t kHasLinkInfo = 0x2;
constexpr std::uint32_t kHasWorkingFolder = 0x10;

constexpr std::uint32_t kFolder = 0x10;
constexpr std::uint32_t kArchive = 0x20;

constexpr std::size_t kLinkInfoHeader = 0x1C;
constexpr std::uint32_t kLocalPath = 0x1;  // of the flags of LinkInfo
constexpr std::uint32_t kFixedDrive = 3;
constexpr std::size_t kDriveItem = 25;  // bytes

void put(std::string& bytes, std::uint32_t number, int size) {
  for (int i = 0; i < size; ++i) bytes += static_cast<char>(number >> (8 * i) & 0xFF);
}

void putItem(std::string& items, const std::string& item) {
  put(items, static_cast<std::uint32_t>(item.size() + 2), 2);
  items += item;
}

std::vector<std::string> partsOf(const std::string& path) {
  std::vector<std::string> parts{""};
  for (const char c : path) {
    if (c == '\\') {
      parts.emplace_back();
    } else {
      parts.back() += c;
    }
  }
  return parts;
}

// My Computer, the drive, the folders, the file.
std::string itemsOf(const ShellLink& link) {
  const std::vector<std::string> names = partsOf(link.target);
  const std::vector<std::string> shortNames = partsOf(link.shortTarget);
  std::string items;
  putItem(items, std::string("\x1F\x50", 2) + std::string(kMyComputer));
  std::string drive = '\x23' + names.front() + '\\';
  drive.resize(kDriveItem - 2, '\0');
  putItem(items, drive);
  for (std::size_t i = 1; i < names.size(); ++i) {
    const bool isFile = i + 1 == names.size();
    std::string item(isFile ? "\x32" : "\x31", 1);
    item += '\0';
    put(item, isFile ? link.size : 0, 4);
    put(item, 0, 4);  // date and time: not told
    put(item, isFile ? kArchive : kFolder, 2);
    item += names[i] + '\0';
    item += (names.size() == shortNames.size() ? shortNames[i] : "") + '\0';
    if (item.size() % 2 != 0) item += '\0';
    putItem(items, item);
  }
  put(items, 0, 2);
  return items;
}

std::string linkInfoOf(const ShellLink& link) {
  std::string volume;
  put(volume, 0x11, 4);
  put(volume, kFixedDrive, 4);
  put(volume, 0, 4);     // serial number: not told
  put(volume, 0x10, 4);  // where the label begins: an empty one
  volume += '\0';
  const auto pathAt = static_cast<std::uint32_t>(kLinkInfoHeader + volume.size());
  const auto suffixAt = static_cast<std::uint32_t>(pathAt + link.target.size() + 1);
  std::string info;
  put(info, suffixAt + 1, 4);
  put(info, kLinkInfoHeader, 4);
  put(info, kLocalPath, 4);
  put(info, kLinkInfoHeader, 4);
  put(info, pathAt, 4);
  put(info, 0, 4);  // no network path
  put(info, suffixAt, 4);
  return info + volume + link.target + '\0' + '\0';
}

// A number at a place that may lie beyond the end: then nothing is there.
std::uint32_t numberAt(std::string_view bytes, std::size_t at, int size) {
  std::uint32_t number = 0;
  if (at + static_cast<std::size_t>(size) > bytes.size()) return 0;
  for (int i = size; i-- > 0;) number = number << 8 | static_cast<std::uint8_t>(bytes[at + i]);
  return number;
}

std::string textAt(std::string_view bytes, std::size_t at) {
  if (at == 0 || at >= bytes.size()) return {};
  const std::string_view rest = bytes.substr(at);
  const std::size_t end = rest.find('\0');
  return end == std::string_view::npos ? std::string() : std::string(rest.substr(0, end));
}

}  // namespace

std::string encodeShellLink(const ShellLink& link) {
  std::string bytes;
  put(bytes, kHeaderSize, 4);
  bytes += kLinkClass;
  put(bytes, kHasItems | kHasLinkInfo | kHasWorkingFolder, 4);
  put(bytes, kArchive, 4);
  bytes.append(24, '\0');  // the three times of the target: not told
  put(bytes, link.size, 4);
  put(bytes, 0, 4);  // its first icon
  put(bytes, 1, 4);  // a normal window
  bytes.resize(kHeaderSize, '\0');
  const std::string items = itemsOf(link);
  put(bytes, static_cast<std::uint32_t>(items.size()), 2);
  bytes += items + linkInfoOf(link);
  std::string folder = link.target.substr(0, link.target.rfind('\\'));
  if (folder.size() == 2) folder += '\\';
  put(bytes, static_cast<std::uint32_t>(folder.size()), 2);
  return bytes + folder;
}

std::string targetOfShellLink(std::string_view bytes) {
  if (bytes.size() < kHeaderSize || numberAt(bytes, 0, 4) != kHeaderSize ||
      bytes.substr(4, kLinkClass.size()) != kLinkClass) {
    return {};
  }
  const std::uint32_t flags = numberAt(bytes, 20, 4);
  std::size_t at = kHeaderSize;
  if ((flags & kHasItems) != 0) at += 2 + numberAt(bytes, at, 2);
  if ((flags & kHasLinkInfo) == 0 || at >= bytes.size()) return {};
  const std::string_view info = bytes.substr(at, numberAt(bytes, at, 4));
  if ((numberAt(info, 8, 4) & kLocalPath) == 0) return {};
  return textAt(info, numberAt(info, 16, 4)) + textAt(info, numberAt(info, 24, 4));
}

}  // namespace korvex::dialogs

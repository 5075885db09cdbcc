// Reading without an echo.
#include "cli/secrets.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <termios.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "cli/failure.h"

namespace korvex::cli {
namespace {

constexpr std::size_t kLongest = 1024;

// Byte by byte: what follows the line belongs to whoever reads the descriptor next.
int readLine(int descriptor, std::string& line) {
  char c = 0;
  while (line.size() < kLongest) {
    const ssize_t got = ::read(descriptor, &c, 1);
    if (got < 0 && errno == EINTR) continue;
    if (got < 0) return errno;
    if (got == 0 || c == '\n') break;
    line += c;
  }
  if (!line.empty() && line.back() == '\r') line.pop_back();
  return 0;
}

class Terminal {
 public:
  Terminal() : descriptor_(::open("/dev/tty", O_RDWR | O_CLOEXEC | O_NOCTTY)) {
    if (descriptor_ < 0 || ::tcgetattr(descriptor_, &before_) != 0) return;
    termios silent = before_;
    silent.c_lflag &= ~static_cast<tcflag_t>(ECHO);
    changed_ = ::tcsetattr(descriptor_, TCSAFLUSH, &silent) == 0;
  }
  ~Terminal() {
    if (changed_) ::tcsetattr(descriptor_, TCSAFLUSH, &before_);
    if (descriptor_ >= 0) ::close(descriptor_);
  }
  Terminal(const Terminal&) = delete;
  Terminal& operator=(const Terminal&) = delete;

  bool isThere() const { return changed_; }
  int descriptor() const { return descriptor_; }
  void show(const std::string& text) const {
    std::size_t done = 0;
    while (done < text.size()) {
      const ssize_t written = ::write(descriptor_, text.data() + done, text.size() - done);
      if (written <= 0) return;
      done += static_cast<std::size_t>(written);
    }
  }

 private:
  int descriptor_;
  termios before_{};
  bool changed_ = false;
};

}  // namespace

std::string readSecret(int descriptor) {
  std::string secret;
  const int error = readLine(descriptor, secret);
  if (error == 0) return secret;
  throw Failure(
      ExitCode::Usage, "bad-descriptor",
      fmt::format("File descriptor {} cannot be read: {}.", descriptor, std::strerror(error)));
}

std::optional<std::string> askForSecret(const std::string& question) {
  const Terminal terminal;
  if (!terminal.isThere()) return std::nullopt;
  terminal.show(question);
  std::string secret;
  const int error = readLine(terminal.descriptor(), secret);
  terminal.show("\n");
  if (error != 0 || secret.empty()) return std::nullopt;
  return secret;
}

}  // namespace korvex::cli

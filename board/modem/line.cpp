#include "board/modem/line.h"

#include <fcntl.h>
#include <poll.h>
#include <stdlib.h>
#include <termios.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <filesystem>
#include <utility>

namespace board::modem {
namespace {

constexpr int kPatienceMilliseconds = 1000;

}  // namespace

Line::Line(std::string device) : device_(std::move(device)) {
  replug();
}

// The device name never leads nowhere, and the old line ends when the new one is there.
void Line::replug() {
  Descriptor master(posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC | O_NONBLOCK));
  std::array<char, 64> name{};
  if (!master.valid() || grantpt(master.get()) < 0 || unlockpt(master.get()) < 0 ||
      ptsname_r(master.get(), name.data(), name.size()) != 0) {
    throw system_failure("/dev/ptmx");
  }
  // Kept open, or the line would be lost between two callers.
  Descriptor slave(::open(name.data(), O_RDWR | O_NOCTTY | O_CLOEXEC));
  termios modes{};
  if (!slave.valid() || tcgetattr(slave.get(), &modes) < 0) throw system_failure(name.data());
  // The terminal of a line that nobody has opened yet would echo to the modem.
  cfmakeraw(&modes);
  if (tcsetattr(slave.get(), TCSANOW, &modes) < 0) throw system_failure(name.data());
  const std::string new_device = device_ + ".new";
  std::filesystem::create_symlink(name.data(), new_device);
  std::filesystem::rename(new_device, device_);
  master_ = std::move(master);
  slave_ = std::move(slave);
}

char Line::receive() {
  for (;;) {
    char byte = 0;
    if (read(master_.get(), &byte, 1) == 1) return byte;
    pollfd waited{.fd = master_.get(), .events = POLLIN, .revents = 0};
    if (poll(&waited, 1, -1) < 0 && errno != EINTR) throw system_failure("poll");
  }
}

void Line::send(std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t count = write(master_.get(), bytes.data(), bytes.size());
    if (count > 0) {
      bytes.remove_prefix(static_cast<size_t>(count));
      continue;
    }
    pollfd waited{.fd = master_.get(), .events = POLLOUT, .revents = 0};
    if (poll(&waited, 1, kPatienceMilliseconds) <= 0) return;
  }
}

}  // namespace board::modem

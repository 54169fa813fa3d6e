#include "platform/journal/journal.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <new>
#include <string>

#include "platform/common/descriptor.h"

namespace journal {
namespace {

constexpr const char* kJournalPath = "/run/board/journal";
constexpr const char* kFirmwareVariable = "ZELTO_BOARD_FIRMWARE";

std::string line_of(std::string_view effect) {
  std::string line;
  line.reserve(effect.size() + 1);
  for (const char character : effect) {
    switch (character) {
      case '\n':
        line += "\\n";
        break;
      case '\r':
        line += "\\r";
        break;
      case '\\':
        line += "\\\\";
        break;
      default:
        line += character;
    }
  }
  return line += '\n';
}

}  // namespace

void note(std::string_view effect) noexcept {
  if (std::getenv(kFirmwareVariable) != nullptr) return;
  const platform::Descriptor file(
      ::open(kJournalPath, O_WRONLY | O_APPEND | O_CLOEXEC | O_NOFOLLOW | O_NOCTTY | O_NONBLOCK));
  if (!file) return;
  try {
    const std::string line = line_of(effect);
    // One call for the whole line keeps it in one piece: another writer's comes before or after.
    while (::write(file.get(), line.data(), line.size()) < 0 && errno == EINTR) {
    }
  } catch (const std::bad_alloc&) {
    return;
  }
}

}  // namespace journal

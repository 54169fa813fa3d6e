// The router's /bin/sh: notes the text of every command that is handed to it, then becomes the
// shell of busybox. Under the name `sleep` it is a clock that runs faster than the world's.
#include <errno.h>
#include <fcntl.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <time.h>
#include <unistd.h>

#include <cerrno>

namespace {

constexpr const char* kJournal = "/run/board/journal";
constexpr const char* kBusybox = "/bin/busybox";
// Set for everything below a noted command: what that does is its own affair, not the library's.
constexpr const char* kFirmwareMark = "ZELTO_BOARD_FIRMWARE";
// Busybox's shell runs its own applet for a plain name without looking at PATH; these two go to
// the router's programs instead.
constexpr const char* kPrelude = R"(sleep(){ /bin/sleep "$@";};reboot(){ /sbin/reboot "$@";};)";
constexpr int kCannotRun = 127;
constexpr double kClockSpeed = 100;
constexpr double kLongestSleepSeconds = 1e6;

size_t append_text(char* line, size_t length, const char* text) {
  while (*text != '\0') line[length++] = *text++;
  return length;
}

// The line goes out in one write, so that commands running side by side do not mix theirs.
void note(const char* command) {
  // The library's detached runner closes the standard descriptors before it starts a shell.
  const bool detached = fcntl(STDIN_FILENO, F_GETFD) < 0 && errno == EBADF;
  const int journal = open(kJournal, O_WRONLY | O_APPEND | O_CLOEXEC);
  if (journal < 0) return;
  const size_t kLongestKeyword = sizeof "start ";
  char* line = static_cast<char*>(malloc(kLongestKeyword + 2 * strlen(command) + 1));
  if (line != nullptr) {
    size_t length = append_text(line, 0, detached ? "start " : "run ");
    for (const char* p = command; *p != '\0'; ++p) {
      switch (*p) {
        case '\n':
          length = append_text(line, length, "\\n");
          break;
        case '\r':
          length = append_text(line, length, "\\r");
          break;
        case '\\':
          length = append_text(line, length, "\\\\");
          break;
        default:
          line[length++] = *p;
      }
    }
    line[length++] = '\n';
    if (write(journal, line, length) != static_cast<ssize_t>(length)) perror(kJournal);
    free(line);
  }
  close(journal);
}

int sleep_fast(int argc, char** argv) {
  double seconds = 0;
  for (int i = 1; i < argc; ++i) seconds += strtod(argv[i], nullptr);
  if (!(seconds >= 0 && seconds <= kLongestSleepSeconds)) {
    (void)fprintf(stderr, "sleep: invalid number\n");
    return 1;
  }
  seconds /= kClockSpeed;
  timespec left{};
  left.tv_sec = static_cast<time_t>(seconds);
  left.tv_nsec = static_cast<long>((seconds - static_cast<double>(left.tv_sec)) * 1e9);
  while (nanosleep(&left, &left) < 0 && errno == EINTR) {
  }
  return 0;
}

int report(const char* what) {
  perror(what);
  return kCannotRun;
}

int become_busybox(char** argv) {
  execv(kBusybox, argv);
  return report(kBusybox);
}

int run_command(char** argv, char** command) {
  if (getenv(kFirmwareMark) == nullptr) note(*command);
  if (setenv(kFirmwareMark, "1", 1) < 0) return report("sh");
  char* text = static_cast<char*>(malloc(strlen(kPrelude) + strlen(*command) + 1));
  if (text == nullptr) return report("sh");
  text[append_text(text, append_text(text, 0, kPrelude), *command)] = '\0';
  *command = text;
  const int status = become_busybox(argv);
  free(text);
  return status;
}

}  // namespace

int main(int argc, char** argv) {
  const char* slash = strrchr(argv[0], '/');
  if (strcmp(slash != nullptr ? slash + 1 : argv[0], "sleep") == 0) return sleep_fast(argc, argv);
  if (argc < 3 || strcmp(argv[1], "-c") != 0) return become_busybox(argv);
  // Some C libraries' system() puts "--" before the command.
  const int command = strcmp(argv[2], "--") == 0 && argc >= 4 ? 3 : 2;
  return run_command(argv, &argv[command]);
}

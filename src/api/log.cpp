#include "api/log.h"

#include <fcntl.h>
#include <syslog.h>
#include <unistd.h>

#include <algorithm>
#include <string>

#include "api/text.h"

namespace zelto::log {

void error(std::string_view text) {
  std::string safe(text);
  const auto end = safe.ends_with('\n') ? safe.end() - 1 : safe.end();
  std::replace_if(
      safe.begin(), end, [](char c) { return static_cast<unsigned char>(c) < ' ' || c == '\x7f'; },
      '?');
  syslog(LOG_ERR, "%s", safe.c_str());
}

void refused(const char* command) {
  error(text::format("%s: a value does not fit!\n", command));
}

void failure(const char* command, const char* reason) noexcept {
  syslog(LOG_ERR, "%s: %s!\n", command, reason);
}

}  // namespace zelto::log

namespace zelto::console {

void trace(std::string_view function, std::string_view text, int source_line) {
  const int console =
      open("/dev/console", O_RDWR | O_CREAT | O_TRUNC | O_NOCTTY | O_NONBLOCK | O_CLOEXEC, 0666);
  if (console < 0) return;
  std::string line = text::format("zeltoapi.c:%.*s:%d:", static_cast<int>(function.size()),
                                  function.data(), source_line);
  line.append(text).append("\n\n");
  // One write keeps the lines of several callers apart; its failure has nobody to be told to.
  [[maybe_unused]] const auto written = write(console, line.data(), line.size());
  close(console);
}

}  // namespace zelto::console

// zelto-cgi: the command library for the pages of a web server, one process a request.

#include <fcntl.h>
#include <syslog.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>
#include <cstdlib>
#include <exception>
#include <stdexcept>
#include <string_view>

#include "gateway/gateway.h"
#include "gateway/http_request.h"
#include "gateway/response.h"

namespace {

// The request's ends of the server's pipes, out of reach of the commands that requests run: what
// these print must not become a part of the answer.
struct Streams {
  int input;
  int output;
};

Streams take_streams() {
  const Streams streams{fcntl(STDIN_FILENO, F_DUPFD_CLOEXEC, STDERR_FILENO + 1),
                        fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, STDERR_FILENO + 1)};
  const int nowhere = open("/dev/null", O_RDWR | O_CLOEXEC);
  if (streams.input < 0 || streams.output < 0 || nowhere < 0) throw std::runtime_error("streams");
  for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
    if (dup2(nowhere, stream) < 0) throw std::runtime_error("streams");
  }
  // Not among the web server's files, where commands would otherwise leave theirs.
  if (chdir("/") != 0) throw std::runtime_error("root folder");
  return streams;
}

gateway::Response answer(int input) {
  try {
    return gateway::handle(gateway::take_environment(), input);
  } catch (const gateway::Refusal& refusal) {
    return gateway::to_response(refusal);
  } catch (const std::exception& failure) {
    syslog(LOG_ERR, "request failed: %s", failure.what());
    return gateway::to_response({500, "internal", "The router could not answer."});
  }
}

bool print(int output, std::string_view text) {
  while (!text.empty()) {
    const ssize_t count = write(output, text.data(), text.size());
    if (count < 0 && errno != EINTR) return false;
    if (count > 0) text.remove_prefix(static_cast<std::size_t>(count));
  }
  return true;
}

}  // namespace

int main() {
  openlog("zelto-cgi", LOG_PID, LOG_DAEMON);
  try {
    const Streams streams = take_streams();
    return print(streams.output, gateway::to_cgi(answer(streams.input))) ? EXIT_SUCCESS
                                                                         : EXIT_FAILURE;
  } catch (const std::exception& failure) {
    syslog(LOG_ERR, "cannot begin: %s", failure.what());
    return EXIT_FAILURE;
  }
}

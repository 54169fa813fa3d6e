#include "board/launcher/web.h"

#include <poll.h>
#include <sys/wait.h>

#include <chrono>
#include <cstdint>
#include <exception>
#include <iostream>
#include <stdexcept>
#include <string>
#include <thread>

#include "board/launcher/effects.h"
#include "board/launcher/forwarder.h"
#include "board/programs.h"

namespace launcher {
namespace {

using std::chrono::milliseconds;

constexpr uint16_t kWebPort = 80;
constexpr milliseconds kStep(100);

// httpd lets few connections wait. When more come at once the kernel would answer with SYN cookies,
// and then reset a connection whose sender has said all before its turn; without them it comes to
// its turn a little later.
void let_connections_wait() {
  constexpr const char* kSynCookies = "/proc/sys/net/ipv4/tcp_syncookies";
  if (std::filesystem::exists(kSynCookies)) board::write_file(kSynCookies, "0");
}

// Programs of the page see the environment of the firmware's web server, not the launcher's.
pid_t start_web_server() {
  return board::start_program(
      {.arguments = {"env", "-i", "PATH=/sbin:/usr/sbin:/bin:/usr/bin", "httpd", "-f", "-p",
                     std::to_string(kWebPort), "-h", "/www", "-c", "/etc/httpd.conf"},
       .silent = true,
       .inputless = true});
}

void require_running(pid_t server) {
  if (waitpid(server, nullptr, WNOHANG) != 0) {
    throw std::runtime_error("the router's web server has ended");
  }
}

bool is_served() {
  const board::Descriptor socket = connect_on_loopback(kWebPort);
  pollfd event{socket.get(), POLLOUT, 0};
  return poll(&event, 1, static_cast<int>(kStep.count())) > 0 && event.revents == POLLOUT;
}

void wait_until_served(pid_t server) {
  constexpr milliseconds kPause(5);
  while (!is_served()) {
    require_running(server);
    std::this_thread::sleep_for(kPause);
  }
}

}  // namespace

std::vector<board::HostFile> web_files(const std::filesystem::path& web,
                                       const std::filesystem::path& catalogue) {
  if (!std::filesystem::exists(web / "index.html")) {
    throw std::runtime_error("no web page in " + web.string() +
                             ": name its directory with --web-dir");
  }
  return {{web, "/www"}, {catalogue, "/www/catalogue.json"}};
}

int serve_web(const board::Descriptor& listening, const board::Descriptor& ready) {
  try {
    let_connections_wait();
    const pid_t server = start_web_server();
    wait_until_served(server);
    if (!board::write_all(ready.get(), "+")) throw board::system_failure("pipe");
    Forwarder forwarder(listening, kWebPort);
    Reporter reporter;
    for (;;) {
      forwarder.step(kStep);
      reporter.print_new();
      require_running(server);
    }
  } catch (const std::exception& failure) {
    std::cerr << "zelto-board: " << failure.what() << '\n';
    return 1;
  }
}

}  // namespace launcher

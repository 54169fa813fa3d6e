// What a request costs on its way through the router's web server and the gateway.

#include <arpa/inet.h>
#include <benchmark/benchmark.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <stdexcept>
#include <string>

#include "board/board.h"
#include "router.h"

namespace {

constexpr const char* kRequest = R"({"type":"getlancfg"})";

int connect_to_server() {
  const int server = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_port = htons(80);
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  if (connect(server, reinterpret_cast<const sockaddr*>(&address), sizeof address) < 0) {
    throw std::runtime_error("no web server");
  }
  return server;
}

// The whole answer of the web server.
std::string post(const std::string& program, const std::string& body, const std::string& token) {
  const int server = connect_to_server();
  const std::string request =
      "POST /cgi-bin/" + program + " HTTP/1.0\r\nHost: 127.0.0.1\r\nOrigin: http://127.0.0.1\r\n" +
      "Content-Type: application/json\r\nContent-Length: " + std::to_string(body.size()) +
      "\r\nCookie: zelto_session=" + token + "\r\n\r\n" + body;
  if (write(server, request.data(), request.size()) < 0) throw std::runtime_error("cannot ask");
  std::string answer;
  std::array<char, 4096> chunk{};
  for (ssize_t size = 0; (size = read(server, chunk.data(), chunk.size())) > 0;) {
    answer.append(chunk.data(), static_cast<std::size_t>(size));
  }
  close(server);
  return answer;
}

// Starts the web server, and a session for the gateway.
std::string log_in() {
  zelto_bench::reset();
  for (const char* program : {"zelto-cgi", "empty-cgi"}) {
    board::quiet({"ln", "-sf", std::string("/usr/bin/") + program, "/www/cgi-bin/"});
  }
  board::quiet({"httpd", "-p", "80", "-h", "/www"});
  const auto answer =
      post("zelto-cgi", R"({"type":"loginauth","user":"admin","pass":"admin"})", "");
  constexpr std::string_view kToken = R"("token":")";
  constexpr std::size_t kTokenLength = 32;
  const auto at = answer.find(kToken);
  if (at == std::string::npos) throw std::runtime_error("cannot log in: " + answer);
  return answer.substr(at + kToken.size(), kTokenLength);
}

void ask(benchmark::State& state, const char* program, const char* expected) {
  const auto token = log_in();
  for (auto _ : state) {
    if (post(program, kRequest, token).find(expected) == std::string::npos) {
      state.SkipWithError("not the answer");
    }
  }
  zelto_bench::reset();
}

void cgi_getlancfg(benchmark::State& state) {
  ask(state, "zelto-cgi", R"("lanip":")");
}

void cgi_empty(benchmark::State& state) {
  ask(state, "empty-cgi", "{}");
}

BENCHMARK(cgi_getlancfg)->UseRealTime();
BENCHMARK(cgi_empty)->UseRealTime();

}  // namespace

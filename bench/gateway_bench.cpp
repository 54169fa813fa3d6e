// What a request costs on its way through the router's web server and the gateway.

#include <arpa/inet.h>
#include <benchmark/benchmark.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "board/board.h"
#include "router.h"
#include "timing.h"

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

// A CGI program, what its answers hold, and how long they took.
struct Program {
  const char* name;
  const char* expected;
  std::vector<double> seconds;
};

enum ProgramFigure { kGateway, kEmpty, kFigures };

// In turns, as other work on the machine comes and goes.
std::array<double, kFigures> measure_programs() {
  constexpr int kTurns = 200;
  constexpr useconds_t kRest = 3000;  // microseconds until the program has ended
  std::array<Program, kFigures> programs = {
      {{"zelto-cgi", R"("lanip":")", {}}, {"empty-cgi", "{}", {}}}};
  const auto token = log_in();
  for (int turn = 0; turn < kTurns; ++turn) {
    for (auto& program : programs) {
      std::string answer;
      program.seconds.push_back(
          zelto_bench::seconds_of([&] { answer = post(program.name, kRequest, token); }));
      if (answer.find(program.expected) == std::string::npos) throw std::runtime_error(answer);
      usleep(kRest);
    }
  }
  zelto_bench::reset();
  return {zelto_bench::lower_quartile(programs[kGateway].seconds),
          zelto_bench::lower_quartile(programs[kEmpty].seconds)};
}

void report(benchmark::State& state, ProgramFigure figure) {
  static const auto quartiles = measure_programs();
  for (auto _ : state) state.SetIterationTime(quartiles[figure]);
}

void cgi_getlancfg(benchmark::State& state) {
  report(state, kGateway);
}

void cgi_empty(benchmark::State& state) {
  report(state, kEmpty);
}

BENCHMARK(cgi_getlancfg)->UseManualTime()->Iterations(1)->Repetitions(1);
BENCHMARK(cgi_empty)->UseManualTime()->Iterations(1)->Repetitions(1);

}  // namespace

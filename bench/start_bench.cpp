// What it costs to start a detached command, and a program that makes one request.

#include <benchmark/benchmark.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <stdexcept>
#include <string>
#include <vector>

#include <zelto/utilities.h>

#include "board/board.h"
#include "timing.h"

namespace {

constexpr useconds_t kRest = 3000;  // microseconds until the processors are idle again
constexpr int kTurns = 40;
constexpr int kStartsInTurn = 10;
constexpr std::size_t kMegabyte = std::size_t{1024} * 1024;

// A way to start something, from a caller with so much of its memory in use.
struct Starter {
  std::size_t megabytes;
  void (*start)();
  std::vector<double> seconds;
};

void start_detached() {
  zelto_system(":");
}

void start_by_vfork() {
  // What it is compared with. NOLINTNEXTLINE(clang-analyzer-security.insecureAPI.vfork)
  if (vfork() == 0) {
    execl("/bin/sh", "sh", "-c", ":", nullptr);
    _exit(127);
  }
}

// The times until `start` returns. What it started is waited for in between, so that it does not
// take the processor from the next one.
void time_starts(Starter& starter) {
  const std::string memory(starter.megabytes * kMegabyte, 'x');
  benchmark::DoNotOptimize(memory.data());
  for (int i = 0; i < kStartsInTurn; ++i) {
    usleep(kRest);
    starter.seconds.push_back(zelto_bench::seconds_of(starter.start));
    while (waitpid(-1, nullptr, WNOHANG) == 0) usleep(100);
    board::settle();
  }
}

enum StartFigure { kAt8Megabytes, kAt64Megabytes, kVfork, kStartFigures };

// In turns and once for all, as other work on the machine comes and goes while benchmarks run one
// after the other.
std::array<double, kStartFigures> measure_starts() {
  std::array<Starter, kStartFigures> starters = {
      {{8, start_detached, {}}, {64, start_detached, {}}, {8, start_by_vfork, {}}}};
  for (int turn = 0; turn < kTurns; ++turn) {
    for (auto& starter : starters) time_starts(starter);
  }
  std::array<double, kStartFigures> quartiles{};
  std::transform(starters.begin(), starters.end(), quartiles.begin(), [](Starter& starter) {
    return zelto_bench::lower_quartile(std::move(starter.seconds));
  });
  return quartiles;
}

void report_start(benchmark::State& state, StartFigure figure) {
  static const auto quartiles = measure_starts();
  for (auto _ : state) state.SetIterationTime(quartiles[figure]);
}

void start_at_8_mb(benchmark::State& state) {
  report_start(state, kAt8Megabytes);
}

void start_at_64_mb(benchmark::State& state) {
  report_start(state, kAt64Megabytes);
}

void vfork_exec(benchmark::State& state) {
  report_start(state, kVfork);
}

// A program from its start to its end.
struct Program {
  std::vector<const char*> arguments;
  std::vector<double> seconds;
};

void run(Program& program) {
  auto arguments = program.arguments;
  arguments.push_back(nullptr);
  program.seconds.push_back(zelto_bench::seconds_of([&] {
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", 1, 0);
    pid_t child = 0;
    int status = posix_spawnp(&child, arguments.front(), &actions, nullptr,
                              const_cast<char* const*>(arguments.data()), environ);
    posix_spawn_file_actions_destroy(&actions);
    if (status != 0 || waitpid(child, &status, 0) != child || status != 0) {
      throw std::runtime_error(std::string("cannot run ") + arguments.front());
    }
  }));
}

enum ProgramFigure { kRequestProgram, kEmptyProgram, kProgramFigures };

std::array<Program, kProgramFigures> run_programs() {
  std::array<Program, kProgramFigures> programs = {
      {{{"zelto", "getheartbeat"}, {}}, {{"empty-cgi"}, {}}}};
  for (int turn = 0; turn < kTurns * kStartsInTurn; ++turn) {
    for (auto& program : programs) run(program);
  }
  return programs;
}

void report_program(benchmark::State& state, ProgramFigure figure) {
  static const auto programs = run_programs();
  const double seconds = zelto_bench::lower_quartile(programs[figure].seconds);
  for (auto _ : state) state.SetIterationTime(seconds);
}

void zelto_getheartbeat(benchmark::State& state) {
  report_program(state, kRequestProgram);
}

void empty_program(benchmark::State& state) {
  report_program(state, kEmptyProgram);
}

BENCHMARK(start_at_8_mb)->UseManualTime()->Iterations(1)->Repetitions(1);
BENCHMARK(start_at_64_mb)->UseManualTime()->Iterations(1)->Repetitions(1);
BENCHMARK(vfork_exec)->UseManualTime()->Iterations(1)->Repetitions(1);
BENCHMARK(zelto_getheartbeat)->UseManualTime()->Iterations(1)->Repetitions(1);
BENCHMARK(empty_program)->UseManualTime()->Iterations(1)->Repetitions(1);

}  // namespace

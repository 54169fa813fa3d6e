// zelto-fuzz --target=NAME [OPTION of libFuzzer | FOLDER | FILE]...
//
// Runs whole in a virtual router of its own, so nothing that an input brings about can leave it.
// Folders and files of the host stay reachable there through descriptors that were opened before.

#include <fcntl.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include "board/board.h"
#include "fuzz/fuzz.h"

// Of libFuzzer, which has no header for them.
extern "C" {
int LLVMFuzzerRunDriver(int* argc, char*** argv, int (*run)(const uint8_t*, size_t));
size_t LLVMFuzzerMutate(uint8_t* data, size_t size, size_t longest);
size_t LLVMFuzzerCustomMutator(uint8_t* data, size_t size, size_t longest, unsigned seed);
}

namespace {

constexpr fuzz::Target kRequests = {"requests", fuzz::run_requests};
fuzz::Target target = kRequests;

int run_input(const uint8_t* data, size_t size) {
  target.run({reinterpret_cast<const char*>(data), size});
  return 0;
}

bool choose_target(std::string_view name) {
  if (name == kRequests.name) return true;
  const auto all = fuzz::parsers();
  const auto found = std::ranges::find(all, name, &fuzz::Target::name);
  if (found != all.end()) target = *found;
  return found != all.end();
}

// The same argument as the router's processes have to see it.
std::string carried_over(const std::string& argument) {
  std::string option;
  for (const char* with_path : {"-artifact_prefix=", "-merge_control_file="}) {
    if (argument.starts_with(with_path)) option = with_path;
  }
  if (option.empty() && argument.starts_with('-')) return argument;
  const std::string path = argument.substr(option.size());
  const int descriptor = open(path.c_str(), O_RDONLY);
  if (descriptor < 0) {
    std::perror(path.c_str());
    std::exit(EXIT_FAILURE);
  }
  const char* end = path.ends_with('/') ? "/" : "";
  return option + "/proc/self/fd/" + std::to_string(descriptor) + end;
}

int run(std::vector<std::string> arguments) {
  std::vector<char*> pointers;
  pointers.reserve(arguments.size() + 1);
  for (auto& argument : arguments) pointers.push_back(argument.data());
  pointers.push_back(nullptr);
  int count = static_cast<int>(arguments.size());
  char** values = pointers.data();
  return LLVMFuzzerRunDriver(&count, &values, run_input);
}

}  // namespace

size_t LLVMFuzzerCustomMutator(uint8_t* data, size_t size, size_t longest, unsigned seed) {
  if (target.run != kRequests.run) return LLVMFuzzerMutate(data, size, longest);
  return fuzz::mutate_requests(reinterpret_cast<char*>(data), size, longest, seed);
}

void fuzz::fail(const std::string& what) {
  (void)std::fprintf(stderr, "zelto-fuzz: %s\n", what.c_str());
  std::abort();
}

int main(int argc, char** argv) {
  // libFuzzer passes over options that begin with two dashes, and hands them on.
  constexpr std::string_view kTarget = "--target=";
  std::vector<std::string> arguments(argv, argv + argc);
  if (argc < 2 || !arguments[1].starts_with(kTarget) ||
      !choose_target(arguments[1].substr(kTarget.size()))) {
    (void)std::fputs("targets: requests", stderr);
    for (const auto& parser : fuzz::parsers()) (void)std::fprintf(stderr, " %s", parser.name);
    (void)std::fputs("\n", stderr);
    return 2;
  }
  // A merge is done by further processes like this one, which libFuzzer starts by itself. They name
  // the inputs as the first does, so these are copied into the router.
  const auto has = [&](const char* option) {
    return std::ranges::find(arguments, option) != arguments.end();
  };
  if (has("-set_cover_merge=1")) return run(arguments);
  board::Options options{.usb_disks = 1};
  for (auto& argument : arguments) {
    if (&argument == &arguments.front()) continue;
    if (has("-merge_inner=2") && !argument.starts_with('-')) {
      options.files.push_back({std::filesystem::absolute(argument), "/" + argument});
    } else {
      argument = carried_over(argument);
    }
  }
  fuzz::load_grammar(CATALOGUE, FUZZ_FOLDER "/values.json");
  fuzz::load_allowed(FUZZ_FOLDER "/allowed.txt");
  return board::run(options, [&] {
    if (target.run == kRequests.run) fuzz::begin_requests();
    fuzz::is_noting = true;
    return run(arguments);
  });
}

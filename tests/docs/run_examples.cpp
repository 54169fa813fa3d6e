// Runs requests on a virtual router with factory settings and tells the reply and the effects of
// each. Standard input: a request a line, as command, handler and JSON text with tabs between.
// Standard output: the live rows of the command table, one "row COMMAND" a line; then for each
// request its reply, its effects one a line, and an empty line. The router is reset in between.

#include <dlfcn.h>

#include <iostream>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "board/board.h"
#include "support/ask.h"

namespace {

struct Example {
  std::string command, handler, request;
};

std::vector<Example> read_examples() {
  std::vector<Example> examples;
  for (std::string line; std::getline(std::cin, line);) {
    std::istringstream words(line);
    Example example;
    std::getline(words, example.command, '\t');
    std::getline(words, example.handler, '\t');
    std::getline(words, example.request);
    examples.push_back(std::move(example));
  }
  return examples;
}

// As a front end asks; directly where there is no row.
zelto_test::Answer ask(const Example& example, bool has_row) {
  if (has_row) return zelto_test::call(share_func, example.request.c_str());
  const auto handler =
      reinterpret_cast<CommandHandler>(dlsym(RTLD_DEFAULT, example.handler.c_str()));
  if (handler == nullptr) return {0, "no such handler"};
  return zelto_test::call(handler, example.request.c_str());
}

int run(const std::vector<Example>& examples) {
  std::set<std::string> rows;
  for (const auto& row : zelto_handle) {
    if (row.handler == nullptr) continue;
    rows.insert(row.name);
    std::cout << "row " << row.name << '\n';
  }
  for (const auto& example : examples) {
    board::reset();
    board::write_file("/tmp/online_file", "online\n");
    board::write_file("/tmp/wan_speed_file", "0KB/s 0KB/s\n");
    std::cout << ask(example, rows.contains(example.command)).reply << '\n';
    for (const auto& effect : board::journal()) std::cout << effect << '\n';
    std::cout << std::endl;
  }
  return 0;
}

}  // namespace

int main() {
  const auto examples = read_examples();
  return board::run({.programs = {}}, [&] { return run(examples); });
}

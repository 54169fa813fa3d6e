// The examples in the public headers hold, and no live command is without one.

#include <dlfcn.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <regex>
#include <set>

#include "support/router_test.h"

namespace {

// Read before the router hides the source tree.
const std::string kHeaders = [] {
  std::string all;
  for (const auto& file : std::filesystem::directory_iterator(ZELTO_HEADERS)) {
    std::ifstream stream(file.path());
    all.append(std::istreambuf_iterator<char>(stream), {});
  }
  return all;
}();

struct Example {
  std::vector<std::string> commands;  // all that the handler serves
  std::string request;
  std::string reply;  // * stands for any text or number
  std::string handler;
};

std::vector<std::string> all_matches(const std::string& text, const std::regex& form) {
  std::vector<std::string> found;
  for (std::sregex_iterator match(text.begin(), text.end(), form), end; match != end; ++match) {
    found.push_back(match->str(1));
  }
  return found;
}

std::vector<Example> examples() {
  static const std::regex kForm(
      R"(\n \* ((?:@command +\w+\n \* )+)(?:[^/\n][^\n]*\n \* ?)*?@example +(\{(?:[^/]|/(?!\n))*?\}))"
      R"(\s*=>((?:[^*]|\*(?!/))+)\*/\nZELTO_API int (\w+)\()");
  static const std::regex kCommand(R"(@command +(\w+))");
  static const std::regex kFolds(R"(\n \* +|^\s+|\s+$)");
  std::vector<Example> found;
  for (std::sregex_iterator match(kHeaders.begin(), kHeaders.end(), kForm), end; match != end;
       ++match) {
    found.push_back({all_matches(match->str(1), kCommand),
                     std::regex_replace(match->str(2), kFolds, ""),
                     std::regex_replace(match->str(3), kFolds, ""), match->str(4)});
  }
  return found;
}

std::regex pattern_of(const std::string& reply) {
  static const std::regex kSpecial(R"([.^$|()\[\]{}+?\\])");
  static const std::regex kAnything(R"(\*)");
  const auto escaped = std::regex_replace(reply, kSpecial, R"(\$&)");
  return std::regex(std::regex_replace(escaped, kAnything, R"re((?:"[^"]*"|\d+))re"));
}

class Examples : public zelto_test::RouterTest {};

TEST_F(Examples, Hold) {
  std::set<std::string> documented;
  for (const auto& example : examples()) {
    documented.insert(example.commands.begin(), example.commands.end());
    board::reset();
    board::write_file("/tmp/online_file", "online\n");
    board::write_file("/tmp/wan_speed_file", "0KB/s 0KB/s\n");
    const auto handler =
        reinterpret_cast<CommandHandler>(dlsym(RTLD_DEFAULT, example.handler.c_str()));
    ASSERT_NE(handler, nullptr) << example.handler;
    const auto reply = zelto_test::call(handler, example.request.c_str()).reply;
    EXPECT_TRUE(std::regex_match(reply, pattern_of(example.reply)))
        << example.request << "\n  gives  " << reply << "\n  not    " << example.reply;
  }
  for (const auto& row : zelto_handle) {
    EXPECT_TRUE(row.handler == nullptr || documented.contains(row.name)) << row.name;
  }
}

}  // namespace

// The rules of fuzz/allowed.txt as one regular expression a kind.

#include <regex.h>

#include <fstream>
#include <functional>
#include <map>

#include "fuzz/fuzz.h"

namespace fuzz {
namespace {

const std::map<std::string, std::string, std::less<>> kPlaceholders = {
    {"<word>", R"(('[^']*'|\\.|[A-Za-z0-9@%+=:,./_-])+)"},
    {"<text>", R"((\\.|[^"$`\\])*)"},
    {"<number>", "-?[0-9]+"},
    {"<field>", "[^ [:cntrl:]]+"},
    {"<rest>", "[^[:cntrl:]]*"},
    {"<anything>", ".*"}};

// Never destroyed, as what regcomp() gives would be left behind then.
auto& rules = *new std::map<std::string, regex_t, std::less<>>;

std::string expression(std::string_view rule) {
  std::string result;
  while (!rule.empty()) {
    const auto found = kPlaceholders.find(rule.substr(0, rule.find('>') + 1));
    if (found != kPlaceholders.end()) {
      result += found->second;
      rule.remove_prefix(found->first.size());
      continue;
    }
    if (std::string_view(R"(\^$.[]|()?*+{})").find(rule.front()) != std::string_view::npos) {
      result += '\\';
    }
    result += rule.front();
    rule.remove_prefix(1);
  }
  return result;
}

}  // namespace

void load_allowed(const std::string& path) {
  std::map<std::string, std::string> expressions;
  std::ifstream file(path);
  for (std::string line; std::getline(file, line);) {
    if (line.empty() || line.front() == '#') continue;
    const auto blank = line.find(' ');
    auto& all = expressions[line.substr(0, blank)];
    all += (all.empty() ? "^(" : "|") + expression(std::string_view(line).substr(blank + 1));
  }
  for (const auto& [kind, all] : expressions) {
    require(regcomp(&rules[kind], (all + ")$").c_str(), REG_EXTENDED | REG_NOSUB) == 0, "a rule");
  }
}

bool is_allowed(std::string_view kind, std::string_view text) {
  const auto found = rules.find(kind);
  return found != rules.end() && text.find('\0') == std::string_view::npos &&
         regexec(&found->second, std::string(text).c_str(), 0, nullptr, 0) == 0;
}

void require_allowed(std::string_view kind, std::string_view text) {
  if (!is_allowed(kind, text)) {
    fail("fuzz/allowed.txt has no rule for: " + std::string(kind) + " " + std::string(text));
  }
}

}  // namespace fuzz

// A request's effects as a test expects them.
#pragma once

#include <gmock/gmock.h>

#include <algorithm>
#include <regex>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "board/board.h"

namespace zelto_test {

using Lines = std::vector<std::string>;

using Words = std::vector<std::pair<std::string, std::string>>;

// Replaces the words in turn: what is put in may hold later ones.
inline std::string with(std::string text, const Words& words) {
  for (const auto& [word, value] : words) {
    for (auto at = text.find(word); at != std::string::npos; at = text.find(word)) {
      text.replace(at, word.size(), value);
    }
  }
  return text;
}

// A text's lines, empty ones left out; one with a {list, of, words} stands for a line a word.
inline Lines expand(const std::string& text) {
  Lines lines;
  std::istringstream stream(text);
  for (std::string line; std::getline(stream, line);) {
    const auto open = line.find('{');
    const auto close = line.find('}');
    if (open >= close) {
      if (!line.empty()) lines.push_back(line);
      continue;
    }
    for (auto at = open + 1; at < close;) {
      const auto end = std::min(line.find(", ", at), close);
      lines.push_back(line.substr(0, open) + line.substr(at, end - at) + line.substr(close + 1));
      at = end == close ? close : end + 2;
    }
  }
  return lines;
}

// Stores and commands that are waited for, and what is started: each with the number of the former
// before it.
struct Effects {
  explicit Effects(const Lines& journal) {
    static const std::regex kGeneratedName("cfg[0-9a-f]{6}");
    for (const auto& line : journal) {
      if (line.starts_with("start ")) {
        started.emplace_back(line, done.size());
      } else {
        done.push_back(std::regex_replace(line, kGeneratedName, "cfg*"));
      }
    }
    std::sort(started.begin(), started.end());
  }

  Lines done;
  std::vector<std::pair<std::string, std::size_t>> started;
};

// Checks the journal against the effects in their order, as expand() reads them. A started command
// is noted when its shell comes to it: never before its turn, but maybe after. Generated section
// names read cfg*.
inline void expect_effects(const std::string& expected, const std::string& of) {
  const Effects wanted(expand(expected));
  const Effects found(board::journal());
  EXPECT_THAT(found.done, testing::ElementsAreArray(wanted.done)) << of;
  ASSERT_EQ(found.started.size(), wanted.started.size()) << of;
  for (std::size_t i = 0; i < found.started.size(); ++i) {
    EXPECT_EQ(found.started[i].first, wanted.started[i].first) << of;
    EXPECT_GE(found.started[i].second, wanted.started[i].second) << found.started[i].first;
  }
}

}  // namespace zelto_test

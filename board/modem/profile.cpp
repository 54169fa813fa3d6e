#include "board/modem/profile.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <charconv>
#include <cstddef>
#include <filesystem>
#include <sstream>
#include <stdexcept>
#include <string_view>
#include <system_error>
#include <utility>

#include "board/board.h"
#include "board/modem/paths.h"

namespace board::modem {
namespace {

constexpr int kDeepestLikeness = 8;
constexpr std::array<std::string_view, 5> kFinalResults{"OK", "ERROR", "NO CARRIER",
                                                        "+CME ERROR:", "+CMS ERROR:"};

int number(std::string_view text, int base = 10) {
  int value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value, base);
  if (error != std::errc() || end != text.data() + text.size() || value < 0) {
    throw std::runtime_error("no number: " + std::string(text));
  }
  return value;
}

// The text up to the first blank, and what follows the blanks there.
std::pair<std::string_view, std::string_view> split_word(std::string_view text) {
  const size_t end = std::min(text.find(' '), text.size());
  const size_t next = std::min(text.find_first_not_of(' ', end), text.size());
  return {text.substr(0, end), text.substr(next)};
}

std::string unescape(std::string_view text) {
  std::string bytes;
  while (!text.empty()) {
    size_t taken = 1;
    char byte = text.front();
    if (byte == '\\' && text.size() > 1) {
      taken = 2;
      byte = text[1] == 'r' ? '\r' : text[1] == 'n' ? '\n' : text[1];
      if (byte == 'x') {
        byte = static_cast<char>(number(text.substr(2, 2), 16));
        taken = 4;
      }
    }
    bytes += byte;
    text.remove_prefix(std::min(taken, text.size()));
  }
  return bytes;
}

Step parse_step(std::string_view line) {
  if (!line.starts_with('!')) return {.kind = Step::Kind::kLine, .bytes = unescape(line)};
  const auto [name, rest] = split_word(line);
  if (name == "!bytes") return {.kind = Step::Kind::kBytes, .bytes = unescape(rest)};
  if (name == "!fill") {
    const auto [count, text] = split_word(rest);
    Step step{.kind = Step::Kind::kBytes, .bytes = {}};
    for (int i = number(count); i > 0; --i) step.bytes += unescape(text);
    return step;
  }
  if (name == "!pause") {
    return {.kind = Step::Kind::kPause, .bytes = {}, .milliseconds = number(rest)};
  }
  if (name == "!silence") return {.kind = Step::Kind::kSilence, .bytes = {}};
  if (name == "!hangup") return {.kind = Step::Kind::kHangUp, .bytes = {}};
  if (name == "!replug") return {.kind = Step::Kind::kReplug, .bytes = {}};
  throw std::runtime_error("unknown: " + std::string(line));
}

bool is_ended(const Answer& answer) {
  if (answer.empty() || answer.back().kind == Step::Kind::kPause) return false;
  if (answer.back().kind != Step::Kind::kLine) return answer.back().kind != Step::Kind::kBytes;
  return std::ranges::any_of(kFinalResults, [&](std::string_view result) {
    return answer.back().bytes.starts_with(result);
  });
}

Profile load_nested(const std::string& path, int depth);

void set(Profile& profile, std::string_view name, std::string_view value, int depth) {
  if (name == "like") {
    profile = load_nested(std::string(value), depth + 1);
  } else if (name == "kind") {
    profile.kind = value;
  } else if (name == "port") {
    profile.port = value;
  } else if (name == "echo") {
    profile.echo = value == "on";
  } else if (name == "delay") {
    profile.delay_milliseconds = number(value);
  } else if (name == "before") {
    profile.before.push_back(unescape(value));
  } else if (name == "within") {
    profile.within.push_back(unescape(value));
  } else if (name == "mute") {
    profile.mute_after = number(value);
  } else {
    throw std::runtime_error("unknown: " + std::string(name));
  }
}

Profile parse(const std::string& text, int depth) {
  Profile profile;
  Answer* answer = nullptr;
  std::istringstream lines(text);
  for (std::string line; std::getline(lines, line);) {
    const size_t start = line.find_first_not_of(' ');
    if (start == std::string::npos || line.front() == '#') continue;
    if (start > 0) {
      if (answer == nullptr) throw std::runtime_error("no command for the answer" + line);
      answer->push_back(parse_step(std::string_view(line).substr(start)));
    } else if (line.starts_with("AT")) {
      answer = &profile.answers[upper_case(line)];
      answer->clear();
    } else {
      const auto [name, value] = split_word(line);
      set(profile, name, value, depth);
      answer = nullptr;
    }
  }
  for (auto& [command, steps] : profile.answers) {
    if (!is_ended(steps)) steps.push_back({.kind = Step::Kind::kLine, .bytes = "OK"});
  }
  return profile;
}

Profile load_nested(const std::string& path, int depth) {
  const bool is_name = path.find('/') == std::string::npos;
  const std::filesystem::path file = is_name ? kProfiles + path : path;
  if (depth > kDeepestLikeness) throw std::runtime_error(path + " is like itself");
  if (!std::filesystem::is_regular_file(file)) throw std::runtime_error("no modem " + path);
  try {
    return parse(read_file(file), depth);
  } catch (const std::runtime_error& failure) {
    throw std::runtime_error(path + ": " + failure.what());
  }
}

}  // namespace

Profile load(const std::string& path) {
  return load_nested(path, 0);
}

std::string upper_case(std::string text) {
  for (char& c : text) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
  return text;
}

}  // namespace board::modem

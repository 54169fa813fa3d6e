#include "platform/uart/answer.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cstddef>
#include <utility>

namespace uartat {
namespace {

// Far above the longest answer that a caller can receive, so that a prefix behind other lines is
// still found.
constexpr size_t kLongestLine = 4096;
constexpr size_t kLongestAnswer = 65536;

constexpr std::array<std::string_view, 8> kFinalResults = {
    "OK", "ERROR", "NO CARRIER", "NO DIALTONE", "NO DIAL TONE", "BUSY", "NO ANSWER", "CONNECT"};
constexpr std::array<std::string_view, 3> kFinalResultsWithDetail = {
    "+CME ERROR:", "+CMS ERROR:", "CONNECT "};

constexpr std::array<std::string_view, 8> kUnsolicitedWords = {
    "RING",     "RDY",     "Call Ready",   "SMS Ready",
    "SMS DONE", "PB DONE", "POWERED DOWN", "NORMAL POWER DOWN"};
// Announce a message, the text of which is the line that follows. No command is answered so.
constexpr std::array<std::string_view, 2> kMessageHeaders = {"+CMT:", "+CBM:"};

// The marks that the names of extended commands, and so their response lines, begin with.
constexpr std::string_view kExtendedMarks = "+^%*$#!@";

template <size_t count>
bool is_one_of(const std::array<std::string_view, count>& words, std::string_view line) {
  return std::find(words.begin(), words.end(), line) != words.end();
}

template <size_t count>
bool begins_with_one_of(const std::array<std::string_view, count>& openings,
                        std::string_view line) {
  return std::any_of(openings.begin(), openings.end(),
                     [line](std::string_view opening) { return line.starts_with(opening); });
}

std::string upper_case(std::string_view text) {
  std::string upper(text);
  for (char& c : upper) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
  return upper;
}

// The mark and name that `text` begins with, such as "+CPIN" of "+CPIN?"; empty when there is none.
std::string_view extended_name(std::string_view text) {
  if (text.empty() || kExtendedMarks.find(text.front()) == std::string_view::npos) return {};
  const auto is_name = [](char c) {
    return std::isalnum(static_cast<unsigned char>(c)) != 0 || c == '_';
  };
  const auto end = std::find_if_not(text.begin() + 1, text.end(), is_name);
  const auto size = static_cast<size_t>(end - text.begin());
  return size > 1 ? text.substr(0, size) : std::string_view();
}

// The commands of a command line, which ';' separates outside quotes.
std::vector<std::string> split_commands(std::string_view line) {
  std::vector<std::string> commands(1);
  bool quoted = false;
  for (const char c : line) {
    if (c == '"') quoted = !quoted;
    if (c == ';' && !quoted) {
      commands.emplace_back();
    } else {
      commands.back() += c;
    }
  }
  return commands;
}

std::vector<std::string> extended_commands(std::string_view command_line) {
  const std::string line = upper_case(command_line);
  std::vector<std::string> names;
  for (const std::string& command :
       split_commands(line.starts_with("AT") ? line.substr(2) : line)) {
    const std::string_view name = extended_name(command);
    if (name.empty()) return {};
    names.emplace_back(name);
  }
  return names;
}

}  // namespace

bool is_final_result(std::string_view line) {
  return is_one_of(kFinalResults, line) || begins_with_one_of(kFinalResultsWithDetail, line);
}

Answer::Answer(std::string_view command, std::string_view prefix)
    : command_(command), prefix_(prefix), asked_(extended_commands(command)) {}

bool Answer::take(std::string_view bytes) {
  for (const char c : bytes) {
    if (complete_) break;
    if (c == '\r' || c == '\n') {
      end_line();
    } else if (c != '\0' && line_.size() < kLongestLine) {
      line_ += c;
    }
  }
  return complete_;
}

void Answer::end_line() {
  const std::string line = std::exchange(line_, {});
  if (line.empty() || line == command_) return;
  if (std::exchange(next_line_is_message_, false)) return;

  complete_ = is_final_result(line);
  if (!complete_ && is_unsolicited(line)) {
    next_line_is_message_ = begins_with_one_of(kMessageHeaders, line);
    return;
  }
  if (text_.size() + line.size() <= kLongestAnswer) text_.append(line).append("\r\n");
}

bool Answer::is_unsolicited(std::string_view line) const {
  if (is_one_of(kUnsolicitedWords, line)) return true;
  if (!prefix_.empty() && line.starts_with(prefix_)) return false;
  if (begins_with_one_of(kMessageHeaders, line)) return true;
  if (asked_.empty()) return false;
  const std::string_view name = extended_name(line);
  if (name.empty() || !line.substr(name.size()).starts_with(':')) return false;
  return std::find(asked_.begin(), asked_.end(), upper_case(name)) == asked_.end();
}

std::string_view from_prefix(std::string_view answer, std::string_view prefix) {
  const size_t position = answer.find(prefix);
  return position == std::string_view::npos ? std::string_view() : answer.substr(position);
}

}  // namespace uartat

// What a modem's bytes mean: lines, the end of an answer, and what is no part of it.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace uartat {

// Whether `line` is a final result code, after which the modem takes the next command.
bool is_final_result(std::string_view line);

// Gathers the answer to one command from the bytes as they come. Holds a bounded amount of them,
// however many come.
class Answer {
 public:
  // `prefix` is the text that the caller looks for, empty for none.
  Answer(std::string_view command, std::string_view prefix);

  // Takes the next bytes; true once the final result code has come, behind which all is ignored.
  bool take(std::string_view bytes);

  // The lines so far, each ended by CR LF.
  const std::string& text() const { return text_; }

 private:
  void end_line();
  bool is_unsolicited(std::string_view line) const;

  std::string command_;
  std::string prefix_;
  // The extended commands asked, such as "+CPIN"; empty when the command line also holds one of
  // another kind, whose response lines can look like anything.
  std::vector<std::string> asked_;
  std::string line_;
  std::string text_;
  bool next_line_is_message_ = false;
  bool complete_ = false;
};

// The part of `answer` from the first occurrence of `prefix` on; empty when there is none.
std::string_view from_prefix(std::string_view answer, std::string_view prefix);

}  // namespace uartat

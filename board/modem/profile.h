// What a modem is like, as a text tells it:
//
//     # a comment
//     like lte                what another profile says, before this one changes it
//     kind 4                  what the modem daemon makes of it
//     port /dev/ttyUSB2       where it is plugged in
//     echo on                 until ATE0
//     delay 200               milliseconds from a command to its answer
//     before +CREG: 5         an unasked line ahead of every answer; as often as wanted
//     within ^RSSI: 20        the same behind the first line of every answer
//     mute 3                  falls silent after so many commands
//     AT+CPIN?                a command, with the lines of its answer indented below it
//       +CPIN: READY
//
// OK ends an answer that does not end with another final result. \r, \n, \\ and \xHH stand for
// bytes in what is sent. An indented line may also be
//
//     !bytes TEXT             without the line ends around it
//     !fill COUNT TEXT        the same, over and over
//     !pause MILLISECONDS
//     !silence                nothing more, no final result either
//     !hangup                 the modem is pulled out
//     !replug                 the line is lost, and another one there at once
#pragma once

#include <map>
#include <optional>
#include <string>
#include <vector>

namespace board::modem {

struct Step {
  enum class Kind { kLine, kBytes, kPause, kSilence, kHangUp, kReplug };
  Kind kind = Kind::kLine;
  std::string bytes;
  int milliseconds = 0;
};

using Answer = std::vector<Step>;

struct Profile {
  std::string kind = "0";
  std::string port = "/dev/ttyUSB1";
  bool echo = false;
  int delay_milliseconds = 0;
  std::vector<std::string> before;
  std::vector<std::string> within;
  std::optional<int> mute_after;
  std::map<std::string, Answer> answers;  // by the command in capitals
};

// The profile at `path`, which without a slash names one in kProfiles. Throws when there is none
// or it says what it cannot.
Profile load(const std::string& path);

std::string upper_case(std::string text);

}  // namespace board::modem

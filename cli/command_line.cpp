#include "cli/command_line.h"

#include <span>

#include "cli/json.h"

namespace cli {

const std::string_view kHelpText = R"(Asks the router's command library and prints its reply.

Usage:
  zelto [OPTION...] TYPE [MEMBER=VALUE | MEMBER:=JSON]...
  zelto [OPTION...] REQUEST
  zelto [OPTION...] [-]
  zelto list
  zelto rpcd list | zelto rpcd call TYPE

TYPE names the command; each MEMBER=VALUE becomes a member of the request with a text for value,
each MEMBER:=JSON one with a JSON value such as a number. REQUEST is the whole request, a JSON
object. With "-" or nothing the request is read from standard input.

  list       the commands, one a line, each with "live", or with "-" when it has no handler
  rpcd       speaks as a plugin of the RPC daemon: "list" prints the commands and their members,
             "call" reads the members from standard input

Options:
  --pretty   print the reply on several lines (the default on a terminal)
  --raw      print the reply as the library wrote it (the default elsewhere)
  --help     print this page
  --version  print the version

Exit status:
  0  done
  1  the reply's "result" says otherwise: it is neither 0 (done) nor 9 (alive)
  2  the command line makes no sense, or there is no reply

Examples:
  zelto getrouterinfo
  zelto setlancfg lanip=192.168.20.1 lanmsk=255.255.255.0 landhcp=on
  zelto '{"type":"getlancfg"}'
  zelto --raw < request.json
)";

namespace {

bool is_request(const std::string& argument) {
  return argument.starts_with('{');
}

void add_member(RequestBuilder& request, const std::string& argument) {
  const auto equals = argument.find('=');
  if (equals == std::string::npos) {
    throw UsageError("'" + argument + "' is neither MEMBER=VALUE nor MEMBER:=JSON");
  }
  const bool is_json = equals > 0 && argument[equals - 1] == ':';
  const std::string member = argument.substr(0, is_json ? equals - 1 : equals);
  const std::string value = argument.substr(equals + 1);
  if (member.empty()) throw UsageError("'" + argument + "' names no member");
  if (!is_json) {
    request.add_text(member, value);
  } else if (!request.add_json(member, value)) {
    throw UsageError("'" + value + "' is not JSON; a text needs " + member + "=" + value);
  }
}

std::string build_request(std::span<const std::string> words) {
  if (words.front().empty() || words.front().find('=') != std::string::npos) {
    throw UsageError("a command comes first, then its members; '" + words.front() + "' is none");
  }
  RequestBuilder request(words.front());
  for (const auto& word : words.subspan(1)) add_member(request, word);
  return request.text();
}

void read_option(const std::string& option, CommandLine& line) {
  if (option == "--pretty") {
    line.layout = Layout::kPretty;
  } else if (option == "--raw") {
    line.layout = Layout::kRaw;
  } else if (option == "--help") {
    line.action = Action::kHelp;
  } else if (option == "--version") {
    line.action = Action::kVersion;
  } else {
    throw UsageError("unknown option '" + option + "'");
  }
}

CommandLine read_rpcd(const std::vector<std::string>& words) {
  CommandLine line;
  const bool lists = words.size() == 2 && words[1] == "list";
  const bool calls = words.size() == 3 && words[1] == "call";
  if (!lists && !calls) throw UsageError("'rpcd' takes 'list' or 'call TYPE'");
  line.action = lists ? Action::kRpcList : Action::kRpcCall;
  if (calls) line.command = words[2];
  return line;
}

}  // namespace

CommandLine read_command_line(const std::vector<std::string>& arguments) {
  CommandLine line;
  std::vector<std::string> words;
  for (const auto& argument : arguments) {
    if (argument != "-" && argument.starts_with('-')) {
      read_option(argument, line);
    } else {
      words.push_back(argument);
    }
  }
  if (line.action != Action::kRequestFromInput || words.empty()) return line;

  const std::string& first = words.front();
  if (first == "rpcd") return read_rpcd(words);
  const bool stands_alone = first == "-" || first == "list" || is_request(first);
  if (stands_alone && words.size() > 1) {
    throw UsageError("nothing may follow '" + first + "'");
  }
  if (first == "-") return line;
  if (first == "list") {
    line.action = Action::kList;
    return line;
  }
  line.action = Action::kRequest;
  line.request = is_request(first) ? first : build_request(words);
  return line;
}

}  // namespace cli

// The command line as a user of the router has it.
#include <gmock/gmock.h>
#include <sys/wait.h>

#include <array>
#include <cstdio>
#include <string>
#include <vector>

#include "board/board.h"

namespace {

using testing::HasSubstr;
using testing::Not;

struct Outcome {
  int status;
  std::string output;  // both streams
  bool operator==(const Outcome&) const = default;
};

void PrintTo(const Outcome& outcome, std::ostream* out) {
  *out << "exit status " << outcome.status << ": " << outcome.output;
}

Outcome run(const std::string& command) {
  std::FILE* pipe = popen(("( " + command + " ) 2>&1").c_str(), "re");
  if (pipe == nullptr) return {-1, "cannot start"};
  std::string output;
  std::array<char, 4096> chunk{};
  while (const auto size = std::fread(chunk.data(), 1, chunk.size(), pipe)) {
    output.append(chunk.data(), size);
  }
  const int status = pclose(pipe);
  return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, output};
}

class Zelto : public testing::Test {
 protected:
  void SetUp() override { board::reset(); }
};

TEST_F(Zelto, PrintsTheReplyAndTellsSuccess) {
  const std::string alive = "{\"type\":\"getheartbeat\",\"result\":9}\n";
  const std::vector<std::pair<std::string, Outcome>> cases{
      {"zelto getheartbeat", {0, alive}},
      {R"(zelto '{"type":"getheartbeat"}')", {0, alive}},
      {R"(echo '{"type":"getheartbeat"}' | zelto)", {0, alive}},
      {R"(echo '{"type":"getheartbeat"}' | zelto --raw -)", {0, alive}},
      {"zelto getheartbeat --pretty",
       {0, "{\n\t\"type\":\t\"getheartbeat\",\n\t\"result\":\t9\n}\n"}},
      {"zelto getlanguage", {0, "{\"type\":\"getlanguage\",\"language\":\"en\"}\n"}},
      {"zelto loginauth user=admin pass=wrong", {1, "{\"type\":\"loginauth\",\"result\":1}\n"}},
      {"zelto nosuch", {1, "{\"type\":\"nosuch\",\"result\":6}\n"}},
      {R"(zelto --pretty 'no"such')", {1, "{\"type\":\"no\"such\",\"result\":6}\n"}},
  };
  for (const auto& [command, outcome] : cases) EXPECT_EQ(run(command), outcome) << command;
}

TEST_F(Zelto, BuildsTextsAndRawValues) {
  // A number is no text: the library takes the member for missing.
  const Outcome stored{0, "{\"type\":\"setwancfg\",\"result\":0}\n"};
  EXPECT_EQ(run("zelto setwancfg wanmode=pppoe pppoepsw='a=b\" :=' pppoename:=5"), stored);
  const std::string network = board::read_file("/etc/config/network");
  EXPECT_THAT(network, HasSubstr("option password 'a=b\" :='"));
  EXPECT_THAT(network, Not(HasSubstr("option username")));
}

TEST_F(Zelto, SaysWhatIsWrong) {
  const std::vector<std::pair<std::string, std::string>> cases{
      {"zelto --colour", "unknown option '--colour'"},
      {"zelto list all", "nothing may follow 'list'"},
      {R"(zelto '{"type":"getheartbeat"}' a=b)", "nothing may follow"},
      {"zelto lanip=192.168.20.1", "a command comes first"},
      {"zelto setlancfg lanip", "'lanip' is neither MEMBER=VALUE nor MEMBER:=JSON"},
      {"zelto setlancfg =on", "names no member"},
      {"zelto setlancfg :=1", "names no member"},
      {"zelto setlancfg 'lanip:=1 2'", "'1 2' is not JSON"},
      {"zelto '{'", "the request is not JSON"},
      {"zelto </dev/null", "the request is not JSON"},
      {R"(printf '{"type":"getheartbeat"}\0' | zelto)", "NUL"},
      {"zelto '{}'", "names no command"},
      {"zelto getheartbeat >/dev/full", "cannot write"},
  };
  for (const auto& [command, complaint] : cases) {
    const auto [status, output] = run(command);
    EXPECT_EQ(status, 2) << command;
    EXPECT_THAT(output, HasSubstr("zelto: ")) << command;
    EXPECT_THAT(output, HasSubstr(complaint)) << command;
  }
}

TEST_F(Zelto, ListsTheCommandsInTableOrder) {
  EXPECT_EQ(run("zelto list | sed -n '1p;6p;$='"),
            (Outcome{0, "loginauth live\ngetheartbeat live\n124\n"}));
  EXPECT_EQ(run(R"(zelto list | awk '$2 == "live" { ++live } { last = $0 }
                                    END { exit last != live " of 123 live" }')"),
            (Outcome{0, ""}));
}

TEST_F(Zelto, SpeaksAsAPluginOfTheRpcDaemon) {
  const auto listed = run("zelto rpcd list");
  EXPECT_THAT(listed.output, HasSubstr(R"("set_upnp_info":{"enable":0})"));
  EXPECT_THAT(listed.output, HasSubstr(R"("setsambapath":{"list":[]},)"));
  EXPECT_EQ(run("zelto rpcd list | zelto rpcd call getheartbeat"),
            (Outcome{0, "{\"type\":\"getheartbeat\",\"result\":9}\n"}));
  const std::vector<std::pair<std::string, std::string>> cases{
      {R"(printf '{"type":"reboot","Type":"restore"}' | zelto rpcd call getlanguage)",
       R"({"type":"getlanguage","language":"en"})"},
      {R"(printf '{"status":"1' | zelto rpcd call sethwnat)", R"({"type":"sethwnat","result":1})"},
      {R"(printf '[]' | zelto rpcd call sethwnat)", R"({"type":"sethwnat","result":1})"},
      {R"(printf '{}' | zelto rpcd call 'no"such')", R"({"result":6})"},
  };
  for (const auto& [command, reply] : cases) {
    EXPECT_EQ(run(command), (Outcome{0, reply + "\n"})) << command;
  }
  EXPECT_EQ(run("zelto rpcd call").status, 2);
}

TEST_F(Zelto, HelpsItself) {
  const auto [status, output] = run("zelto --help");
  EXPECT_EQ(status, 0);
  EXPECT_THAT(output, HasSubstr("zelto setlancfg lanip=192.168.20.1"));
  EXPECT_EQ(run("zelto --version"), (Outcome{0, "zelto " ZELTO_VERSION "\n"}));
}

}  // namespace

int main(int argc, char** argv) {
  testing::InitGoogleMock(&argc, argv);
  if (GTEST_FLAG_GET(list_tests)) return RUN_ALL_TESTS();
  board::Options options;
  options.programs = {ZELTO_PROGRAM};
  return board::run(options, [] { return RUN_ALL_TESTS(); });
}

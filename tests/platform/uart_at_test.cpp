#include "platform/uart_at.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <poll.h>
#include <stdlib.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <functional>
#include <string>
#include <string_view>
#include <thread>
#include <utility>
#include <vector>

#include "board/board.h"
#include "platform/uart/answer.h"

namespace {

using std::chrono::milliseconds;
using testing::ElementsAre;
using testing::IsEmpty;

struct Exchange {
  const char* command;
  const char* prefix;
  std::string bytes;
  const char* reply;  // null: the answer is not complete
};

TEST(Answer, IsTheLinesUpToTheFinalResult) {
  const Exchange kCases[] = {
      {"AT+CPIN?", "+CPIN:", "\r\n+CPIN: READY\r\n\r\nOK\r\n", "+CPIN: READY\r\nOK\r\n"},
      {"AT+CIMI", "", "AT+CIMI\r\r\n460010123456789\r\n\r\nOK\r\n", "460010123456789\r\nOK\r\n"},
      {"AT+CPIN?", "", "\r\n+CME ERROR: 10\r\n", "+CME ERROR: 10\r\n"},
      {"AT+CMGS=1", "", "+CMS ERROR: 500\r", "+CMS ERROR: 500\r\n"},
      {"AT+CSQ", "+CSQ:", "\r\nERROR\r\n", ""},
      {"ATD1;", "", "NO CARRIER\r\n", "NO CARRIER\r\n"},
      {"ATI", "", "OKAY\nNOT OK\n+GCAP: +CGSM\nOK\nlate\n",
       "OKAY\r\nNOT OK\r\n+GCAP: +CGSM\r\nOK\r\n"},
      // An unended line is no final result yet.
      {"AT", "", "\r\nOK", nullptr},
      {"AT+CPIN?", "", "\r\n+CPIN: READY\r\n", nullptr},
      // A prefix within a line, and one that the echo alone holds.
      {"AT+QENG=\"servingcell\"", "LTE",
       "AT+QENG=\"servingcell\"\r\r\n+QENG: \"servingcell\",\"NOCONN\",\"LTE\",\"FDD\"\r\nOK\r\n",
       "LTE\",\"FDD\"\r\nOK\r\n"},
      {"AT+COPS?", "AT+COPS?", "AT+COPS?\r\n+COPS: 0\r\nOK\r\n", ""},
      // Told unasked, and not: the asked command's own, one begun by the prefix, a basic command.
      {"AT+CIMI", "", "RING\r\n+CREG: 1\r\n460\r\n^RSSI:20\r\nOK\r\n", "460\r\nOK\r\n"},
      {"AT+QENG=1", "LTE", "^MODE: LTE\r\n+QENG: LTE,1\r\nOK\r\n", "LTE,1\r\nOK\r\n"},
      {"at+creg?;+csq", "", "+CREG: 0,1\r\n+CEREG: 1\r\n+CSQ: 9,9\r\nOK\r\n",
       "+CREG: 0,1\r\n+CSQ: 9,9\r\nOK\r\n"},
      {"AT+CCID", "+ICCID:", "+ICCID: 89\r\nOK\r\n", "+ICCID: 89\r\nOK\r\n"},
      {"AT+CIMI", "", "+CMT: ,5\r\nOK\r\n460\r\nOK\r\n", "460\r\nOK\r\n"},
      {"ATI", "", "Maker\r\n+CBM: 5\r\nOK\r\nRevision: 1\r\nOK\r\n",
       "Maker\r\nRevision: 1\r\nOK\r\n"},
      {"AT+CIMI", "", std::string("46\0001\r\n\xff+x\r\nOK\r\n", 14), "461\r\n\xff+x\r\nOK\r\n"},
  };
  for (const Exchange& each : kCases) {
    uartat::Answer whole(each.command, each.prefix);
    const bool complete = whole.take(each.bytes);
    EXPECT_EQ(complete, each.reply != nullptr) << each.bytes;
    if (each.reply != nullptr) {
      EXPECT_EQ(uartat::from_prefix(whole.text(), each.prefix), each.reply);
    }
    uartat::Answer bytewise(each.command, each.prefix);
    for (const char& c : each.bytes) bytewise.take({&c, 1});
    EXPECT_EQ(bytewise.text(), whole.text());
  }
}

TEST(Answer, StaysBoundedAndStillFindsTheEnd) {
  uartat::Answer answer("AT+CIMI", "");
  for (int i = 0; i < 200; ++i) EXPECT_FALSE(answer.take(std::string(5000, 'x')));
  for (int i = 0; i < 200; ++i) EXPECT_FALSE(answer.take("\r\n" + std::string(5000, 'y')));
  EXPECT_TRUE(answer.take("\r\nOK\r\n"));
  EXPECT_LT(answer.text().size(), 100'000u);
}

// A modem on a pseudo-terminal: answers each command line with the pieces that `script` gives.
class Modem {
 public:
  using Script = std::function<std::vector<std::string>(const std::string& command)>;
  static constexpr char kHangUp[] = "(hang up)";

  explicit Modem(Script script)
      : script_(std::move(script)),
        master_(posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC | O_NONBLOCK)) {
    EXPECT_GE(master_, 0);
    EXPECT_EQ(grantpt(master_), 0);
    EXPECT_EQ(unlockpt(master_), 0);
    std::array<char, 64> name{};
    EXPECT_EQ(ptsname_r(master_, name.data(), name.size()), 0);
    // Keeps the line up between two commands.
    line_ = open(name.data(), O_RDWR | O_NOCTTY | O_CLOEXEC);
    EXPECT_GE(line_, 0);
    use_port(name.data());
    talk_ = std::jthread([this](const std::stop_token& stop) { talk(stop); });
  }

  ~Modem() {
    talk_.request_stop();
    talk_.join();
    if (master_ >= 0) close(master_);
    close(line_);
  }

  static void use_port(const std::string& path) {
    board::write_file("/etc/config/mobile",
                      "config mobile 'global'\n\toption port '" + path + "'\n");
  }

 private:
  void talk(const std::stop_token& stop) {
    std::string command;
    while (!stop.stop_requested()) {
      pollfd waited{.fd = master_, .events = POLLIN, .revents = 0};
      char c = 0;
      if (poll(&waited, 1, 10) <= 0 || read(master_, &c, 1) != 1) continue;
      if (c != '\r') {
        command += c;
      } else if (!answer(std::exchange(command, {}), stop)) {
        return;
      }
    }
  }

  bool answer(const std::string& command, const std::stop_token& stop) {
    for (std::string_view piece : script_(command)) {
      if (piece == kHangUp) {
        close(std::exchange(master_, -1));
        return false;
      }
      while (!piece.empty() && !stop.stop_requested()) {
        const ssize_t count = write(master_, piece.data(), piece.size());
        if (count > 0) piece.remove_prefix(static_cast<size_t>(count));
        if (count < 0) std::this_thread::sleep_for(milliseconds(1));
      }
      std::this_thread::sleep_for(milliseconds(5));
    }
    return true;
  }

  Script script_;
  int master_ = -1;
  int line_ = -1;
  std::jthread talk_;
};

class UartAt : public testing::Test {
 protected:
  void SetUp() override { board::reset(); }
};

struct Reply {
  int status;
  std::string text;
  milliseconds took;
};

Reply ask(const char* command, const char* prefix) {
  const auto begin = std::chrono::steady_clock::now();
  // On the heap, so that a sanitizer sees the first byte beyond it.
  std::vector<char> reply(UART_AT_REPLY_SIZE, '~');
  const int status = get_uart_ATCMD_result(command, prefix, reply.data());
  const auto took = std::chrono::steady_clock::now() - begin;
  return {status, std::string(reply.data()), std::chrono::duration_cast<milliseconds>(took)};
}

TEST_F(UartAt, TalksToAModem) {
  const std::string garbage(200'000, '\xfe');
  Modem modem([&](const std::string& command) -> std::vector<std::string> {
    if (command == "AT+CPIN?") return {"AT+CPIN?\r", "\r\n+CP", "IN: READY\r\n\r", "\nOK\r\n"};
    if (command == "AT+CIMI") return {"\r\n+CREG: 5\r\n", "46001\r\n", "^RSSI:9\r\n\r\nOK\r\n"};
    if (command == "AT+GARBAGE") return {garbage, "\r\n", garbage, "\r\nOK\r\n"};
    // More than a terminal's own buffer holds.
    if (command == "AT+LATE") return {"OK\r\n", std::string(30'000, 'x') + "\r\nOK\r\n"};
    return {"ERROR\r\n"};
  });
  const struct {
    const char* command;
    const char* prefix;
    std::string reply;
  } kCases[] = {
      {"AT+CPIN?", "+CPIN:", "+CPIN: READY\r\nOK\r\n"},
      {"AT+CIMI", nullptr, "46001\r\nOK\r\n"},
      {"AT+GARBAGE", nullptr, std::string(UART_AT_REPLY_SIZE - 1, '\xfe')},
      {"AT+LATE", nullptr, "OK\r\n"},
      {"AT+CIMI", "", "46001\r\nOK\r\n"},
      {"AT+NONE", "+NONE:", ""},
      {"AT+NONE", nullptr, "ERROR\r\n"},
  };
  for (const auto& each : kCases) {
    const Reply reply = ask(each.command, each.prefix);
    EXPECT_EQ(reply.status, 0) << each.command;
    EXPECT_EQ(reply.text, each.reply) << each.command;
    // Time for what comes behind the answer; the next command must not take it for its own.
    std::this_thread::sleep_for(milliseconds(20));
  }
  EXPECT_THAT(board::journal(),
              ElementsAre("modem AT+CPIN?", "modem AT+CIMI", "modem AT+GARBAGE", "modem AT+LATE",
                          "modem AT+CIMI", "modem AT+NONE", "modem AT+NONE"));
}

TEST_F(UartAt, SilentModemEndsInATimeout) {
  Modem modem([](const std::string&) -> std::vector<std::string> { return {"+CPIN: READY\r\n"}; });
  const Reply reply = ask("AT+CPIN?", "+CPIN:");
  EXPECT_EQ(reply.status, -1);
  EXPECT_EQ(reply.text, "");
  EXPECT_GE(reply.took, milliseconds(3000));
  EXPECT_LT(reply.took, milliseconds(4500));
}

TEST_F(UartAt, LostModemGivesAnEmptyReplyAtOnce) {
  Modem modem([](const std::string&) -> std::vector<std::string> {
    return {"\r\n+CPIN: REA", Modem::kHangUp};
  });
  for (int i = 0; i < 2; ++i) {
    const Reply reply = ask("AT+CPIN?", nullptr);
    EXPECT_EQ(reply.status, -1);
    EXPECT_EQ(reply.text, "");
    EXPECT_LT(reply.took, milliseconds(2000));
  }
}

TEST_F(UartAt, RefusesWhatCannotBeAsked) {
  {
    Modem modem([](const std::string&) -> std::vector<std::string> { return {"OK\r\n"}; });
    for (const char* command : {"", "AT\rATD1;", "AT\nATD1;", "AT\x1a"}) {
      EXPECT_EQ(ask(command, nullptr).text, "");
      EXPECT_EQ(ask(command, nullptr).status, -1);
    }
    EXPECT_EQ(ask(nullptr, nullptr).status, -1);
    EXPECT_EQ(get_uart_ATCMD_result("AT", nullptr, nullptr), -1);
  }
  // The first port went with its modem; the others are no serial lines.
  EXPECT_EQ(ask("AT", nullptr).status, -1);
  for (const char* port : {"/etc/passwd", "/dev/null", "/tmp"}) {
    Modem::use_port(port);
    EXPECT_EQ(ask("AT", nullptr).status, -1);
  }
  EXPECT_THAT(board::journal(), IsEmpty());
}

TEST_F(UartAt, CallersTakeTurns) {
  Modem modem([](const std::string& command) -> std::vector<std::string> {
    return {command + "\r", "\r\n" + command.substr(5), "\r\nOK\r\n"};
  });
  const auto caller = [](int first) {
    for (int i = first; i < first + 8; ++i) {
      const std::string number = std::to_string(i);
      EXPECT_EQ(ask(("AT+N=" + number).c_str(), nullptr).text, number + "\r\nOK\r\n");
    }
  };
  std::jthread one(caller, 100);
  std::jthread two(caller, 200);
  std::jthread three(caller, 300);
}

}  // namespace

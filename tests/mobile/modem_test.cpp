// What the modem says: SIM, operator, technology and signal, of good modems and bad ones.

#include "board/modem.h"

#include <zelto/mobile.h>

#include "mobile/answers.h"
#include "support/effects.h"
#include "support/router_test.h"

namespace zelto_test {
namespace {

using testing::ElementsAre;

class Modem : public RouterTest {
 protected:
  // A modem like the one of profile `base`, but for what `changes` say.
  static void plug(const std::string& changes, const std::string& base = "lte") {
    board::plug_modem("like " + base + "\n" + changes + "\n");
  }
  static std::string status(const std::string& sim, const std::string& service,
                            const std::string& network, const std::string& bars) {
    return R"({"type":"get4gbasicinfo","simcardstatus":")" + sim + R"(","serviceinfo":")" +
           service + R"(","nettype":")" + network + R"(","rssi":")" + bars + R"("})";
  }
  static std::string ask_status() { return ask(R"({"type":"get4gbasicinfo"})"); }
};

// What lies behind the buffers of a caller shows what is written there.
struct Info {
  std::string signal = std::string(80, '~');
  std::string name = std::string(80, '~');
  std::string technology = std::string(28, '~');
  int status = getmobilebasicinfo(signal.data(), name.data(), technology.data());

  std::string behind() const { return signal.substr(64) + name.substr(64) + technology.substr(12); }
};

std::string network(const std::string& technology) {
  return "AT+COPS?\n  +COPS: 0,0,\"x\"," + technology + "\n";
}
std::string quality(const std::string& powers) {
  return "AT+CESQ\n  +CESQ: 99,99,255,255,20," + powers;
}
std::string cell(const std::string& lines) {
  return "AT+QENG=\"SERVINGCELL\"\n  +QENG: \"servingcell\",\"NOCONN\"" + lines;
}
std::string lte(const std::string& power) {
  return cell(R"(,"LTE","FDD",460,01,1,2,3,4,5,5,DE10,)" + power + ",-11,-65");
}
std::string both(const std::string& name) {
  return cell("\n  +QENG: \"LTE\",\"FDD\",460,01,1,2,3,4,5,5,DE10,-88,-11\n  +QENG: \"" + name +
              "\",460,01,612,-96,22,-11,627264,78");
}

TEST_F(Modem, SignalIsWhereItsKindAndTechnologyTellIt) {
  const struct {
    std::string kind;
    std::string profile;
    const char* technology;
    const char* signal;
    std::string network;
    std::string bars;
  } cases[] = {
      {"2", network("7") + quality("40"), "7", "100", "4G", "2"},
      {"2", network("11") + quality("255,65,72,60"), "11", "84", "5G", "4"},
      {"3", network("13") + quality("54,65,60,60"), "13", "96", "5G", "2"},
      {"1", "AT+COPS?\n  +COPS: 0\n" + quality("108,255,255,255"), "", "32", "unknow", "1"},
      {"3", network("7") + "AT+CESQ\n  +CESQ: 99,99,,255,20,40", "7", "140", "4G", "1"},
      {"1", network("7") + quality("255"), "7", "-115", "4G", "5"},
      {"4", network("7") + lte("-95"), "7", "95", "4G", "3"},
      {"5", network("7777777777777") + lte("-106"), "77777777777", "106", "4G", "1"},
      {"4", network("7") + lte("5"), "7", "-5", "4G", "5"},
      {"4", network("7") + cell(R"(,"SEARCH")"), "7", "0", "4G", "5"},
      {"4", network("13") + both("NR5G-NSA"), "13", "88", "5G", "3"},
      {"5", network("13") + both("NR5G"), "13", "0", "5G", "5"},
      {"5", network("11") + cell(R"(,"NR5G-SA","TDD",460,01,1,2,3,4,78,12,-105,-11)"), "11", "105",
       "5G", "2"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.kind + " " + c.profile);
    plug("kind " + c.kind + "\n" + c.profile);
    const Info info;
    EXPECT_EQ(info.status, 0);
    EXPECT_STREQ(info.signal.c_str(), c.signal);
    EXPECT_STREQ(info.technology.c_str(), c.technology);
    EXPECT_STREQ(info.name.c_str(), "CHN-UNICOM");
    EXPECT_EQ(info.behind(), std::string(48, '~'));
    EXPECT_EQ(ask_status(), status("1", "UNICOM", c.network, c.bars));
  }
  for (const auto& [signal, bars] : std::initializer_list<std::pair<int, const char*>>{
           {31, "5"}, {33, "4"}, {85, "4"}, {86, "3"}, {95, "3"}, {96, "2"}, {105, "2"}}) {
    EXPECT_STREQ(zelto::mobile::bars(signal), bars) << signal;
  }
}

TEST_F(Modem, IsAskedWhatItsKindNeeds) {
  const Lines quality{"AT+CIMI", "AT+CESQ", "AT+COPS?"};
  const Lines cell{"AT+CIMI", "AT+COPS?", "AT+QENG=\"SERVINGCELL\""};
  const std::pair<std::optional<std::string>, Lines> cases[] = {
      {"1\n", quality}, {" 2x", quality}, {"3", quality}, {"4", cell}, {"5\n\n", cell},
      {"0", {}},        {"12", {}},       {"-1", {}},     {"x", {}},   {{}, {}}};
  board::plug_modem("nsa");
  for (const auto& [kind, asked] : cases) {
    SCOPED_TRACE(kind.value_or("none"));
    board::remove_file("/tmp/mob_type");
    if (kind) board::write_file("/tmp/mob_type", *kind);
    board::write_file("/tmp/online_file", "online");
    board::clear_journal();
    board::write_file("/var/log/modem.log", "");
    EXPECT_EQ(ask_status() == status("1", "unknow", "unknow", "5"), asked.empty());
    Lines effects{R"(run cat /tmp/mob_type | tr -d '\\n')"};
    for (const auto& command : asked) effects.push_back("modem " + command);
    EXPECT_EQ(board::journal(), effects);
    EXPECT_EQ(board::modem_commands(), asked);
  }
}

TEST_F(Modem, SimAndOperatorAreTold) {
  const struct {
    const char* sim;
    const char* identity;
    const char* ready;
    const char* service;
  } cases[] = {
      {"+CPIN: READY", "460011234567890", "1", "UNICOM"},
      {"+CPIN: SIM PIN", "460001234567890", "0", "CMCC"},
      {"+CME ERROR: 10", "+CME ERROR: 10", "0", "unknow"},
      {"READY", "505021234567891", "0", "Optus"},
      {"OK", "999991111111111", "0", "unknow"},
      {"ERROR", "46001\n  ERROR", "0", "unknow"},
  };
  for (const auto& c : cases) {
    plug("AT+CPIN?\n  " + std::string(c.sim) + "\nAT+CIMI\n  " + c.identity);
    EXPECT_EQ(ask_status(), status(c.ready, c.service, "4G", "3")) << c.sim << c.identity;
  }
  EXPECT_EQ(zelto::mobile::service_name("CHN"), "UNICOM");
  EXPECT_EQ(zelto::mobile::service_name("CHN-C"), "CTNET");
  EXPECT_EQ(zelto::mobile::service_name("CHN-CT 2"), "CHN-CT 2");
}

TEST_F(Modem, BadOnesLeaveTheDefaults) {
  const struct {
    std::string base;
    std::string changes;
    std::string reply;
  } cases[] = {
      {"nosim", "", status("0", "unknow", "unknow", "5")},
      {"chatty", "", status("1", "UNICOM", "4G", "3")},
      {"slow", "", status("1", "UNICOM", "4G", "3")},
      {"garbled", "", status("0", "unknow", "4G", "5")},
      {"lte", "mute 3", status("1", "UNICOM", "4G", "5")},
      {"lte", "AT+CIMI\n  !bytes \\r\\n46001\n  !hangup", status("1", "unknow", "unknow", "5")},
      {"lte", "AT+CIMI\n  !bytes \\r\\n46001\n  !replug", status("1", "unknow", "4G", "3")},
      {"lte", "AT+CIMI\n  !fill 9000 460,01\\r\\n", status("1", "unknow", "4G", "3")},
      {"lte", lte("-99999999999999999999"), status("1", "UNICOM", "4G", "1")},
  };
  for (const auto& c : cases) {
    plug(c.changes, c.base);
    EXPECT_EQ(ask_status(), c.reply) << c.base << c.changes;
  }
}

TEST_F(Modem, IsThereWhileItsDeviceIs) {
  const auto there = [] {
    return call(bs_Get_4Gmodule_status, R"({"type":"get4gmodulestatus"})").reply;
  };
  board::plug_modem("silent");
  EXPECT_EQ(there(), R"({"type":"get4gmodulestatus","module_4Gstatus":"1"})");
  given("mobile", "global", "port", "/dev/ttyUSB2");
  plug("port /dev/ttyUSB2\nkind 9");
  EXPECT_EQ(there(), R"({"type":"get4gmodulestatus","module_4Gstatus":"0"})");
  EXPECT_EQ(ask_status(), status("1", "unknow", "unknow", "5"));
  EXPECT_THAT(board::modem_commands(), ElementsAre("AT+CPIN?"));
}

}  // namespace
}  // namespace zelto_test

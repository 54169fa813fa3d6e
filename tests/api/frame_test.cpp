// The dispatcher, the command table and the envelope that every handler keeps.

#include <set>

#include <zelto/network.h>
#include <zelto/system.h>

#include "support/router_test.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using zelto_test::ask;
using zelto_test::call;

class Frame : public zelto_test::RouterTest {};

TEST_F(Frame, Dispatches) {
  const std::string long_name(300, 'x');
  const struct {
    const char* what;
    std::string request;
    int status;
    std::string reply;
  } cases[] = {
      {"alive", R"({"type":"getheartbeat"})", 0, R"({"type":"getheartbeat","result":9})"},
      {"members beside it", R"({"a":[1,{}],"type":"getheartbeat","b":null})", 0,
       R"({"type":"getheartbeat","result":9})"},
      {"unknown", R"({"type":"nosuchcmd"})", 0, R"({"type":"nosuchcmd","result":6})"},
      {"other capitals", R"({"type":"GetHeartBeat"})", 0, R"({"type":"GetHeartBeat","result":6})"},
      {"beginning of a name", R"({"type":"getheart"})", 0, R"({"type":"getheart","result":6})"},
      {"empty name", R"({"type":""})", 0, R"({"type":"","result":6})"},
      {"no escapes in the echo", R"({"type":"a\"b%s%n"})", 0, R"({"type":"a"b%s%n","result":6})"},
      {"long name cut", R"({"type":")" + long_name + "\"}", 0,
       R"({"type":")" + long_name.substr(0, 255) + R"(","result":6})"},
      {"no type", R"({"typ":"getheartbeat"})", -1, R"({"result":7})"},
      {"type no text", R"({"type":9})", -1, R"({"result":7})"},
      {"no object", "[]", -1, R"({"result":7})"},
      {"not JSON", "{type}", -1, "untouched"},
      {"empty", "", -1, "untouched"},
      {"deep nesting", std::string(100000, '['), -1, "untouched"},
  };
  for (const auto& c : cases) {
    const auto answer = call(share_func, c.request.c_str());
    EXPECT_EQ(answer.status, c.status) << c.what;
    EXPECT_EQ(answer.reply, c.reply) << c.what;
  }
  EXPECT_EQ(share_func(R"({"type":"getheartbeat"})", nullptr), -1);
  EXPECT_EQ(call(share_func, nullptr).reply, "untouched");
}

TEST_F(Frame, WalksTheTableAsItStands) {
  std::set<std::string> names;
  for (const auto& row : zelto_handle) names.insert(row.name);
  EXPECT_EQ(names.size(), std::size_t{ZELTO_COMMAND_COUNT});
  EXPECT_STREQ(zelto_handle[0].name, "loginauth");
  EXPECT_STREQ(zelto_handle[ZELTO_COMMAND_COUNT - 1].name, "periodic_restart_apply");

  const CommandEntry last = zelto_handle[ZELTO_COMMAND_COUNT - 1];
  auto& row = zelto_handle[ZELTO_COMMAND_COUNT - 1];
  row = {"", bs_GetHeartBeat};
  std::fill(std::begin(row.name), std::end(row.name), 'n');  // a full name has no NUL
  EXPECT_EQ(ask(R"({"type":")" + std::string(64, 'n') + "\"}"),
            R"({"type":"getheartbeat","result":1})");
  row = {"silent", [](const char*, char*) { return -1; }};
  EXPECT_EQ(ask(R"({"type":"silent"})"), "");
  row = {"silent", nullptr};
  EXPECT_EQ(ask(R"({"type":"silent"})"), R"({"type":"silent","result":6})");
  row = {"getheartbeat", nullptr};  // an earlier row of the same name wins
  EXPECT_EQ(ask(R"({"type":"getheartbeat"})"), R"({"type":"getheartbeat","result":9})");
  row = last;
}

// Each live handler: its name, and what it does with a text that is not JSON.
const struct {
  const char* type;
  CommandHandler handler;
  int unparsed_status;
} kHandlers[] = {
    {"loginauth", bs_loginauth, 0},        {"getrouterinfo", bs_GetRouteInfo, -1},
    {"getheartbeat", bs_GetHeartBeat, -1}, {"getlanguage", bs_getLanguage_info, -1},
    {"getwancfg", bs_GetWanCfg, 0},        {"setwancfg", bs_SetWanCfg, 0},
    {"getwaninfo", bs_GetWanInfo, 0},      {"getwanmode", bs_GetWanMode, 0},
    {"getlancfg", bs_GetLanCfg, 0},        {"gethostinfo", bs_GetHostInfo, -1},
};

TEST_F(Frame, EveryHandlerRefusesAWrongTypeAndTouchesNothing) {
  for (const auto& handler : kHandlers) {
    const std::string failure = std::string(R"({"type":")") + handler.type + R"(","result":1})";
    for (const char* request :
         {R"({"type":"other","wanmode":"dhcp"})", "{}", "[]", R"({"type":1})"}) {
      const auto answer = call(handler.handler, request);
      EXPECT_EQ(answer.status, 0) << handler.type;
      EXPECT_EQ(answer.reply, failure) << handler.type;
    }
  }
  EXPECT_THAT(board::journal(), IsEmpty());
  EXPECT_THAT(board::log(), IsEmpty());
}

TEST_F(Frame, EveryHandlerLeavesTheBufferWhenTheRequestIsNoJson) {
  for (const auto& handler : kHandlers) {
    const auto answer = call(handler.handler, "{");
    EXPECT_EQ(answer.status, handler.unparsed_status) << handler.type;
    EXPECT_EQ(answer.reply, "untouched") << handler.type;
  }
  EXPECT_THAT(board::log(), testing::SizeIs(std::size(kHandlers) - 1));
  EXPECT_THAT(board::log(), testing::Each("<3>json data is NULL!"));
  EXPECT_THAT(board::console(),
              testing::MatchesRegex("zeltoapi.c:bs_GetHostInfo:[0-9]+:json data is NULL!\n\n"));
  EXPECT_THAT(board::journal(), IsEmpty());
}

TEST_F(Frame, AReplyThatCannotBeUtf8IsRepairedAndOneTooLongFails) {
  board::write_file("/etc/FW-Version", "R1\xff\xc3(\xe2\x82\xac\xed\xa0\x80\n");
  EXPECT_THAT(ask(R"({"type":"gethostinfo"})"),
              testing::HasSubstr("\"hostmodel\":\"R1\xEF\xBF\xBD\xEF\xBF\xBD(\xe2\x82\xac"
                                 "\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD\""));

  const std::string name(16500, 'y');
  EXPECT_EQ(call(bs_GetSysTimeInfo, (R"({"type":")" + name + "\"}").c_str()).reply,
            R"({"type":"getsystimeinfo","result":1})");
  EXPECT_THAT(board::log(), ElementsAre("<3>the reply of getsystimeinfo is too long!"));
}

}  // namespace

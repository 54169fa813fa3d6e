// What all lists share.

#include <unistd.h>

#include <zelto/access.h>
#include <zelto/network.h>
#include <zelto/services.h>

#include "access/access_test.h"

namespace zelto_test {
namespace {

using ListFiles = AccessTest;

TEST_F(ListFiles, RequestsOfAnotherTypeOrOfNone) {
  const std::string answers = "<3>json is NULL";
  const std::string changes = "<3>json data is NULL!";
  const struct {
    CommandHandler handler;
    std::string log;
    std::string refused;  // what {"type":"x"} is answered
  } cases[] = {
      {bs_GetTerminalList, answers, R"({"type":"getterminallist","ver":"2","result":1})"},
      {bs_ClientNum_info, changes, result("getclientnum", 1)},
      {bs_GetWiFiStaInfo, changes, result("x", 1)},
      {bs_GetCurStaInfo, changes, result("x", 1)},
      {bs_GetParentalInfo, answers, result("getparentalinfo", 1)},
      {bs_SetParentalInfo, changes, result("setparentalinfo", 1)},
      {bs_SetParentalSwitch, changes, result("setparentalswitch", 1)},
      {bs_GetBlackList, answers, result("getblacklist", 1)},
      {bs_SetMacBlack, changes, result("setmacblack", 1)},
      {bs_SetAlias, changes, result("setalias", 1)},
      {bs_GetForwardingInfo, answers, result("getforwarding", 1)},
      {bs_SetForwardingInfo, changes, result("setforwarding", 1)},
      {bs_GetQosInfo, changes, result("getqos", 1)},
      {bs_SetQosInfo, changes, result("setqos", 1)},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(call(c.handler, R"({"type":"x","MAC":"ALL","enable":"0"})").reply, c.refused);
    EXPECT_EQ(call(c.handler, "{").status, -1) << c.refused;
    EXPECT_EQ(call(c.handler, nullptr).reply, "untouched");
    EXPECT_EQ(board::log().back(), c.log) << c.refused;
  }
}

TEST_F(ListFiles, WhatCannotBeWrittenIsTold) {
  const struct {
    std::string list;
    std::string before;
    std::string request;
    int (*remove)(const char*);
    const char* name;
  } cases[] = {
      {"mac_alias_list", "02:BB:00:00:00:01 b\n02:AA:00:00:00:03 old",
       command("setalias", R"("mac":"02:AA:00:00:00:03","alias":"new")"), alias_name_del,
       "02:AA:00:00:00:03"},
      {"parental_list", "YQ== dev m 1-2 7\nYg==  dev m 1-2 7\n",
       command("setparentalinfo", R"("cfg_type":"add","alias":"new","alias_old":"a","mac":"M",)"
                                  R"("accesstime":"1-2","day":"7")"),
       parental_name_del, "YQ=="},
      {"port_forward_list", "YQ== all;1 2 TCP\nYg== all;3 4 TCP",
       command("setforwarding", R"("enable":1,"name":"a","ip":"all","list0":"1,2,TCP")"),
       forward_name_del, "YQ=="},
  };
  for (const auto& c : cases) {
    board::reset();
    given_section("redirect", "redirect0", {{"name", "YQ=="}});
    const auto path = "/etc/" + c.list;
    const auto type = c.request.substr(9, c.request.find('"', 9) - 9);
    board::write_file(path, c.before);
    {
      const FullTmp full;
      EXPECT_EQ(ask(c.request), result(type, 1));
      EXPECT_EQ(c.remove(c.name), 0);
    }
    EXPECT_EQ(board::read_file(path), c.before);
    EXPECT_THAT(effects(), IsEmpty());
    const auto work_file = "<3>fopen /tmp/" + c.list + " for del error!";
    EXPECT_THAT(board::log(), ElementsAre(work_file, work_file));

    board::remove_file(path);
    EXPECT_EQ(c.remove(c.name), 0);
    EXPECT_EQ(board::log().back(), "<3>fopen " + path + " for del error!");
    ASSERT_EQ(symlink("/nowhere/list", path.c_str()), 0);
    EXPECT_EQ(ask(c.request), result(type, 1));
    EXPECT_EQ(board::log().back(), "<3>fopen " + path + " for add error!");
    EXPECT_THAT(effects(), testing::Not(testing::Contains(HasSubstr("restart"))));
    board::remove_file(path);
    EXPECT_EQ(ask(c.request), result(type, 0)) << "a missing list is made";
    EXPECT_NE(board::read_file(path), "");
  }
}

}  // namespace
}  // namespace zelto_test

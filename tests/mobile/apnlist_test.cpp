// The table of access points and the operator that a SIM gets by it.

#include <gmock/gmock.h>

#include <cstring>
#include <map>
#include <set>
#include <string>

#include <zelto/mobile.h>

#include "api/text.h"
#include "mobile/apn_lookup.h"

namespace {

using testing::Contains;
using zelto::mobile::operator_of;
using zelto::text::in_buffer;

std::string identity(const std::string& digits) {
  return "\r\n" + digits + "\r\n\r\nOK\r\n";
}

TEST(ApnList, BeginsWithTheRowsThatOthersCountOn) {
  const ApnEntry leading[] = {
      {"China", "CHINA MOBILE", "cmnet", "46000"}, {"China", "CHINA MOBILE", "cmnet", "46002"},
      {"China", "CHN-UNICOM", "uninet", "46001"},  {"China", "CHN-CT", "ctnet", "46003"},
      {"China", "CHN-CT", "ctnet", "46011"},       {"null", "CMNET", "cmnet", "46000"},
      {"null", "China Unicom", "3gnet", "46001"},
  };
  EXPECT_EQ(std::memcmp(apnlist, leading, sizeof leading), 0);
}

TEST(ApnList, HasReadableRowsGroupedByCountry) {
  std::set<std::string> countries;
  std::string country;
  for (const auto& row : apnlist) {
    SCOPED_TRACE(row.mccmnc);
    for (const auto text : {in_buffer(row.country), in_buffer(row.operator_name),
                            in_buffer(row.apn), in_buffer(row.mccmnc)}) {
      EXPECT_FALSE(text.empty());
      EXPECT_EQ(zelto::text::to_utf8(text), text);
    }
    const auto code = in_buffer(row.mccmnc);
    EXPECT_TRUE(code.size() == 5 || code.size() == 6);
    EXPECT_EQ(code.find_first_not_of("0123456789"), std::string_view::npos);
    if (country == row.country) continue;
    country = row.country;
    EXPECT_TRUE(countries.insert(country).second);
  }
}

// Digits behind a code may themselves hold a code that stands earlier; ten kinds of them cannot
// all.
TEST(ApnList, HidesNoCodeBehindAnother) {
  std::map<std::string, std::string> first_operators;
  for (const auto& row : apnlist) first_operators.emplace(row.mccmnc, row.operator_name);
  for (const auto& [code, name] : first_operators) {
    const auto named = [&code = code, &name = name](char digit) {
      return operator_of(identity(code + std::string(15 - code.size(), digit))) == name;
    };
    EXPECT_THAT(std::string("0123456789"), Contains(testing::Truly(named))) << code;
  }
}

TEST(ApnList, NamesTheOperatorOfASim) {
  const struct {
    std::string reply;
    std::string_view name;
  } sims[] = {
      {"AT+CIMI\r\r\n460011234567890\r\n\r\nOK\r\n", "CHN-UNICOM"},
      {identity("460110123456789"), "CHN-CT"},
      {identity("722340111111111"), "Arnet"},  // 72234 is Personal
      {identity("722345111111111"), "Personal"},
      {identity("204045312345678"), "Vodafone"},  // 40453 is a network in India
      {identity("440400123456789"), "Softbank Mobile"},
      {identity("505021234567891"), "Optus"},  // its network is rented by fifteen others
      {identity("999991111111111"), ""},
      {"\r\nERROR\r\n", ""},
      {"", ""},
  };
  for (const auto& sim : sims) EXPECT_EQ(operator_of(sim.reply), sim.name) << sim.reply;
}

}  // namespace

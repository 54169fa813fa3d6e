// Friendly names of devices.

#include <zelto/access.h>

#include "access/access_test.h"

namespace zelto_test {
namespace {

constexpr const char* kList = "/etc/mac_alias_list";
constexpr const char* kMove = "run mv /tmp/mac_alias_list /etc/mac_alias_list";

class Aliases : public AccessTest {
 protected:
  static std::string set(const std::string& mac, const std::string& alias) {
    return ask(command("setalias", R"("mac":")" + mac + R"(","alias":")" + alias + "\""));
  }
};

TEST_F(Aliases, ReplacesADevicesLine) {
  const struct {
    const char* before;
    std::string alias;
    const char* after;
  } cases[] = {
      {"", "tablet", "02:AA:00:00:00:03 tablet\n"},
      {"02:AA:00:00:00:03 old\n02:AA:00:00:00:3 short\n02:BB:00:00:00:01 b  c\n",
       "kitchen  tablet; $(x) 'q'",
       "02:AA:00:00:00:3 short\n02:BB:00:00:00:01 b  c\n"
       "02:AA:00:00:00:03 kitchen  tablet; $(x) 'q'\n"},
      {"02:AA:00:00:00:0 \n02:aa:00:00:00:03 case\n02:AA:00:00:00:033 x\nshort line 123456", "",
       "02:AA:00:00:00:0 \n02:aa:00:00:00:03 case\n02:AA:00:00:00:033 x\nshort line 123456\n"
       "02:AA:00:00:00:03 \n"},
      {"1234567890 2345\n1234567890 23456\n02:AA:00:00:00:03", "x",
       "1234567890 23456\n02:AA:00:00:00:03 x\n"},
  };
  for (const auto& c : cases) {
    board::write_file(kList, c.before);
    EXPECT_EQ(set("02:AA:00:00:00:03", c.alias), result("setalias", 0));
    EXPECT_EQ(board::read_file(kList), c.after);
    EXPECT_THAT(effects(), ElementsAre(kMove));
  }
  EXPECT_EQ(alias_name_del("02:AA:00:00:00:03"), 1);
  EXPECT_EQ(board::read_file(kList), "1234567890 23456\n");
}

TEST_F(Aliases, RefusesWhatItsReaderCouldNotReadBack) {
  board::write_file(kList, "02:AA:00:00:00:03 old\n");
  const std::string mac = R"("mac":"02:AA:00:00:00:03")";
  expect_refused(
      "setalias", kList,
      {mac, R"("alias":"x")", mac + R"(,"alias":1)", mac + R"(,"alias":"a\nb")",
       mac + R"(,"alias":"a\rb")", R"("mac":"","alias":"twenty characters at least")",
       R"("mac":"02:AA:00:00 0:03","alias":"x")", R"("mac":"02:AA:00:00:00\n:03","alias":"x")",
       R"("mac":"02:AA","alias":"short")", mac + R"(,"alias":")" + std::string(301, 'x') + "\""});
  EXPECT_EQ(set("02:AA:00:00:00:03", std::string(300, 'x')), result("setalias", 0));
  EXPECT_EQ(board::read_file(kList).size(), 319U);
  EXPECT_EQ(set("02:AA:00:0", "12345"), result("setalias", 0)) << "17 characters";
}

}  // namespace
}  // namespace zelto_test

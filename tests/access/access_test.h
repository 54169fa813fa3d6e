// The fixture of the tests of devices, lists and their rules.
#pragma once

#include <sys/mount.h>

#include <string>
#include <utility>
#include <vector>

#include "support/router_test.h"

namespace zelto_test {

using Lines = std::vector<std::string>;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::HasSubstr;
using testing::IsEmpty;

// A request or a reply.
inline std::string command(const std::string& type, const std::string& members) {
  return R"({"type":")" + type + (members.empty() ? "\"}" : "\"," + members + "}");
}
inline std::string result(const std::string& type, int number) {
  return command(type, R"("result":)" + std::to_string(number));
}

class AccessTest : public RouterTest {
 protected:
  // The effects since the journal was last looked at.
  static Lines effects() {
    auto lines = board::journal();
    board::clear_journal();
    return lines;
  }

  // None of the requests changes the list or anything else.
  static void expect_refused(const std::string& type, const char* list, const Lines& requests) {
    const auto before = board::read_file(list);
    for (const auto& members : requests) {
      EXPECT_EQ(ask(command(type, members)), result(type, 1)) << members;
      EXPECT_EQ(board::read_file(list), before) << members;
    }
    EXPECT_THAT(effects(), IsEmpty());
  }

  static void given_section(const char* type, const std::string& name,
                            const std::vector<std::pair<const char*, std::string>>& options) {
    easy_uci_add_section("firewall", type, name.c_str());
    for (const auto& [option, value] : options) given("firewall", name.c_str(), option, value);
    board::clear_journal();
  }

  // The option of sections PREFIX0, PREFIX1, ...; those without it are left out.
  static Lines stored_in(const std::string& prefix, const char* option, int sections = 100) {
    Lines values;
    for (int i = 0; i < sections; ++i) {
      const auto name = prefix + std::to_string(i);
      const auto value = stored("firewall", name.c_str(), option);
      if (value != "(none)") values.push_back(std::to_string(i) + " " + value);
    }
    return values;
  }
};

// A /tmp on which nothing more can be written.
class FullTmp {
 public:
  FullTmp() {
    EXPECT_EQ(mount("tmpfs", "/tmp", "tmpfs", 0, "size=4k"), 0);
    board::write_file("/tmp/full", std::string(4096, 'x'));
  }
  ~FullTmp() { umount2("/tmp", MNT_DETACH); }
  FullTmp(const FullTmp&) = delete;
  FullTmp& operator=(const FullTmp&) = delete;
};

}  // namespace zelto_test

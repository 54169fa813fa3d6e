// The fixture of the tests of disks and of what is shared of them.
#pragma once

#include <filesystem>
#include <vector>

#include <zelto/storage.h>

#include "support/requests.h"
#include "support/router_test.h"

namespace zelto_test {

using testing::ElementsAre;
using testing::IsEmpty;

class StorageTest : public RouterTest {
 protected:
  static std::string set_ftp(const std::string& user, const std::string& password) {
    return command("setftpcfg", member("ftpuser", user) + "," + member("ftppasswd", password));
  }
  static std::string set_samba(const std::string& user, const std::string& password) {
    return command("setsambacfg",
                   member("sambauser", user) + "," + member("sambapasswd", password));
  }
  static std::string ftp(const std::string& user, const std::string& password,
                         const std::string& path = "") {
    return command("getftpcfg", R"("Switch":"off",)" + member("ftpuser", user) + "," +
                                    member("ftppasswd", password) + "," + member("path", path));
  }
  static std::string samba(const std::string& user, const std::string& password,
                           const Lines& paths = {}) {
    return command("getsambacfg", R"("Switch":"off",)" + member("sambauser", user) + "," +
                                      member("sambapasswd", password) + R"(,"list":[)" +
                                      list("path", paths) + "]");
  }
  static std::string set_paths(const Lines& paths) {
    return command("setsambapath", R"("list":[)" + list("sambapath", paths) + "]");
  }

  static Lines samba_sections(const char* option) {
    Lines values;
    std::array<char, 512> name{};
    for (int i = 0; easy_uci_get_nth_section_of_type("samba", "sambashare", i, name.data()) == 0;
         ++i) {
      values.push_back(stored("samba", name.data(), option));
    }
    return values;
  }

 private:
  static std::string list(const std::string& name, const Lines& paths) {
    std::string elements;
    for (const auto& path : paths) {
      elements += (elements.empty() ? "{" : ",{") + member(name, path) + "}";
    }
    return elements;
  }
};

}  // namespace zelto_test

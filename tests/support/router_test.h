// The fixture of tests that ask the library on the virtual router.
#pragma once

#include <gmock/gmock.h>

#include <array>
#include <optional>
#include <string>
#include <vector>

#include <platform/easy_uci.h>

#include "board/board.h"
#include "support/ask.h"

namespace zelto_test {

class RouterTest : public testing::Test {
 protected:
  void SetUp() override { board::reset(); }

  // Stores an option, or takes it away; not an effect of the request that follows.
  static void given(const char* package, const char* section, const char* option,
                    const std::optional<std::string>& value) {
    if (value) {
      ASSERT_EQ(easy_uci_set_option_string(package, section, option, value->c_str()), 0);
    } else {
      easy_uci_delete_option(package, section, option);
    }
    board::clear_journal();
  }
  static void given_mode(const std::string& mode) {
    given("system", "route", "operationmode", mode);
  }
  static void given_connection(const std::string& type) {
    given("system", "route", "conntype", type);
  }

  // What is stored now; "(none)" when the option is absent.
  static std::string stored(const char* package, const char* section, const char* option) {
    std::array<char, 512> value{};
    const int status = easy_uci_get_option_string(package, section, option, value.data(),
                                                  static_cast<int>(value.size() - 1));
    return status == 0 ? value.data() : "(none)";
  }
};

// Takes every file descriptor the process may still open, and gives them back at its end.
class NoDescriptors {
 public:
  NoDescriptors();
  ~NoDescriptors();

 private:
  std::vector<int> taken_;
};

// How many descriptors the process has open.
std::size_t open_descriptors();

}  // namespace zelto_test

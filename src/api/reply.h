// A reply in the making: its members in order, and what is to be done once it has been written.
#pragma once

#include <functional>
#include <string_view>
#include <vector>

struct cJSON;

namespace zelto {

inline constexpr int kDone = 0;
inline constexpr int kFailed = 1;

class Reply {
 public:
  Reply();
  ~Reply();
  Reply(const Reply&) = delete;
  Reply& operator=(const Reply&) = delete;

  // Members are added as they come; a name may occur twice. `member` must be a constant.
  void text(const char* member, std::string_view value);
  void number(const char* member, double value);
  void result(int value) { number("result", value); }

  // Adds an effect that runs after the reply has been written, in the order of the calls.
  void afterwards(std::function<void()> effect) { effects_.push_back(std::move(effect)); }

  // Writes the reply, at most ZELTO_REPLY_SIZE bytes; false when it does not fit.
  bool print(char* out) const;
  void run_effects() const;

 private:
  void add(const char* member, cJSON* item);

  cJSON* root_;
  std::vector<std::function<void()>> effects_;
};

}  // namespace zelto

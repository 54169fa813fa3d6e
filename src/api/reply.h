// A reply in the making: its members in order, and what is to be done once it has been written.
#pragma once

#include <functional>
#include <string_view>
#include <utility>
#include <vector>

struct cJSON;

namespace zelto {

inline constexpr int kDone = 0;
inline constexpr int kFailed = 1;

class List;

// An object of a reply. Members are added as they come; a name may occur twice and must be a
// constant.
class Object {
 public:
  explicit Object(cJSON* object) : object_(object) {}

  void text(const char* member, std::string_view value);
  void number(const char* member, double value);
  List list(const char* member);

 protected:
  cJSON* add_text(const char* member, std::string_view value);
  cJSON* add_array(const char* member);
  void add(const char* member, cJSON* item);

  cJSON* object_;
};

// An array of objects.
class List {
 public:
  explicit List(cJSON* array) : array_(array) {}

  // One more object at the end.
  Object add();

 private:
  cJSON* array_;
};

class Reply : public Object {
 public:
  Reply();
  ~Reply();
  Reply(const Reply&) = delete;
  Reply& operator=(const Reply&) = delete;

  void result(int value) { number("result", value); }

  // An array that print() may shorten when it is the last one of the reply.
  List list(const char* member);

  // A text whose end print() may cut.
  void text_to_cut(const char* member, std::string_view value);

  // What the handler returns, when that is not 0.
  void status(int value) { status_ = value; }
  int status() const { return status_; }

  // Adds an effect that runs after the reply has been written, in the order of the calls.
  void afterwards(std::function<void()> effect) { effects_.push_back(std::move(effect)); }
  void run_effects() const;

  enum class Printed { kWhole, kCut, kNot };

  // Writes the reply, at most ZELTO_REPLY_SIZE bytes. A list that is too long for that keeps its
  // first elements, whole ones, and a text that may be cut its first characters.
  Printed print(char* out);

 private:
  bool try_print(char* out) const;
  void shorten_list();
  void shorten_text();

  cJSON* last_list_ = nullptr;
  cJSON* text_to_cut_ = nullptr;
  int status_ = 0;
  std::vector<std::function<void()>> effects_;
};

}  // namespace zelto

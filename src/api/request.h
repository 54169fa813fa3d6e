// A request as a handler sees it. No handler touches the JSON library.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

struct cJSON;

namespace zelto {

// The members of a JSON object of the request. A member of another JSON type than the one asked for
// counts as missing. What is handed out lives as long as the request.
class Members {
 public:
  explicit Members(const cJSON* object) : object_(object) {}

  std::optional<std::string_view> text(const char* member) const;  // NUL-terminated
  std::optional<int> integer(const char* member) const;

  // A text as it is, or a whole number as decimal text.
  std::optional<std::string> text_or_integer(const char* member) const;

  // The elements of an array; an element that is no object has no members.
  std::optional<std::vector<Members>> list(const char* member) const;

  // The command that a request names.
  std::optional<std::string_view> type() const { return text("type"); }

 protected:
  const cJSON* object_;
};

class Request : public Members {
 public:
  explicit Request(const char* json);  // null counts as a text that is not JSON
  ~Request();
  Request(const Request&) = delete;
  Request& operator=(const Request&) = delete;

  bool parsed() const { return root_ != nullptr; }

 private:
  explicit Request(cJSON* root) : Members(root), root_(root) {}

  cJSON* root_;
};

}  // namespace zelto

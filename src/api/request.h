// A request as a handler sees it. No handler touches the JSON library.
#pragma once

#include <optional>
#include <string_view>

struct cJSON;

namespace zelto {

class Request {
 public:
  explicit Request(const char* json);  // null counts as a text that is not JSON
  ~Request();
  Request(const Request&) = delete;
  Request& operator=(const Request&) = delete;

  bool parsed() const { return root_ != nullptr; }

  // A member of that JSON type; a member of another type counts as missing. The view is
  // NUL-terminated and lives as long as the request.
  std::optional<std::string_view> text(const char* member) const;

  // The command it names.
  std::optional<std::string_view> type() const { return text("type"); }

 private:
  cJSON* root_;
};

}  // namespace zelto

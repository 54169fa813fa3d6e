// JSON as the gateway needs it. Beside the library's own, the only place that reads it.
#pragma once

#include <memory>
#include <optional>
#include <string>

struct cJSON;

namespace gateway {

struct JsonDeleter {
  void operator()(cJSON* item) const;
};

// A JSON object. The library compares the names of a request's members without regard to case and
// takes the first; a text in which two names are alike in that sense is none here, so that both
// always see the same request.
class JsonObject {
 public:
  static std::optional<JsonObject> parse(const std::string& text);

  // The text of a member; nothing when it is missing or is no text.
  std::optional<std::string> text(const char* member) const;
  std::optional<double> number(const char* member) const;
  // The same as text(), and the member is gone.
  std::optional<std::string> take_text(const char* member);
  void replace_text(const char* member, const std::string& value);

  std::string print() const;

 private:
  explicit JsonObject(cJSON* object) : object_(object) {}

  std::unique_ptr<cJSON, JsonDeleter> object_;
};

}  // namespace gateway

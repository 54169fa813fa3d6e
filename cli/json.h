// The JSON texts that go in and out of the command line.
#pragma once

#include <memory>
#include <optional>
#include <string>

struct cJSON;

namespace cli {

struct JsonDeleter {
  void operator()(cJSON* item) const;
};
using Json = std::unique_ptr<cJSON, JsonDeleter>;

// A request built member by member, beginning with "type".
class RequestBuilder {
 public:
  explicit RequestBuilder(const std::string& type);

  void add_text(const std::string& member, const std::string& value);
  // Adds a value that is JSON itself; false when it is not.
  bool add_json(const std::string& member, const std::string& value);

  std::string text() const;

 private:
  Json request_;
};

// The object with its "type", whatever it has of it, set to this one; nothing when the text is no
// JSON object.
std::optional<std::string> with_type(const std::string& object, const std::string& type);

// The text on several lines with indentation; nothing when it is not JSON.
std::optional<std::string> pretty(const std::string& json);

// Whether a reply tells of success: it has no "result", or that is 0 (done) or 9 (alive). A reply
// that is no JSON echoes the name of a command that is not there.
bool succeeded(const std::string& reply);

}  // namespace cli

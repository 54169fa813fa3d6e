#include "api/request.h"

#include <cjson/cJSON.h>

namespace zelto {

Request::Request(const char* json) : root_(cJSON_Parse(json)) {}

Request::~Request() {
  cJSON_Delete(root_);
}

std::optional<std::string_view> Request::text(const char* member) const {
  const char* value = cJSON_GetStringValue(cJSON_GetObjectItem(root_, member));
  if (value == nullptr) return std::nullopt;
  return value;
}

}  // namespace zelto

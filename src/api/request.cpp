#include "api/request.h"

#include <cjson/cJSON.h>

namespace zelto {

std::optional<std::string_view> Members::text(const char* member) const {
  const char* value = cJSON_GetStringValue(cJSON_GetObjectItem(object_, member));
  if (value == nullptr) return std::nullopt;
  return value;
}

std::optional<int> Members::integer(const char* member) const {
  const cJSON* item = cJSON_GetObjectItem(object_, member);
  if (cJSON_IsNumber(item) == 0) return std::nullopt;
  return item->valueint;
}

std::optional<std::string> Members::text_or_integer(const char* member) const {
  if (const auto value = text(member)) return std::string(*value);
  if (const auto value = integer(member)) return std::to_string(*value);
  return std::nullopt;
}

std::optional<std::vector<Members>> Members::list(const char* member) const {
  const cJSON* array = cJSON_GetObjectItem(object_, member);
  if (cJSON_IsArray(array) == 0) return std::nullopt;
  std::vector<Members> elements;
  const cJSON* element = nullptr;
  cJSON_ArrayForEach(element, array) elements.emplace_back(element);
  return elements;
}

Request::Request(const char* json) : Request(cJSON_Parse(json)) {}

Request::~Request() {
  cJSON_Delete(root_);
}

}  // namespace zelto

#include "gateway/json.h"

#include <cjson/cJSON.h>

#include <algorithm>
#include <cctype>
#include <new>
#include <set>
#include <utility>

namespace gateway {
namespace {

bool has_twins(const cJSON* object) {
  std::set<std::string> names;
  const cJSON* member = nullptr;
  cJSON_ArrayForEach(member, object) {
    std::string name = member->string;
    std::ranges::transform(name, name.begin(),
                           [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    if (!names.insert(std::move(name)).second) return true;
  }
  return false;
}

}  // namespace

void JsonDeleter::operator()(cJSON* item) const {
  cJSON_Delete(item);
}

std::optional<JsonObject> JsonObject::parse(const std::string& text) {
  JsonObject object(cJSON_ParseWithOpts(text.c_str(), nullptr, /*require_null_terminated=*/1));
  if (cJSON_IsObject(object.object_.get()) == 0 || has_twins(object.object_.get())) {
    return std::nullopt;
  }
  return object;
}

std::optional<std::string> JsonObject::text(const char* member) const {
  const char* value = cJSON_GetStringValue(cJSON_GetObjectItem(object_.get(), member));
  return value == nullptr ? std::nullopt : std::optional<std::string>(value);
}

std::optional<double> JsonObject::number(const char* member) const {
  const cJSON* item = cJSON_GetObjectItem(object_.get(), member);
  return cJSON_IsNumber(item) != 0 ? std::optional<double>(item->valuedouble) : std::nullopt;
}

std::optional<std::string> JsonObject::take_text(const char* member) {
  auto value = text(member);
  cJSON_DeleteItemFromObject(object_.get(), member);
  return value;
}

void JsonObject::replace_text(const char* member, const std::string& value) {
  cJSON* item = cJSON_CreateString(value.c_str());
  if (item == nullptr) throw std::bad_alloc();
  if (cJSON_ReplaceItemInObject(object_.get(), member, item) == 0) {
    cJSON_Delete(item);
    throw std::bad_alloc();
  }
}

std::string JsonObject::print() const {
  const std::unique_ptr<char, void (*)(void*)> printed(cJSON_PrintUnformatted(object_.get()),
                                                       cJSON_free);
  if (!printed) throw std::bad_alloc();
  return printed.get();
}

}  // namespace gateway

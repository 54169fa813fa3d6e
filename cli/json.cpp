#include "cli/json.h"

#include <cjson/cJSON.h>

#include <new>
#include <utility>

namespace cli {
namespace {

constexpr double kDone = 0;
constexpr double kAlive = 9;

void add(cJSON* object, const std::string& member, Json value) {
  if (!value || cJSON_AddItemToObject(object, member.c_str(), value.get()) == 0)
    throw std::bad_alloc();
  // The object owns it from here on.
  static_cast<void>(value.release());
}

std::string printed(char* text) {
  if (text == nullptr) throw std::bad_alloc();
  const std::unique_ptr<char, void (*)(void*)> owner(text, cJSON_free);
  return text;
}

Json parsed(const std::string& text) {
  return Json(cJSON_ParseWithOpts(text.c_str(), nullptr, /*require_null_terminated=*/1));
}

}  // namespace

void JsonDeleter::operator()(cJSON* item) const {
  cJSON_Delete(item);
}

RequestBuilder::RequestBuilder(const std::string& type) : request_(cJSON_CreateObject()) {
  if (!request_) throw std::bad_alloc();
  add_text("type", type);
}

void RequestBuilder::add_text(const std::string& member, const std::string& value) {
  add(request_.get(), member, Json(cJSON_CreateString(value.c_str())));
}

bool RequestBuilder::add_json(const std::string& member, const std::string& value) {
  Json item = parsed(value);
  if (!item) return false;
  add(request_.get(), member, std::move(item));
  return true;
}

std::string RequestBuilder::text() const {
  return printed(cJSON_PrintUnformatted(request_.get()));
}

std::optional<std::string> with_type(const std::string& object, const std::string& type) {
  const Json whole = parsed(object);
  if (cJSON_IsObject(whole.get()) == 0) return std::nullopt;
  while (cJSON_HasObjectItem(whole.get(), "type") != 0) {
    cJSON_DeleteItemFromObject(whole.get(), "type");
  }
  add(whole.get(), "type", Json(cJSON_CreateString(type.c_str())));
  return printed(cJSON_PrintUnformatted(whole.get()));
}

std::optional<std::string> pretty(const std::string& json) {
  const Json whole = parsed(json);
  if (!whole) return std::nullopt;
  return printed(cJSON_Print(whole.get()));
}

bool succeeded(const std::string& reply) {
  const Json whole = parsed(reply);
  if (!whole) return false;
  const cJSON* result = cJSON_GetObjectItemCaseSensitive(whole.get(), "result");
  if (result == nullptr) return true;
  const double value = cJSON_IsNumber(result) != 0 ? result->valuedouble : -1;
  return value == kDone || value == kAlive;
}

}  // namespace cli

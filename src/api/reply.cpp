#include "api/reply.h"

#include <cjson/cJSON.h>

#include <cstring>
#include <new>

#include <zelto/zeltoapi.h>

#include "api/text.h"

namespace zelto {
namespace {

// What the JSON library wants to have free behind the text that it prints.
constexpr std::size_t kPrintReserve = 64;

cJSON* existing(cJSON* item) {
  if (item == nullptr) throw std::bad_alloc();
  return item;
}

std::size_t printed_size(const cJSON* item) {
  char* text = cJSON_PrintUnformatted(item);
  if (text == nullptr) throw std::bad_alloc();
  const auto size = std::strlen(text);
  cJSON_free(text);
  return size;
}

}  // namespace

void Object::text(const char* member, std::string_view value) {
  add(member, cJSON_CreateString(text::to_utf8(value).c_str()));
}

void Object::number(const char* member, double value) {
  add(member, cJSON_CreateNumber(value));
}

List Object::list(const char* member) {
  return List(add_array(member));
}

cJSON* Object::add_array(const char* member) {
  cJSON* array = existing(cJSON_CreateArray());
  add(member, array);
  return array;
}

void Object::add(const char* member, cJSON* item) {
  // The key is a constant, so the tree may refer to it instead of copying it.
  if (item == nullptr || cJSON_AddItemToObjectCS(object_, member, item) == 0) {
    cJSON_Delete(item);
    throw std::bad_alloc();
  }
}

Object List::add() {
  cJSON* object = existing(cJSON_CreateObject());
  cJSON_AddItemToArray(array_, object);
  return Object(object);
}

Reply::Reply() : Object(existing(cJSON_CreateObject())) {}

Reply::~Reply() {
  cJSON_Delete(object_);
}

List Reply::list(const char* member) {
  last_list_ = add_array(member);
  return List(last_list_);
}

void Reply::run_effects() const {
  for (const auto& effect : effects_) effect();
}

Reply::Printed Reply::print(char* out) {
  if (try_print(out)) return Printed::kWhole;
  if (last_list_ == nullptr) return Printed::kNot;
  shorten_list();
  return try_print(out) ? Printed::kListCut : Printed::kNot;
}

bool Reply::try_print(char* out) const {
  return cJSON_PrintPreallocated(object_, out, ZELTO_REPLY_SIZE, /*format=*/0) != 0;
}

void Reply::shorten_list() {
  std::vector<cJSON*> elements;
  while (cJSON* element = cJSON_DetachItemFromArray(last_list_, 0)) elements.push_back(element);
  std::size_t size = printed_size(object_) + kPrintReserve;
  for (cJSON* element : elements) {
    size += printed_size(element) + 1;  // and a comma
    if (size <= ZELTO_REPLY_SIZE) {
      cJSON_AddItemToArray(last_list_, element);
    } else {
      cJSON_Delete(element);
    }
  }
}

}  // namespace zelto

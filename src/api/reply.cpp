#include "api/reply.h"

#include <cjson/cJSON.h>

#include <cstddef>
#include <cstring>
#include <new>
#include <string>
#include <string_view>

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

// Bytes that a byte of a text takes in JSON.
std::size_t escaped_size(char c) {
  if (std::string_view("\"\\\b\f\n\r\t").find(c) != std::string_view::npos) return 2;
  constexpr std::size_t kEscapedControl = 6;
  return static_cast<unsigned char>(c) < ' ' ? kEscapedControl : 1;
}

}  // namespace

void Object::text(const char* member, std::string_view value) {
  add_text(member, value);
}

void Object::number(const char* member, double value) {
  add(member, cJSON_CreateNumber(value));
}

List Object::list(const char* member) {
  return List(add_array(member));
}

cJSON* Object::add_text(const char* member, std::string_view value) {
  cJSON* item = cJSON_CreateString(text::to_utf8(value).c_str());
  add(member, item);
  return item;
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

void Reply::text_to_cut(const char* member, std::string_view value) {
  text_to_cut_ = add_text(member, value);
}

void Reply::run_effects() const {
  for (const auto& effect : effects_) effect();
}

Reply::Printed Reply::print(char* out) {
  if (try_print(out)) return Printed::kWhole;
  if (last_list_ != nullptr) shorten_list();
  if (text_to_cut_ != nullptr) shorten_text();
  return try_print(out) ? Printed::kCut : Printed::kNot;
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

void Reply::shorten_text() {
  std::string kept = text_to_cut_->valuestring;
  std::size_t size = printed_size(object_) + kPrintReserve;
  while (size > ZELTO_REPLY_SIZE && !kept.empty()) {
    size -= escaped_size(kept.back());
    kept.pop_back();
  }
  // to_utf8 would make something else of half a character.
  while (!kept.empty() && text::to_utf8(kept) != kept) kept.pop_back();
  if (cJSON_SetValuestring(text_to_cut_, kept.c_str()) == nullptr) throw std::bad_alloc();
}

}  // namespace zelto

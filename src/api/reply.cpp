#include "api/reply.h"

#include <cjson/cJSON.h>

#include <new>

#include <zelto/zeltoapi.h>

#include "api/text.h"

namespace zelto {

Reply::Reply() : root_(cJSON_CreateObject()) {
  if (root_ == nullptr) throw std::bad_alloc();
}

Reply::~Reply() {
  cJSON_Delete(root_);
}

void Reply::text(const char* member, std::string_view value) {
  add(member, cJSON_CreateString(text::to_utf8(value).c_str()));
}

void Reply::number(const char* member, double value) {
  add(member, cJSON_CreateNumber(value));
}

bool Reply::print(char* out) const {
  return cJSON_PrintPreallocated(root_, out, ZELTO_REPLY_SIZE, /*format=*/0) != 0;
}

void Reply::run_effects() const {
  for (const auto& effect : effects_) effect();
}

void Reply::add(const char* member, cJSON* item) {
  // The key is a constant, so the tree may refer to it instead of copying it.
  if (item == nullptr || cJSON_AddItemToObjectCS(root_, member, item) == 0) {
    cJSON_Delete(item);
    throw std::bad_alloc();
  }
}

}  // namespace zelto

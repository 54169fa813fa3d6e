// The C boundary of the configuration store.
#include <algorithm>
#include <cstring>
#include <exception>
#include <initializer_list>
#include <string>
#include <string_view>

#include <platform/easy_uci.h>

#include "platform/easyuci/store.h"

namespace {

using easyuci::Edit;
using easyuci::Package;
using easyuci::Store;

constexpr const char* kFolder = "/etc/config";
constexpr int kDone = 0;
constexpr int kFailed = -1;

// Never destroyed: a thread may still read while the process ends.
Store& store() {
  static Store& the_store = *new Store(kFolder);
  return the_store;
}

// Nothing throws across the boundary: what throws here, memory that runs out, is a failure.
template <typename Action>
int done_when(std::initializer_list<const void*> arguments, const Action& action) noexcept {
  if (std::ranges::find(arguments, nullptr) != arguments.end()) return kFailed;
  try {
    return action() ? kDone : kFailed;
  } catch (const std::exception&) {
    return kFailed;
  }
}

// Appends as much of `text` to the `length` bytes in `buffer` as fits in `max_length`.
size_t append_cut(char* buffer, size_t length, size_t max_length, std::string_view text) {
  const size_t count = std::min(text.size(), max_length - length);
  std::memcpy(buffer + length, text.data(), count);
  return length + count;
}

void copy_value(const easyuci::Option& option, char* buffer, size_t max_length) {
  size_t length = 0;
  for (const std::string& item : option.items) {
    if (&item != &option.items.front()) length = append_cut(buffer, length, max_length, " ");
    length = append_cut(buffer, length, max_length, item);
  }
  buffer[length] = '\0';
}

std::string effect(std::string_view verb, std::initializer_list<std::string_view> path,
                   std::string_view value = {}) {
  std::string text = "uci ";
  text += verb;
  char separator = ' ';
  for (const std::string_view part : path) {
    text += separator;
    text += part;
    separator = '.';
  }
  return text += value;
}

}  // namespace

int easy_uci_get_option_string(const char* package, const char* section, const char* option,
                               char* buffer, int max_length) {
  return done_when({package, section, option, buffer}, [=] {
    const auto snapshot = store().load(package);
    const auto* found = snapshot ? snapshot->find(section, option) : nullptr;
    if (found == nullptr || max_length < 0) return false;
    copy_value(*found, buffer, static_cast<size_t>(max_length));
    return true;
  });
}

int easy_uci_set_option_string(const char* package, const char* section, const char* option,
                               const char* value) {
  return done_when({package, section, option, value}, [=] {
    return store().change(package, Store::WhenAbsent::kFail, [=](Package& content) {
      return Edit{content.set_option(section, option, value),
                  effect("set", {package, section, option}, std::string("=") + value)};
    });
  });
}

int easy_uci_add_section(const char* package, const char* type, const char* name) {
  return done_when({package, type}, [=] {
    if (name != nullptr && std::string_view(name).size() >= EASY_UCI_NAME_SIZE) return false;
    return store().change(package, Store::WhenAbsent::kCreate, [=](Package& content) {
      Edit edit{
          name != nullptr ? content.add_section(type, name) : content.add_anonymous_section(type),
          {}};
      if (edit.change == easyuci::Change::kImpossible) return edit;
      std::string_view added = content.sections().back().name;
      if (name != nullptr) added = name;
      edit.effect = effect("add", {package, added}, std::string("=") + type);
      return edit;
    });
  });
}

int easy_uci_delete_section(const char* package, const char* section) {
  return done_when({package, section}, [=] {
    return store().change(package, Store::WhenAbsent::kFail, [=](Package& content) {
      return Edit{content.delete_section(section), effect("del", {package, section})};
    });
  });
}

int easy_uci_delete_option(const char* package, const char* section, const char* option) {
  return done_when({package, section, option}, [=] {
    return store().change(package, Store::WhenAbsent::kFail, [=](Package& content) {
      return Edit{content.delete_option(section, option),
                  effect("del", {package, section, option})};
    });
  });
}

int easy_uci_get_section_type(const char* package, const char* section, char* buffer, int length) {
  return done_when({package, section, buffer}, [=] {
    const auto snapshot = store().load(package);
    const auto* found = snapshot ? snapshot->find(section) : nullptr;
    if (found == nullptr || length <= 0) return false;
    buffer[append_cut(buffer, 0, static_cast<size_t>(length) - 1, found->type)] = '\0';
    return true;
  });
}

int easy_uci_get_nth_section_of_type(const char* package, const char* type, int n, char* name) {
  return done_when({package, type, name}, [=] {
    const auto snapshot = store().load(package);
    if (!snapshot) return false;
    int to_pass = n;
    for (const auto& section : snapshot->package().sections()) {
      if (section.type != type || to_pass-- != 0) continue;
      if (section.name.size() >= EASY_UCI_NAME_SIZE) return false;
      name[append_cut(name, 0, EASY_UCI_NAME_SIZE - 1, section.name)] = '\0';
      return true;
    }
    return false;
  });
}

// Inputs of whole requests, made and changed by what the catalogue says of each command, with the
// plausible and hostile values of fuzz/values.json.

#include <cjson/cJSON.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <random>
#include <utility>

#include "board/board.h"
#include "fuzz/fuzz.h"

extern "C" size_t LLVMFuzzerMutate(uint8_t* data, size_t size, size_t longest);

namespace fuzz {
namespace {

using Json = std::unique_ptr<cJSON, decltype(&cJSON_Delete)>;
using Random = std::minstd_rand;

constexpr std::size_t kMostLines = 12;

Json catalogue(nullptr, cJSON_Delete);
Json values(nullptr, cJSON_Delete);

std::size_t below(Random& random, std::size_t limit) {
  return limit == 0 ? 0 : random() % limit;
}

cJSON* one_of(Random& random, const cJSON* array) {
  const auto count = static_cast<std::size_t>(cJSON_GetArraySize(array));
  return cJSON_GetArrayItem(array, static_cast<int>(below(random, count)));
}

const cJSON* kind_of_value(const char* kind) {
  return cJSON_GetObjectItem(values.get(), kind);
}

std::string one_text(Random& random, const char* kind) {
  return cJSON_GetStringValue(one_of(random, kind_of_value(kind)));
}

cJSON* any_value(Random& random) {
  constexpr const char* kKinds[] = {"hostile", "hostile", "texts", "others"};
  return cJSON_Duplicate(one_of(random, kind_of_value(kKinds[below(random, 4)])), 1);
}

cJSON* object_of(Random& random, const cJSON* members, const cJSON* example);

// By what the catalogue says of a member and its example has; now and then by neither.
cJSON* value_of(Random& random, const cJSON* member, const cJSON* example) {
  if (below(random, 4) == 0) return any_value(random);
  if (const cJSON* elements = cJSON_GetObjectItem(member, "elements")) {
    cJSON* array = cJSON_CreateArray();
    for (auto left = 1 + below(random, 3); left > 0; --left) {
      cJSON_AddItemToArray(array, object_of(random, elements, one_of(random, example)));
    }
    return array;
  }
  const cJSON* known = cJSON_GetObjectItem(member, "values");
  if (known != nullptr && below(random, 3) != 0) {
    return cJSON_Duplicate(cJSON_GetObjectItem(one_of(random, known), "value"), 1);
  }
  return example != nullptr ? cJSON_Duplicate(example, 1) : any_value(random);
}

cJSON* object_of(Random& random, const cJSON* members, const cJSON* example) {
  cJSON* object = cJSON_CreateObject();
  const cJSON* member = nullptr;
  cJSON_ArrayForEach(member, members) {
    if (below(random, 12) == 0) continue;
    const char* name = cJSON_GetStringValue(cJSON_GetObjectItem(member, "name"));
    const cJSON* shown = cJSON_GetObjectItem(example, name);
    cJSON_AddItemToObject(object, name, value_of(random, member, shown));
  }
  return object;
}

std::string printed(const cJSON* json) {
  const std::unique_ptr<char, void (*)(void*)> text(cJSON_PrintUnformatted(json), cJSON_free);
  return text ? text.get() : "";
}

std::string new_request(Random& random) {
  const cJSON* command = one_of(random, catalogue.get());
  const auto fact = [&](const char* name) { return cJSON_GetObjectItem(command, name); };
  const Json request(object_of(random, fact("request"), fact("example")), cJSON_Delete);
  cJSON_AddItemToObject(request.get(), "type", cJSON_Duplicate(fact("name"), 1));
  return printed(request.get());
}

std::string new_setting(Random& random) {
  const auto choice = below(random, 4);
  if (choice == 0) return one_text(random, "settings");
  if (choice == 1) return "!" + one_text(random, "texts");
  std::string line = choice == 2 ? ">" : one_text(random, "files") + " ";
  for (auto words = 1 + below(random, 16); words > 0; --words) {
    line += one_text(random, below(random, 4) == 0 ? "hostile" : "texts") +
            (below(random, 5) == 0 ? "\\n" : " ");
  }
  return line;
}

// A request with one member changed: to any value, or to what another request has there.
std::string changed_request(Random& random, const std::string& line, const std::string& other) {
  const Json request(cJSON_Parse(line.c_str()), cJSON_Delete);
  const cJSON* member = one_of(random, request.get());
  if (cJSON_IsObject(request.get()) == 0 || member == nullptr) return new_request(random);
  const std::string name = member->string;
  const Json donor(cJSON_Parse(other.c_str()), cJSON_Delete);
  const cJSON* theirs = cJSON_GetObjectItem(donor.get(), name.c_str());
  const bool takes_theirs = theirs != nullptr && below(random, 2) == 0;
  cJSON_ReplaceItemInObject(request.get(), name.c_str(),
                            takes_theirs ? cJSON_Duplicate(theirs, 1) : any_value(random));
  return printed(request.get());
}

std::string changed_bytes(std::string line) {
  const std::size_t size = line.size();
  line.resize(size + 64);
  line.resize(LLVMFuzzerMutate(reinterpret_cast<uint8_t*>(line.data()), size, line.size()));
  return line;
}

Json read(const std::string& path) {
  return {cJSON_Parse(board::read_file(path).c_str()), cJSON_Delete};
}

}  // namespace

void load_grammar(const std::string& catalogue_file, const std::string& values_file) {
  catalogue.reset(cJSON_DetachItemFromObject(read(catalogue_file).get(), "commands"));
  values = read(values_file);
  require(cJSON_GetArraySize(catalogue.get()) > 0 && values, "no catalogue or no values");
}

std::size_t mutate_requests(char* data, std::size_t size, std::size_t longest, unsigned seed) {
  Random random(seed);
  std::vector<std::string> lines;
  for (const auto line : lines_of({data, size})) lines.emplace_back(line);
  if (lines.empty() || (lines.size() < kMostLines && below(random, 4) == 0)) {
    const auto place = static_cast<std::ptrdiff_t>(below(random, lines.size() + 1));
    // cppcheck-suppress containerOutOfBounds ; in an empty list the place is 0
    lines.insert(lines.begin() + place,
                 below(random, 3) == 0 ? new_setting(random) : new_request(random));
  } else {
    auto& line = lines[below(random, lines.size())];
    auto& other = lines[below(random, lines.size())];
    const auto choice = below(random, 8);
    if (choice == 0) line.clear();
    if (choice == 1) line = new_request(random);
    if (choice == 2) std::swap(line, other);
    if (choice == 3) line = changed_bytes(line);
    if (choice > 3) line = changed_request(random, line, other);
  }
  std::string all;
  for (const auto& line : lines) {
    if (!line.empty() && all.size() + line.size() + 1 <= longest) all.append(line).append("\n");
  }
  return all.copy(data, all.size());
}

}  // namespace fuzz

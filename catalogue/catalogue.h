// What the commands of the table are called, who may send them and what they take: the facts that
// a front end needs before it asks the library. The data comes from the comments of the public
// headers (script/docs); all of it is constant and lives as long as the program.
#pragma once

#include <span>
#include <string_view>

namespace zelto::catalogue {

// What a front end should ask for before it lets a command through; zeltoapi.h tells more.
enum class Access {
  kOpen,    // nothing
  kRead,    // a login: the command only tells
  kChange,  // a login that may change the router
  kDanger,  // one that may run anything, interrupt the router, or see its password
};

struct Member {
  const char* name;
  const char* type;  // as JSON has it: "string", "number", "array", or several: "number|string"
  bool required;     // always; members that only some requests need are not
};

struct Command {
  const char* name;
  Access access;
  std::span<const Member> request;  // without "type"
};

// The commands in the order of the table.
std::span<const Command> all();

// The command of exactly that name, null when there is none.
const Command* find(std::string_view name);

}  // namespace zelto::catalogue

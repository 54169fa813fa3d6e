// The envelope that every command shares: parse, check "type", answer, then act.
#pragma once

#include <functional>

#include "api/reply.h"
#include "api/request.h"

namespace zelto {

// A command and where it departs from the common rules.
struct Command {
  const char* type;
  int unparsed_status = -1;                           // returned for a text that is not JSON
  const char* unparsed_log = "json data is NULL!\n";  // null: not logged
  const char* unparsed_traced_as = nullptr;  // handler's name: traced on the console, not logged
  bool echoes_type = false;  // the reply's "type" is the request's own, absent when that is
  bool is_silent_without_type = false;  // without "type" nothing is written, and 0 returned
  bool accepts_any_type = false;  // the body runs, and looks, also when "type" is not the command
  bool accepts_anything = false;  // the same for a request of any kind, not JSON included
};

using Body = std::function<void(const Request&, Reply&)>;

// Answers a request: `body` adds the members behind "type". Nothing is thrown: what the body throws
// becomes the failure reply.
int answer(const Command& command, const char* request, char* out, const Body& body) noexcept;

}  // namespace zelto

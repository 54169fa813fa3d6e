// Asking the library as a web server does.
#pragma once

#include <string>

#include <zelto/zeltoapi.h>

namespace zelto_test {

// What a handler or the dispatcher leaves in a buffer that held "untouched".
struct Answer {
  int status;
  std::string reply;
};

// A handler called directly, or share_func itself.
inline Answer call(CommandHandler handler, const char* request) {
  std::string out(ZELTO_REPLY_SIZE, '\0');
  out.replace(0, 10, std::string("untouched\0", 10));
  const int status = handler(request, out.data());
  return {status, out.substr(0, out.find('\0'))};
}

// The reply to a request that is expected to be answered.
inline std::string ask(const std::string& request) {
  return call(share_func, request.c_str()).reply;
}

}  // namespace zelto_test

// What goes back to the web server.
#pragma once

#include <string>
#include <vector>

namespace gateway {

struct Response {
  int status = 200;
  std::string body;
  std::vector<std::string> headers = {};  // beyond those that every answer has
};

// Ends the handling of a request; thrown, and answered as {"error":word,"message":...}.
struct Refusal {
  int status;
  const char* word;     // for programs; part of the protocol
  const char* message;  // for people; says nothing about the router's inside
  std::vector<std::string> headers = {};
};

Response to_response(const Refusal& refusal);

// The whole text for the web server, in the form of CGI.
std::string to_cgi(const Response& response);

}  // namespace gateway

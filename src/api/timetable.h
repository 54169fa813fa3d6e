// Lists of times that an agent of the firmware acts on, and the switch of each: a record is a time
// and the days it holds for, one word each.
#pragma once

#include <cstddef>

#include "api/config.h"
#include "api/list_file.h"
#include "api/reply.h"
#include "api/request.h"

namespace zelto {

struct Timetable {
  ListFile file;
  config::Option state;  // the switch
  const char* time;      // member of requests and replies for a record's first word
  std::size_t longest_word;
};

namespace timetable {

// Adds the switch and the records.
void show(const Timetable& table, Reply& reply);

// Adds the record that a request names, or takes it away.
void change(const Timetable& table, const char* command, const Request& request, Reply& reply);

void change_switch(const Timetable& table, const char* command, const Request& request,
                   Reply& reply);

}  // namespace timetable
}  // namespace zelto

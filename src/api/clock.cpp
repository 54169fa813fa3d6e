#include "api/clock.h"

#include <unistd.h>

namespace zelto::clock {

void pause(int seconds) {
  auto left = static_cast<unsigned>(seconds);
  while (left > 0) left = sleep(left);  // a signal ends it early
}

}  // namespace zelto::clock

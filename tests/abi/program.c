/* What a front end in C does with the installed library. */
#include <stdio.h>

#include <zelto/zeltoapi.h>

int main(void) {
  char reply[ZELTO_REPLY_SIZE];
  if (share_func("{\"type\":\"getheartbeat\"}", reply) != 0) return 1;
  return puts(reply) < 0;
}

/* The least that a CGI program can do. */
#include <stdio.h>

int main(void) {
  return puts("Content-Type: application/json\r\n\r\n{}") < 0;
}

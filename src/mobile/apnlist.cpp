// The table of operators and their access points. Its rows are generated.

#include <zelto/mobile.h>

// A constant expression: the table lies in the library's read-only memory, shared by all processes
// and paged in when it is read.
constexpr ApnEntry apnlist[ZELTO_APN_COUNT] = {
#include "mobile/apnlist_rows.inc"
};

static_assert(sizeof(ApnEntry) == 192);
static_assert(apnlist[ZELTO_APN_COUNT - 1].mccmnc[0] != '\0', "rows are missing");

/* The layout of what the library exports as data. Firmwares that were built against it read and
   write these tables. */
#include <stddef.h>

#include <platform/easy_uci.h>
#include <platform/uart_at.h>
#include <platform/wifi_conf.h>
#include <zelto/fields.h>
#include <zelto/mobile.h>
#include <zelto/zeltoapi.h>

_Static_assert(sizeof(CommandEntry) == 64 + sizeof(void (*)(void)), "a command's row");
_Static_assert(offsetof(CommandEntry, handler) == 64, "the handler behind the name");
_Static_assert(sizeof zelto_handle == 123 * sizeof(CommandEntry), "rows of the command table");

_Static_assert(sizeof(TranslationRow) == 120, "a translation's row");
_Static_assert(offsetof(TranslationRow, web) == 40 && offsetof(TranslationRow, stored) == 80,
               "the texts of a translation");
_Static_assert(sizeof cmd_str == 36 * sizeof(TranslationRow), "rows of the translation table");

_Static_assert(sizeof(FieldRow) == 80 + 4 * sizeof(void (*)(void)), "a field's row");
_Static_assert(offsetof(FieldRow, config_key) == 40 && offsetof(FieldRow, getter) == 80,
               "the texts of a field");
_Static_assert(sizeof cmd_convert == 18 * sizeof(FieldRow), "rows of the field table");

_Static_assert(sizeof(ApnEntry) == 192, "an access point's row");
_Static_assert(offsetof(ApnEntry, operator_name) == 32 && offsetof(ApnEntry, apn) == 96 &&
                   offsetof(ApnEntry, mccmnc) == 160,
               "the texts of an access point");
_Static_assert(sizeof apnlist == 1752 * sizeof(ApnEntry), "rows of the access point table");

_Static_assert(ZELTO_REPLY_SIZE == 16384, "the reply buffer of front ends");
_Static_assert(UART_AT_REPLY_SIZE == 1024, "the modem's reply buffer");
